#!/usr/bin/env bash
# Installs what libcalendarui needs to build, test and run on Debian 12.
# Run as root (or with sudo available). Safe to run again.
set -euo pipefail

packages=(
  build-essential meson ninja-build pkg-config python3 gettext
  libglib2.0-dev libgtk2.0-dev libcairo2-dev libpango1.0-dev libgdk-pixbuf-2.0-dev
  libx11-dev libxtst-dev
  libcanberra-gtk-dev sound-theme-freedesktop
  libical-dev libsqlite3-dev sqlite3
  libgtest-dev libgmock-dev
  xvfb xauth x11-utils fonts-dejavu-core
  valgrind
  clang libclang-rt-14-dev  # fuzz builds (-Dfuzz=true): libFuzzer and the sanitizer runtimes
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done

if [ ${#missing[@]} -gt 0 ]; then
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO="sudo"
  $SUDO apt-get update -q
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -q --no-install-recommends "${missing[@]}"
fi
