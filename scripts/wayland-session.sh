# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# What the private Wayland sessions (virtual-kwin.sh, virtual-gnome.sh) share; sourced by them. Each
# script sets READY_TIMEOUT and defines log, parse_options (which fills REST), start_session,
# stop_session, print_session and export_run_environment.

# Reads one line from a fifo, waiting at most READY_TIMEOUT seconds for a writer.
read_fifo() {
    local fifo=$1 line=""
    exec {fd}<>"$fifo"
    read -r -t "$READY_TIMEOUT" -u "$fd" line
    local status=$?
    exec {fd}<&-
    printf '%s\n' "$line"
    return "$status"
}

# Makes the session's folder (printed as ROOT= into a new state file named in STATE) with its runtime
# folder and home, and exports the variables that point there.
make_session_root() {
    local prefix=$1 root
    root=$(mktemp -d "/tmp/$prefix.XXXXXX")
    STATE=$root/state
    echo "ROOT=$root" >"$STATE"
    export XDG_RUNTIME_DIR=$root/runtime HOME=$root/home XDG_CONFIG_HOME=$root/home/.config
    mkdir -p "$XDG_RUNTIME_DIR" "$XDG_CONFIG_HOME"
    chmod 700 "$XDG_RUNTIME_DIR"
    # Xwayland puts its socket there; a container may not have it yet.
    if [ ! -d /tmp/.X11-unix ]; then
        mkdir -p /tmp/.X11-unix && chmod 1777 /tmp/.X11-unix
    fi
}

# Starts a dbus-daemon with the given configuration on a private socket, records its pid as KEY in the
# state file and prints its address once it listens.
start_bus() {
    local key=$1 config=$2 fifo
    fifo=$(dirname "$STATE")/$key-ready
    mkfifo "$fifo"
    dbus-daemon --config-file="$config" --nofork --nopidfile --print-address=3 3>"$fifo" >/dev/null 2>&1 &
    echo "$key=$!" >>"$STATE"
    read_fifo "$fifo"
}

# The value recorded as KEY in a state file.
state_value() {
    sed -n "s/^$2=//p" "$1"
}

# Ends a process: politely, then after five seconds for good.
stop_process() {
    local pid=$1 waited=0
    [ -n "$pid" ] || return 0
    kill "$pid" 2>/dev/null || return 0
    while kill -0 "$pid" 2>/dev/null && ((waited < 100)); do
        wait "$pid" 2>/dev/null || sleep 0.05
        waited=$((waited + 1))
    done
    kill -9 "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
}

# Prints NAME=value for each variable named.
print_variables() {
    local name
    for name in "$@"; do
        echo "$name=${!name}"
    done
}

# The commands both scripts take: start, stop STATE and run ... -- COMMAND. Any other command goes to the
# script's extra_command, if it has one; without, the usage (the script's header up to line USAGE_LINES).
session_main() {
    local usage_lines=$1
    shift
    local command=${1:-}
    shift || true
    case "$command" in
        start)
            parse_options "$@"
            start_session || exit 1
            print_session
            ;;
        stop)
            stop_session "${1:?state file}"
            ;;
        run)
            parse_options "$@"
            ((${#REST[@]})) || { log "run needs a command after --"; exit 2; }
            start_session || exit 1
            export_run_environment
            "${REST[@]}"
            local status=$?
            stop_session "$STATE"
            exit "$status"
            ;;
        *)
            if declare -F extra_command >/dev/null && extra_command "$command" "$@"; then
                return
            fi
            sed -n "2,${usage_lines}p" "$0" >&2
            exit 2
            ;;
    esac
}
