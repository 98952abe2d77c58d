#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Lattica's panel used through AT-SPI, as a screen reader uses it, on the virtual desktop: the test starts
# its own session bus and accessibility bus, runs Lattica with accessibility turned on, finds a move
# button of the panel by its accessible name and presses it, and checks that the window moved.
# Usage (inside scripts/virtual-desktop.sh run): panel-over-atspi.sh LATTICA_BINARY
# Exits 77 (skipped) when at-spi2-core or the Python AT-SPI client is missing.
set -euo pipefail
LATTICA=$1
HERE=$(cd "$(dirname "$0")" && pwd)
LAUNCHER=/usr/libexec/at-spi-bus-launcher
[ -x "$LAUNCHER" ] || { echo "atspi: $LAUNCHER is missing (Debian package at-spi2-core)"; exit 77; }
/usr/bin/python3 -c 'import gi; gi.require_version("Atspi", "2.0")' 2>/dev/null ||
    { echo "atspi: the Python AT-SPI client is missing (Debian packages python3-gi, gir1.2-atspi-2.0)"; exit 77; }

WORK=$(mktemp -d /tmp/lattica-atspi.XXXXXX)
pids=()
cleanup() {
    # Everything this test started, newest first.
    for ((i = ${#pids[@]} - 1; i >= 0; i--)); do
        kill "${pids[i]}" 2>/dev/null || true
        wait "${pids[i]}" 2>/dev/null || true
    done
    [ -n "${BUS_PID:-}" ] && kill "$BUS_PID" 2>/dev/null || true
    rm -rf "$WORK"
}
trap cleanup EXIT

# Waits up to $1 seconds for a command to succeed.
wait_for() {
    local seconds=$1
    shift
    local deadline=$((SECONDS + seconds))
    until "$@" >/dev/null 2>&1; do
        ((SECONDS < deadline)) || return 1
        sleep 0.1
    done
}

# A session bus of our own: the accessibility bus is found through it, and its socket goes to a runtime
# folder of our own.
mkdir -m 700 "$WORK/runtime"
export XDG_RUNTIME_DIR=$WORK/runtime
dbus-daemon --session --fork --print-address=3 --print-pid=4 3>"$WORK/address" 4>"$WORK/pid"
export DBUS_SESSION_BUS_ADDRESS=$(head -n1 "$WORK/address")
BUS_PID=$(head -n1 "$WORK/pid")
"$LAUNCHER" --launch-immediately >"$WORK/launcher.log" 2>&1 &
pids+=($!)
wait_for 10 dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus org.a11y.Bus.GetAddress ||
    { cat "$WORK/launcher.log"; echo "atspi: the accessibility bus did not start"; exit 1; }
# Accessibility on, as a screen reader turns it on.
dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus org.freedesktop.DBus.Properties.Set \
    string:org.a11y.Status string:IsEnabled variant:boolean:true >/dev/null
echo "atspi: accessibility bus at $(dbus-send --session --print-reply=literal --dest=org.a11y.Bus /org/a11y/bus \
    org.a11y.Bus.GetAddress | tr -d ' ')"

# A window on the first monitor, and Lattica.
IFS=, read -r -a layout <<<"${LATTICA_TEST_LAYOUT:-1920x1080,2560x1440,1280x1024}"
first_width=${layout[0]%x*}
xlogo -geometry 300x200+200+150 -name lattica-atspi-window &
pids+=($!)
wait_for 10 xdotool search --name '^lattica-atspi-window$' ||
    wait_for 10 xdotool search --classname '^lattica-atspi-window$' || { echo "atspi: the window did not appear"; exit 1; }
window=$(xdotool search --classname '^lattica-atspi-window$' | head -n1)
window_x() { xdotool getwindowgeometry "$window" | sed -n 's/ *Position: \([-0-9]*\),.*/\1/p'; }
echo "atspi: window $window at x=$(window_x)"

# The screen reader's side listens first, as it runs before the programs it reads.
mkfifo "$WORK/to-reader"
exec {to_reader}<>"$WORK/to-reader"
/usr/bin/python3 "$HERE/press-panel-button.py" 'Move .+ from screen 1 to .+' 30 "$LATTICA" panel \
    <"$WORK/to-reader" >"$WORK/reader.log" 2>&1 &
reader_pid=$!
pids+=($reader_pid)
wait_for 10 grep -q '^listening$' "$WORK/reader.log" ||
    { cat "$WORK/reader.log"; echo "atspi: the AT-SPI listener did not start"; exit 1; }

mkdir -p "$WORK/config"
XDG_CONFIG_HOME=$WORK/config LATTICA_APPCAST_URL=http://127.0.0.1:9/appcast.xml "$LATTICA" >"$WORK/lattica.log" 2>&1 &
lattica_pid=$!
pids+=($lattica_pid)
# The instance owns its name on the session bus once it runs.
wait_for 20 dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
    org.freedesktop.DBus.GetNameOwner string:app.lattica.Lattica ||
    { cat "$WORK/lattica.log"; echo "atspi: Lattica did not start"; exit 1; }

# A move button of the first card, found by the name a screen reader speaks, once the panel opens.
echo "$lattica_pid" >&"$to_reader"
status=0
wait "$reader_pid" || status=$?
grep -v '^listening$' "$WORK/reader.log" || true
if [ "$status" -ne 0 ]; then
    cat "$WORK/lattica.log"
    echo "atspi: the move button was not pressed"
    exit 1
fi
moved_off_first() { [ "$(window_x)" -ge "$first_width" ]; }
if ! wait_for 10 moved_off_first; then
    echo "atspi: the window is still at x=$(window_x), on the first monitor"
    exit 1
fi
echo "atspi: the window moved to x=$(window_x), off the first monitor"
