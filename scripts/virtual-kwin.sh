#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A private headless KDE Plasma (KWin) Wayland session for tests, demos and benchmarks: its own session
# bus, a headless KWin with virtual outputs of different sizes side by side, and Xwayland. It stops
# exactly the processes it started.
#
#   virtual-kwin.sh start [--layout 1920x1080,2560x1440,1280x720] [--capture-checks]
#       starts a session and prints the variables that reach it (WAYLAND_DISPLAY, DISPLAY,
#       DBUS_SESSION_BUS_ADDRESS, XDG_RUNTIME_DIR, HOME, XDG_CONFIG_HOME) and "STATE=<file>"
#   virtual-kwin.sh stop STATE
#       stops the session described by a state file
#   virtual-kwin.sh run [--layout ...] [--capture-checks] -- COMMAND [ARGS...]
#       starts a session, runs the command in it (with LATTICA_KWIN_LAYOUT set to the layout), stops the
#       session and exits with the command's status
#   virtual-kwin.sh output NAME enable|disable
#       inside a session: turns one output on or off, as plugging a monitor in or out would
#
# Outputs are virtual framebuffers of one size; each output's size in the layout comes from its scale
# (KWin's virtual outputs have a single mode), so every wanted size must divide the largest width and
# height by one factor. Window management and capture restrictions are lifted for the tests;
# --capture-checks keeps the capture restriction, as on a real desktop.
set -uo pipefail

LAYOUT=1920x1080,2560x1440,1280x720
CAPTURE_CHECKS=0   # 1 keeps KWin's screenshot restriction, as on a real desktop
READY_TIMEOUT=15   # seconds for any one step to become ready
# shellcheck source=scripts/wayland-session.sh
source "$(dirname "${BASH_SOURCE[0]}")/wayland-session.sh"

log() { echo "virtual-kwin: $*" >&2; }

parse_options() {
    while (($#)); do
        case "$1" in
            --layout) LAYOUT=$2; shift 2 ;;
            --capture-checks) CAPTURE_CHECKS=1; shift ;;
            --) shift; REST=("$@"); return ;;
            *) log "unknown option $1"; exit 2 ;;
        esac
    done
    REST=()
}

start_session() {
    local widths=() heights=() part max_width=0 max_height=0
    IFS=',' read -ra parts <<<"$LAYOUT"
    for part in "${parts[@]}"; do
        local w=${part%x*} h=${part#*x}
        widths+=("$w"); heights+=("$h")
        ((w > max_width)) && max_width=$w
        ((h > max_height)) && max_height=$h
    done
    local count=${#widths[@]}

    make_session_root lattica-kwin
    local root
    root=$(dirname "$STATE")
    mkdir -p "$root/bin"

    # A private session bus; it reports its address once it listens.
    local address
    address=$(start_bus BUS_PID /usr/share/dbus-1/session.conf)
    if [ -z "$address" ]; then
        log "timed out waiting for the session bus"; stop_session "$STATE"; return 1
    fi
    export DBUS_SESSION_BUS_ADDRESS=$address
    echo "BUS_ADDRESS=$address" >>"$STATE"

    # The packaged binary carries a file capability that containers refuse to execute; a plain copy runs.
    # KWin only loads its own platform plugin into a program named kwin_wayland.
    local kwin
    kwin=$(command -v kwin_wayland) || { log "kwin_wayland is not installed"; stop_session "$STATE"; return 3; }
    cp "$kwin" "$root/bin/kwin_wayland"

    # KWin starts the applications given to it once Wayland and Xwayland accept clients: this one
    # reports both display names, which is the readiness signal.
    mkfifo "$root/kwin-ready"
    export WAYLAND_DISPLAY=lattica-kwin
    unset DISPLAY
    local lifted=(KWIN_WAYLAND_NO_PERMISSION_CHECKS=1 KWIN_SCREENSHOT_NO_PERMISSION_CHECKS=1)
    ((CAPTURE_CHECKS)) && lifted=(KWIN_WAYLAND_NO_PERMISSION_CHECKS=1)
    env -u KWIN_SCREENSHOT_NO_PERMISSION_CHECKS "${lifted[@]}" \
        "$root/bin/kwin_wayland" --virtual --xwayland --no-lockscreen --socket "$WAYLAND_DISPLAY" \
        --width "$max_width" --height "$max_height" --output-count "$count" \
        "sh -c 'echo \"\$DISPLAY\" >$root/kwin-ready'" >"$root/kwin.log" 2>&1 &
    echo "KWIN_PID=$!" >>"$STATE"
    local display
    display=$(read_fifo "$root/kwin-ready")
    if [ -z "$display" ]; then
        log "timed out waiting for KWin and Xwayland; its log:"; tail -20 "$root/kwin.log" >&2
        stop_session "$STATE"; return 1
    fi
    export DISPLAY=$display

    arrange_outputs || log "could not arrange the outputs as $LAYOUT; they keep ${max_width}x${max_height}"
}

# Gives each output its size (through its scale) and puts the outputs side by side, the first primary.
# kscreen-doctor reads outputs in its own process but applies a configuration only through the KScreen
# backend launcher, which the bus starts: the launcher gets the session's variables first.
arrange_outputs() {
    local names i x=0 arguments=() wanted=()
    command -v kscreen-doctor >/dev/null || return 1
    export KSCREEN_BACKEND=KWayland
    dbus-update-activation-environment WAYLAND_DISPLAY XDG_RUNTIME_DIR QT_QPA_PLATFORM=wayland KSCREEN_BACKEND \
        >/dev/null 2>&1 || return 1
    mapfile -t names < <(list_outputs | awk '{print $3}')
    ((${#names[@]} == ${#widths[@]})) || return 1
    for i in "${!names[@]}"; do
        local scale
        scale=$(awk -v big="$max_width" -v w="${widths[$i]}" 'BEGIN { printf "%.10f", big / w }')
        arguments+=("output.${names[$i]}.scale.$scale" "output.${names[$i]}.position.$x,0")
        wanted+=("${names[$i]} $x,0 ${widths[$i]}x${heights[$i]}")
        x=$((x + widths[i]))
    done
    arguments+=("output.${names[0]}.primary")
    apply_outputs "${arguments[@]}" || return 1
    # The launcher applies the change after kscreen-doctor returns; the outputs are read until they match.
    local attempt
    for attempt in $(seq 50); do
        [ "$(list_outputs | sed -E 's/^Output: [0-9]+ ([^ ]+) .*Geometry: ([0-9,-]+) ([0-9]+x[0-9]+).*/\1 \2 \3/')" = "$(printf '%s\n' "${wanted[@]}")" ] && return 0
    done
    return 1
}

# Applies one kscreen-doctor configuration. The backend launcher serves one configuration and then
# answers every later client "another backend is already active" while kscreen-doctor waits for ever: each
# change gets a fresh launcher, and a time limit.
apply_outputs() {
    stop_kscreen_launcher
    QT_QPA_PLATFORM=wayland KSCREEN_BACKEND=KWayland KSCREEN_BACKEND_INPROCESS=0 \
        timeout "$READY_TIMEOUT" kscreen-doctor "$@" >/dev/null 2>&1
    local status=$?
    stop_kscreen_launcher
    return "$status"
}

# The KScreen backend launcher that the session bus started leaves the bus's process tree; the bus knows
# it by its name.
stop_kscreen_launcher() {
    local pid
    pid=$(dbus-send --session --print-reply=literal --dest=org.freedesktop.DBus / \
        org.freedesktop.DBus.GetConnectionUnixProcessID string:org.kde.KScreen 2>/dev/null | awk '{print $2}')
    [ -n "$pid" ] && stop_process "$pid"
    return 0
}

# Turns an output on or off and waits until KScreen reports it so.
switch_output() {
    local name=$1 wanted=$2 state attempt
    case "$wanted" in
        enable) state=enabled ;;
        disable) state=disabled ;;
        *) log "output: enable or disable, not $wanted"; return 2 ;;
    esac
    [ -n "${DBUS_SESSION_BUS_ADDRESS:-}" ] && [ -n "${WAYLAND_DISPLAY:-}" ] || { log "output: not inside a session"; return 2; }
    apply_outputs "output.$name.$wanted" || { log "kscreen-doctor did not apply output.$name.$wanted"; return 1; }
    for attempt in $(seq 50); do
        list_outputs | grep -q "^Output: [0-9]* $name $state " && return 0
    done
    log "output $name is not $state"
    return 1
}

# One line per output: "Output: ID NAME enabled ... Geometry: X,Y WxH Scale: ...", without colours.
list_outputs() {
    QT_QPA_PLATFORM=wayland KSCREEN_BACKEND_INPROCESS=1 kscreen-doctor -o 2>/dev/null | sed 's/\x1b\[[0-9;]*m//g' |
        grep '^Output:'
}

stop_session() {
    local state=$1
    [ -f "$state" ] || return 0
    local root
    root=$(state_value "$state" ROOT)
    # Stop in reverse order of starting: KWin (and with it Xwayland), then what the bus started for us
    # (the KScreen backend launcher), then the bus.
    stop_process "$(state_value "$state" KWIN_PID)"
    local address
    address=$(state_value "$state" BUS_ADDRESS)
    [ -n "$address" ] && DBUS_SESSION_BUS_ADDRESS=$address stop_kscreen_launcher
    local bus
    bus=$(state_value "$state" BUS_PID)
    if [ -n "$bus" ]; then
        local child
        for child in $(pgrep -P "$bus"); do
            stop_process "$child"
        done
        stop_process "$bus"
    fi
    [ -n "$root" ] && rm -rf "$root"
}

print_session() {
    print_variables WAYLAND_DISPLAY DISPLAY DBUS_SESSION_BUS_ADDRESS XDG_RUNTIME_DIR HOME XDG_CONFIG_HOME STATE
}

export_run_environment() {
    export XDG_SESSION_TYPE=wayland XDG_CURRENT_DESKTOP=KDE LATTICA_KWIN_LAYOUT=$LAYOUT
}

# Handles the commands only this script has; returns 1 for one it does not know.
extra_command() {
    [ "$1" = output ] || return 1
    switch_output "${2:?output name}" "${3:?enable or disable}"
    exit
}

session_main 15 "$@"
