#!/usr/bin/env bash
# Installs the build into a scratch root and builds a plain C host against it
# with nothing but pkg-config's flags, then runs it.
# Usage: check-install.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build=$1
source=$2
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT

meson install -C "$build" --no-rebuild --quiet --destdir "$root" >/dev/null

pcdir=$(dirname "$(find "$root" -name libcalendarui.pc | head -n1)")
# Point the installed .pc file at the scratch root (its requirements stay
# the system's own).
mkdir "$root/pc"
sed "s|^prefix=|prefix=$root|" "$pcdir/libcalendarui.pc" > "$root/pc/libcalendarui.pc"
export PKG_CONFIG_PATH=$root/pc
cflags=$(pkg-config --cflags libcalendarui)
libs=$(pkg-config --libs libcalendarui)

# A sanitizer build's library needs a host built the same way. (Outputs are
# captured before grepping: with pipefail, `grep -q` closing the pipe early
# could fail the writer with SIGPIPE and the test with it.)
sanitize=""
deps=$(ldd "$build/src/libcalendarui.so.0")
if grep -q libasan <<<"$deps"; then
  sanitize="-fsanitize=address,undefined"
fi
# GTK 2 headers use GLib names that newer GLib marks deprecated.
cc -std=c99 -Wall -Werror -DGLIB_DISABLE_DEPRECATION_WARNINGS $sanitize $cflags -o "$root/host" "$source/tests/c-client/CClient.c" $libs
libdir=$(dirname "$(find "$root" -name 'libcalendarui.so.0' | head -n1)")
LD_LIBRARY_PATH=$libdir "$root/host"

# The soname is what a host records.
dynamic=$(readelf -d "$libdir/libcalendarui.so.0")
grep -q 'SONAME.*\[libcalendarui.so.0\]' <<<"$dynamic"
# Catalogues and icons are installed with it.
test -n "$(find "$root" -name calendar.mo)"
test -n "$(find "$root" -name 'calendar_colors_allday_green.png')"
echo "installed tree OK"
