#!/usr/bin/env bash
# Builds libcalendarui and runs the whole test suite (widget tests under Xvfb
# when there is no display). Usage: tools/run-tests.sh [BUILD_DIR] [meson setup options...]
# Prints a closing line "N passed, N failed".
set -uo pipefail
cd "$(dirname "$0")/.."

build_dir=${1:-build}
shift || true

if [ ! -f "$build_dir/build.ninja" ]; then
  meson setup "$build_dir" "$@" || exit 1
fi
ninja -C "$build_dir" || exit 1

# Each test program starts an X server of its own (tests/with-xvfb.sh).
meson test -C "$build_dir" --print-errorlogs --num-processes 2
status=$?

python3 tools/count-results.py "$build_dir/meson-logs/testlog.junit.xml" || status=1
exit $status
