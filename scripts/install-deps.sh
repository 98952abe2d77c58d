#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs everything Lattica needs to build, run and test on Debian 12.
# Idempotent and non-interactive; works as root or through sudo.
set -euo pipefail

PACKAGES=(
  build-essential cmake ninja-build pkg-config clang-format ccache clang libclang-rt-14-dev
  qt6-base-dev qt6-base-dev-tools qt6-svg-dev qt6-l10n-tools qt6-tools-dev
  libxcb1-dev libxcb-randr0-dev libxcb-shm0-dev libxcb-xtest0-dev libxcb-xkb-dev
  libxcb-res0-dev libxcb-keysyms1-dev libxcb-icccm4-dev libxcb-ewmh-dev libxkbcommon-x11-dev libxkbcommon-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  xvfb x11-xserver-utils x11-utils x11-apps xdotool wmctrl openbox icewm trayer imagemagick
  x11-xkb-utils xauth dbus-x11 dbus-daemon fonts-dejavu-core
  libqt6svg6 help2man desktop-file-utils appstream dpkg-dev file
  # KDE Plasma's compositor, headless, for the KWin backend's tests (scripts/virtual-kwin.sh); Qt's
  # Wayland platform for native test clients; kscreen-doctor (and the Qt 5 Wayland platform it needs)
  # to give the virtual outputs different sizes
  kwin-wayland qt6-wayland libkf5screen-bin qtwayland5 dbus-bin
  # KWin's fake-input protocol, to press keys in the hot-key tests
  plasma-wayland-protocols libwayland-bin libwayland-dev
  # GNOME Shell, headless, for the GNOME backend's tests (scripts/virtual-gnome.sh); gjs parses the Shell
  # extension's entry files
  gnome-shell gjs
  # The Shell's host of tray icons, for the tray test on GNOME
  gnome-shell-extension-appindicator
  # libdbus, for the `lattica` launcher that calls the running instance without loading Qt
  libdbus-1-dev
  # The accessibility bus and a Python AT-SPI client, to use the panel as a screen reader does
  at-spi2-core python3-gi gir1.2-atspi-2.0
  # Qt's own texts (the command line's "Usage:", standard buttons) in the user's language
  qt6-translations-l10n
  xcompmgr  # a compositing manager, for the tests of window opacity (it shows only while one runs)
)

missing=()
for p in "${PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all ${#PACKAGES[@]} packages present"
  exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
echo "install-deps: installing ${missing[*]}"
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
