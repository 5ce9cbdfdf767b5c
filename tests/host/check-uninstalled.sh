#!/usr/bin/env bash
# Builds the plain C host against the build tree itself, with nothing but the
# flags of the uninstalled pkg-config file, and runs it.
# Usage: check-uninstalled.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build=$(cd "$1" && pwd)
source=$2
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT

export PKG_CONFIG_PATH=$build/meson-uninstalled
cflags=$(pkg-config --cflags libcalendarui)
libs=$(pkg-config --libs libcalendarui)
sanitize=""
# (grep -q would stop reading early, and pipefail would then count ldd's
# broken pipe as a failure.)
if ldd "$build/src/libcalendarui.so.0" | grep -c libasan >/dev/null; then
  sanitize="-fsanitize=address,undefined"
fi
cc -std=c99 -Wall -Werror -DGLIB_DISABLE_DEPRECATION_WARNINGS $sanitize $cflags -o "$out/host" \
  "$source/tests/c-client/CClient.c" $libs
LD_LIBRARY_PATH=$build/src "$out/host"
echo "uninstalled tree OK"
