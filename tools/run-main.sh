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

if [ -x "$build_dir/host/tav-calendar" ]; then
  app=("$build_dir/host/tav-calendar")
else
  app=("$build_dir/tools/gallery/tav-gallery")
fi

if [ -n "${DISPLAY:-}" ]; then
  exec "${app[@]}" "$@"
fi
mkdir -p screenshots
xvfb-run -a -s "-screen 0 1280x1024x24 -nolisten tcp" "${app[@]}" --screenshot screenshots "$@"
echo "Rendered views:"
ls -1 screenshots/*.png
