#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A private multi-monitor X desktop for tests, demos and benchmarks: Xvfb with RandR monitors side by
# side, an EWMH window manager and a tray host. It stops exactly the processes it started.
#
#   virtual-desktop.sh start [--wm openbox|icewm|fluxbox|xfwm4|none] [--layout 1920x1080,2560x1440,...] [--no-tray]
#                            [--xvfb-without EXTENSION]
#       starts a desktop, prints "DISPLAY=:N" and "STATE=<file>" and returns
#   virtual-desktop.sh stop STATE
#       stops the desktop described by a state file
#   virtual-desktop.sh run [options] -- COMMAND [ARGS...]
#       starts a desktop, runs the command on it, stops the desktop and exits with the command's status
set -uo pipefail

WM=openbox
LAYOUT=1920x1080,2560x1440,1280x1024
TRAY=1
XVFB_EXTRA=()
READY_TIMEOUT=15   # seconds for any one step to become ready

log() { echo "virtual-desktop: $*" >&2; }

# Polls a command until it succeeds, for at most READY_TIMEOUT seconds.
wait_for() {
    local what=$1
    shift
    local deadline=$((SECONDS + READY_TIMEOUT))
    until "$@" >/dev/null 2>&1; do
        if ((SECONDS >= deadline)); then
            log "timed out waiting for $what"
            return 1
        fi
        sleep 0.05
    done
}

parse_options() {
    while (($#)); do
        case "$1" in
            --wm) WM=$2; shift 2 ;;
            --layout) LAYOUT=$2; shift 2 ;;
            --no-tray) TRAY=0; shift ;;
            --xvfb-without) XVFB_EXTRA+=(-extension "$2"); shift 2 ;;
            --) shift; REST=("$@"); return ;;
            *) log "unknown option $1"; exit 2 ;;
        esac
    done
    REST=()
}

wm_ready() {
    local child
    child=$(xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | awk '/window id/ {print $NF}')
    [ -n "$child" ] && xprop -id "$child" _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q "$child"
}

tray_ready() {
    local tree
    tree=$(xwininfo -root -tree 2>/dev/null)
    [[ $tree == *'"panel": ("panel" "trayer")'* ]]
}

start_desktop() {
    local widths=() heights=() total_width=0 max_height=0 part
    IFS=',' read -ra parts <<<"$LAYOUT"
    for part in "${parts[@]}"; do
        local w=${part%x*} h=${part#*x}
        widths+=("$w"); heights+=("$h")
        total_width=$((total_width + w))
        ((h > max_height)) && max_height=$h
    done

    STATE=$(mktemp /tmp/lattica-desktop.XXXXXX)
    local fdfile
    fdfile=$(mktemp /tmp/lattica-displayfd.XXXXXX)
    # -displayfd picks a free display number and reports it; -noreset keeps monitors when clients leave.
    Xvfb -displayfd 3 -screen 0 "${total_width}x${max_height}x24" -noreset -nolisten tcp +extension RANDR "${XVFB_EXTRA[@]}" \
        3>"$fdfile" >/dev/null 2>&1 &
    local xvfb_pid=$!
    echo "XVFB_PID=$xvfb_pid" >>"$STATE"
    if ! wait_for "Xvfb to report its display" test -s "$fdfile"; then
        stop_desktop "$STATE"; rm -f "$fdfile"; return 1
    fi
    local number
    number=$(tr -dc '0-9' <"$fdfile")
    rm -f "$fdfile"
    export DISPLAY=":$number"
    echo "DISPLAY=$DISPLAY" >>"$STATE"
    wait_for "the X server" xdpyinfo || { stop_desktop "$STATE"; return 1; }

    # Monitors side by side; the first takes the output "screen" (and so replaces the automatic
    # monitor that covers the whole framebuffer), the others none.
    local x=0 i
    for i in "${!widths[@]}"; do
        local w=${widths[$i]} h=${heights[$i]}
        local output=none
        ((i == 0)) && output=screen
        local name="VIRTUAL-$((i + 1))"
        ((i == 0)) && name="*$name"   # a leading star makes the monitor primary
        xrandr --setmonitor "$name" "${w}/$((w * 254 / 960))x${h}/$((h * 254 / 960))+${x}+0" "$output" \
            >/dev/null 2>&1 || log "could not define monitor $((i + 1))"
        x=$((x + w))
    done
    setxkbmap -option srvrkeys:none >/dev/null 2>&1 || true

    case "$WM" in
        none) ;;
        openbox) openbox --sm-disable >/dev/null 2>&1 & echo "WM_PID=$!" >>"$STATE" ;;
        icewm) icewm >/dev/null 2>&1 & echo "WM_PID=$!" >>"$STATE" ;;
        fluxbox) fluxbox >/dev/null 2>&1 & echo "WM_PID=$!" >>"$STATE" ;;
        xfwm4) xfwm4 --compositor=off >/dev/null 2>&1 & echo "WM_PID=$!" >>"$STATE" ;;
        *) log "unknown window manager $WM"; stop_desktop "$STATE"; return 2 ;;
    esac
    if [ "$WM" != none ]; then
        wait_for "the window manager ($WM)" wm_ready || { stop_desktop "$STATE"; return 1; }
    fi
    if ((TRAY)); then
        trayer --edge bottom --align right --widthtype request --height 24 --SetDockType true \
            --SetPartialStrut false --transparent false --tint 0x303030 >/dev/null 2>&1 &
        echo "TRAY_PID=$!" >>"$STATE"
        wait_for "the tray host" tray_ready || log "the tray host did not appear; continuing without it"
    fi
}

stop_desktop() {
    local state=$1 pids=()
    [ -f "$state" ] || return 0
    # Stop in reverse order of starting: tray, window manager, then the server.
    for key in TRAY_PID WM_PID XVFB_PID; do
        local pid
        pid=$(sed -n "s/^$key=//p" "$state")
        [ -n "$pid" ] && pids+=("$pid")
    done
    local pid
    for pid in "${pids[@]}"; do
        kill "$pid" 2>/dev/null || continue
        local deadline=$((SECONDS + 5))
        while kill -0 "$pid" 2>/dev/null && ((SECONDS < deadline)); do sleep 0.05; done
        kill -9 "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    done
    rm -f "$state"
}

command=${1:-}
shift || true
case "$command" in
    start)
        parse_options "$@"
        start_desktop || exit 1
        echo "DISPLAY=$DISPLAY"
        echo "STATE=$STATE"
        ;;
    stop)
        stop_desktop "${1:?state file}"
        ;;
    run)
        parse_options "$@"
        ((${#REST[@]})) || { log "run needs a command after --"; exit 2; }
        start_desktop || exit 1
        trap 'stop_desktop "$STATE"' EXIT
        trap 'exit 130' INT TERM
        "${REST[@]}"
        exit $?
        ;;
    *)
        sed -n '2,12p' "$0" | sed 's/^# \{0,1\}//'
        exit 2
        ;;
esac
