#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is needed, builds Lattica and starts it: on your desktop when one is available, else on a
# virtual three-monitor desktop of its own that you can watch through VNC or screenshots.
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
"$ROOT/scripts/install-deps.sh"
"$ROOT/scripts/build.sh" "$ROOT/build" -DLATTICA_BUILD_TESTS=OFF -DLATTICA_BUILD_BENCHMARKS=OFF
LATTICA=$ROOT/build/app/lattica

if [ -n "${DISPLAY:-}" ] && xdpyinfo >/dev/null 2>&1; then
    exec "$LATTICA" "$@"
fi

echo "No X display is available: starting a virtual desktop with three monitors."
if ! command -v x11vnc >/dev/null; then
    SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO=sudo
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends x11vnc >/dev/null || true
fi
# LATTICA_DESKTOP may hold options such as "--layout 1920x1080,1920x1080 --wm icewm".
# shellcheck disable=SC2086
eval "$("$ROOT/scripts/virtual-desktop.sh" start ${LATTICA_DESKTOP:-})"
export DISPLAY
VNC_PID=""
cleanup() {
    [ -n "$VNC_PID" ] && kill "$VNC_PID" 2>/dev/null
    "$ROOT/scripts/virtual-desktop.sh" stop "$STATE"
}
trap cleanup EXIT
trap 'exit 130' INT TERM
if command -v x11vnc >/dev/null; then
    x11vnc -display "$DISPLAY" -localhost -forever -nopw -quiet -rfbport 5900 >/dev/null 2>&1 &
    VNC_PID=$!
    echo "Watch it with a VNC viewer on localhost:5900 (from another machine: ssh -L 5900:localhost:5900 ...)."
fi
echo "Screenshot: DISPLAY=$DISPLAY import -window root lattica.png"
echo "Lattica's icon is in the tray at the bottom right; press Ctrl+C here to stop everything."
"$LATTICA" "$@"
