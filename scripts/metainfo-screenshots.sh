#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Takes the screenshots named in the AppStream metadata (packaging/screenshots/panel.png and settings.png)
# of the real program on a virtual desktop with two monitors and a few windows.
# Usage: metainfo-screenshots.sh [BUILD_DIR]   (the program at BUILD_DIR/app/lattica, default ./build)
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${1:-$ROOT/build}
LATTICA=$BUILD_DIR/app/lattica
OUT=$ROOT/packaging/screenshots
[ -x "$LATTICA" ] || { echo "metainfo-screenshots: build the program first ($LATTICA)"; exit 2; }

# A session bus of our own, so that the commands below reach this program and no other.
if [ -z "${LATTICA_SCREENSHOT_BUS:-}" ]; then
    LATTICA_SCREENSHOT_BUS=1 exec dbus-run-session -- "$0" "$@"
fi

WORK=$(mktemp -d /tmp/lattica-screenshots.XXXXXX)
STATE=""
PIDS=()
cleanup() {
    [ -n "${LATTICA_PID:-}" ] && { "$LATTICA" quit >/dev/null 2>&1 || kill "$LATTICA_PID" 2>/dev/null; wait "$LATTICA_PID" 2>/dev/null; }
    for pid in "${PIDS[@]}"; do kill "$pid" 2>/dev/null; done
    [ -n "$STATE" ] && "$ROOT/scripts/virtual-desktop.sh" stop "$STATE"
    rm -rf "$WORK"
}
trap cleanup EXIT

eval "$("$ROOT/scripts/virtual-desktop.sh" start --layout 1280x720,1280x720)"
export DISPLAY
export XDG_CONFIG_HOME=$WORK/config
# No update check reaches the network from here.
export LATTICA_APPCAST_URL=http://127.0.0.1:9/appcast.xml

# Polls a command for at most 20 seconds.
wait_for() {
    local what=$1 deadline=$((SECONDS + 20))
    shift
    until "$@" >/dev/null 2>&1; do
        ((SECONDS < deadline)) || { echo "metainfo-screenshots: timed out waiting for $what"; exit 1; }
        sleep 0.1
    done
}

# A picture of the whole desktop once two pictures in a row are the same (previews and fades are done).
settled_root() {
    local target=$1 deadline=$((SECONDS + 20))
    import -window root "$WORK/before.png"
    while :; do
        sleep 0.5
        import -window root "$target"
        [ "$(compare -metric AE "$WORK/before.png" "$target" null: 2>&1 || true)" = 0 ] && return 0
        ((SECONDS < deadline)) || { echo "metainfo-screenshots: the desktop never settled"; exit 1; }
        mv "$target" "$WORK/before.png"
    done
}

# The program's visible windows other than its tray icon: the panel or the settings.
program_windows() {
    local window
    for window in $(xdotool search --onlyvisible --class lattica 2>/dev/null); do
        eval "$(xdotool getwindowgeometry --shell "$window")"
        ((WIDTH > 100)) && echo "$window"
    done
    return 0
}
has_program_window() { [ -n "$(program_windows)" ]; }
export -f program_windows has_program_window

xlogo -geometry 560x420+80+90 >/dev/null 2>&1 & PIDS+=($!)
xclock -geometry 260x260+760+300 >/dev/null 2>&1 & PIDS+=($!)
xeyes -geometry 420x300+1480+120 >/dev/null 2>&1 & PIDS+=($!)
xlogo -geometry 380x320+2000+300 >/dev/null 2>&1 & PIDS+=($!)
wait_for "the client windows" bash -c '[ "$(wmctrl -l | wc -l)" -ge 4 ]'

"$LATTICA" >"$WORK/lattica.log" 2>&1 &
LATTICA_PID=$!
wait_for "the program on the bus" "$LATTICA" displays

# The panel opens at the tray icon, at the bottom right of the first monitor.
"$LATTICA" panel
wait_for "the panel" has_program_window
settled_root "$WORK/root.png"
mkdir -p "$OUT"
convert "$WORK/root.png" -crop 1280x720+0+0 +repage "$OUT/panel.png"
xdotool key Escape
wait_for "the panel to close" bash -c '! has_program_window'

# The settings open under the pointer, on the first monitor, at their shortcuts section.
xdotool mousemove 640 360
"$LATTICA" settings
wait_for "the settings" has_program_window
window=$(program_windows | tail -1)
eval "$(xdotool getwindowgeometry --shell "$window")"
# The sidebar's third button is the shortcuts section.
xdotool mousemove $((X + 100)) $((Y + ${LATTICA_SHORTCUTS_BUTTON_Y:-77})) click 1
xdotool mousemove 1150 650
settled_root "$WORK/root.png"
convert "$WORK/root.png" -crop 1280x720+0+0 +repage "$OUT/settings.png"
echo "metainfo-screenshots: wrote $OUT/panel.png and $OUT/settings.png"
