#!/usr/bin/env bash
# Builds libcalendarui and runs the main job: the tav-calendar host
# application on its default store. Without a display it renders every view
# to PNG files under Xvfb (into ./screenshots) instead of opening a window.
set -euo pipefail
cd "$(dirname "$0")/.."

build_dir=build
[ -f "$build_dir/build.ninja" ] || meson setup "$build_dir"
ninja -C "$build_dir"

export TAV_CALENDAR_ICON_DIR="$PWD/$build_dir/data/icons/hicolor/"
export TAV_CALENDAR_LOCALE_DIR="$PWD/$build_dir/po/locale"
export TAV_CALENDAR_SOUND_DIR="$PWD/$build_dir/data"

if [ -x "$build_dir/host/tav-calendar" ]; then
  app=("$build_dir/host/tav-calendar")
else
  app=("$build_dir/tools/gallery/tav-gallery")
fi

if [ -n "${DISPLAY:-}" ]; then
  exec "${app[@]}" "$@"
fi
# Headless, the views are rendered from a demo store (a realistic month of
# calendars, events, birthdays, tasks and notes around today) unless a store
# is named with --db: a fresh machine's own store holds one empty calendar.
extra=()
if [ -x "$build_dir/host/tav-calendar" ]; then
  case " $* " in
    *" --db"*) ;;
    *) extra=(--demo) ;;
  esac
fi
mkdir -p screenshots
xvfb-run -a -s "-screen 0 1280x1024x24 -nolisten tcp" "${app[@]}" --screenshot screenshots "${extra[@]}" "$@"
echo "Rendered views:"
ls -1 screenshots/*.png
