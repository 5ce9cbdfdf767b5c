#!/usr/bin/env bash
# Runs tav-calendar under valgrind memcheck: the demo's screenshots (under
# Xvfb when there is no display), then an import and an export on a fresh
# store. Prints per run the definite leaks, invalid reads/writes and
# uninitialised uses, and fails when one of them lies in our code.
# Usage: tools/memcheck.sh [BUILD_DIR]
set -uo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
app="$build/host/tav-calendar"
[ -x "$app" ] || { echo "memcheck: no $app (build first)" >&2; exit 2; }

work=$(mktemp -d /tmp/tav-memcheck-XXXXXX)
trap 'rm -rf "$work"' EXIT

supp=()
[ -f /usr/share/glib-2.0/valgrind/glib.supp ] && supp+=(--suppressions=/usr/share/glib-2.0/valgrind/glib.supp)
[ -f /usr/share/gtk-2.0/valgrind/gtk.supp ] && supp+=(--suppressions=/usr/share/gtk-2.0/valgrind/gtk.supp)

export G_SLICE=always-malloc G_DEBUG=gc-friendly NO_AT_BRIDGE=1 TZ=UTC LC_ALL=C
export XDG_CONFIG_HOME="$work/config" XDG_DATA_HOME="$work/data"
export TAV_CALENDAR_ICON_DIR="$PWD/$build/data/icons/hicolor/" TAV_CALENDAR_THEME_DIR="$PWD/data/theme"
export TAV_CALENDAR_LOCALE_DIR="$PWD/$build/po/locale" TAV_CALENDAR_SOUND_DIR="$PWD/$build/data"

status=0
wrap=()
# run NAME ARGS...: one program run under memcheck, its summary in one line.
run () {
  local name=$1; shift
  local log="$work/$name.log"
  "${wrap[@]}" valgrind --tool=memcheck --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite \
    --track-origins=yes --num-callers=30 "${supp[@]}" --log-file="$log" "$@" >"$work/$name.out" 2>&1
  local rc=$?
  local definite invalid uninit ours
  definite=$(grep -m1 'definitely lost:' "$log" | sed 's/.*definitely lost: \([0-9,]*\) bytes in \([0-9,]*\) blocks.*/\1 bytes in \2 blocks/')
  invalid=$(grep -c 'Invalid \(read\|write\|free\)' "$log")
  uninit=$(grep -c 'uninitialised\|Uninitialised' "$log")
  # An error is ours when the first frame past the allocator and GLib's
  # object machinery (or, for a bad access, the faulting frame) lies in the
  # library or the host.
  ours=$(awk '
    / Invalid (read|write|free)| uninitialised|Uninitialised|definitely lost in loss record/ {open=1; next}
    open && /(at|by) 0x/ {
      if ($0 ~ /: (malloc|calloc|realloc|operator new|g_malloc|g_malloc0|g_realloc|g_try_malloc|g_slice_alloc|g_slice_alloc0|g_strdup|g_strndup|g_memdup2|g_type_create_instance|g_object_new|g_object_new_valist|g_object_new_with_properties|g_object_newv|gdk_pixbuf_new|gdk_pixbuf_new_from_data) /) next
      if ($0 ~ /\(in [^)]*lib(glib|gobject|gdk_pixbuf)-2\.0/) next
      if ($0 ~ /libcalendarui|tav-calendar|\((Tav|Kivo|Host)[A-Za-z]*\.cpp/) n++
      open=0
    }
    END {print n+0}' "$log")
  echo "$name: exit $rc; definitely lost: ${definite:-0}; invalid accesses: $invalid; uninitialised uses: $uninit; ours: $ours"
  cp "$log" "${TMPDIR:-/tmp}/tav-memcheck-$name.log"
  [ "$ours" -gt 0 ] && { status=1; echo "  details in ${TMPDIR:-/tmp}/tav-memcheck-$name.log"; }
}

# The screenshots on an X server of their own (tests/with-xvfb.sh).
wrap=()
[ -z "${DISPLAY:-}" ] && wrap=(tests/with-xvfb.sh)
run screenshot "$app" --demo --screenshot "$work/shots"
wrap=()
cat > "$work/in.ics" <<'ICS'
BEGIN:VCALENDAR
VERSION:2.0
PRODID:-//tav//memcheck//EN
BEGIN:VEVENT
UID:weekly@memcheck
DTSTART:20240108T090000Z
DTEND:20240108T100000Z
RRULE:FREQ=WEEKLY;COUNT=10;BYDAY=MO,WE
SUMMARY:Weekly
END:VEVENT
BEGIN:VEVENT
UID:day@memcheck
DTSTART;VALUE=DATE:20240301
SUMMARY:All day
END:VEVENT
BEGIN:VTODO
UID:task@memcheck
DUE;VALUE=DATE:20240310
SUMMARY:Task
END:VTODO
BEGIN:VEVENT
SUMMARY:broken
END:VEVENT
END:VCALENDAR
ICS
run import "$app" --db "$work/store.db" --import "$work/in.ics"
run export "$app" --db "$work/store.db" --export "$work/out.ics"
exit $status
