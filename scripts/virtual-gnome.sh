#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A private headless GNOME Shell (Wayland) session for tests, demos and benchmarks: its own session bus,
# a second private bus standing in for the system bus, a headless shell with virtual monitors of
# different sizes, Xwayland on demand, and Lattica's Shell extension installed and enabled before the
# shell starts. It stops exactly the processes it started.
#
#   virtual-gnome.sh start [--layout 1920x1080,1280x720] [--no-extension | --extension-disabled] [--tray]
#       starts a session (--extension-disabled installs the extension without turning it on; --tray turns
#       on the AppIndicator extension, the Shell's host of tray icons, and installs Lattica's icons) and prints the variables that reach
#       it (WAYLAND_DISPLAY, DBUS_SESSION_BUS_ADDRESS, DBUS_SYSTEM_BUS_ADDRESS, XDG_RUNTIME_DIR, HOME,
#       XDG_CONFIG_HOME, XDG_DATA_HOME) and "STATE=<file>"
#   virtual-gnome.sh stop STATE
#       stops the session described by a state file
#   virtual-gnome.sh run [--layout ...] [--no-extension | --extension-disabled] [--tray] -- COMMAND [ARGS...]
#       starts a session, runs the command in it (with LATTICA_GNOME_LAYOUT set to the layout), stops
#       the session and exits with the command's status
set -uo pipefail

LAYOUT=1920x1080,1280x720
EXTENSION=1
ENABLED=1
READY_TIMEOUT=20   # seconds for any one step to become ready
# shellcheck source=scripts/wayland-session.sh
source "$(dirname "${BASH_SOURCE[0]}")/wayland-session.sh"
HERE=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
EXTENSION_SOURCE=$HERE/../gnome-extension
EXTENSION_UUID=lattica@lattica.app
ICON_SOURCE=$HERE/../packaging/icons
# Debian's gnome-shell-extension-appindicator, installed system-wide.
TRAY_UUID=ubuntu-appindicators@ubuntu.com
TRAY=0

log() { echo "virtual-gnome: $*" >&2; }

parse_options() {
    while (($#)); do
        case "$1" in
            --layout) LAYOUT=$2; shift 2 ;;
            --no-extension) EXTENSION=0; shift ;;
            --extension-disabled) ENABLED=0; shift ;;
            --tray) TRAY=1; shift ;;
            --) shift; REST=("$@"); return ;;
            *) log "unknown option $1"; exit 2 ;;
        esac
    done
    REST=()
}

# Installs the extension into the session's data folder (the shell reads its own schema-less metadata).
install_extension() {
    local target=$XDG_DATA_HOME/gnome-shell/extensions/$EXTENSION_UUID
    mkdir -p "$target"
    cp "$EXTENSION_SOURCE"/metadata.json "$EXTENSION_SOURCE"/*.js "$target"/
}

# Puts Lattica's icons where an installation puts them, in the session's data folder, so that the
# Shell finds the tray icon the program names.
install_icons() {
    local icons=$XDG_DATA_HOME/icons/hicolor
    mkdir -p "$icons/scalable/apps" "$icons/symbolic/apps"
    cp "$ICON_SOURCE"/app.lattica.Lattica.svg "$icons/scalable/apps/"
    cp "$ICON_SOURCE"/app.lattica.Lattica-symbolic.svg "$icons/symbolic/apps/"
}

start_session() {
    command -v gnome-shell >/dev/null || { log "gnome-shell is not installed"; return 3; }
    # dconf and the shell read these when they start: they are set before the bus that starts them.
    make_session_root lattica-gnome
    local root
    root=$(dirname "$STATE")
    export XDG_DATA_HOME=$root/home/.local/share XDG_CACHE_HOME=$root/home/.cache
    mkdir -p "$XDG_DATA_HOME" "$XDG_CACHE_HOME"

    local address
    address=$(start_bus BUS_PID /usr/share/dbus-1/session.conf)
    [ -n "$address" ] || { log "timed out waiting for the session bus"; stop_session "$STATE"; return 1; }
    export DBUS_SESSION_BUS_ADDRESS=$address
    # The shell asks the system bus for logind, accounts and more; a private bus answers "no such
    # service" at once instead of reaching the machine's.
    address=$(start_bus SYSTEM_BUS_PID /usr/share/dbus-1/session.conf)
    [ -n "$address" ] || { log "timed out waiting for the private system bus"; stop_session "$STATE"; return 1; }
    export DBUS_SYSTEM_BUS_ADDRESS=$address

    local enabled=()
    if ((EXTENSION)); then
        install_extension
        ((ENABLED)) && enabled+=("'$EXTENSION_UUID'")
    fi
    if ((TRAY)); then
        [ -d "/usr/share/gnome-shell/extensions/$TRAY_UUID" ] || {
            log "--tray needs gnome-shell-extension-appindicator"; stop_session "$STATE"; return 3
        }
        enabled+=("'$TRAY_UUID'")
        install_icons
    fi
    if ((${#enabled[@]})); then
        gsettings set org.gnome.shell enabled-extensions "[$(IFS=,; echo "${enabled[*]}")]"
    fi
    gsettings set org.gnome.shell welcome-dialog-last-shown-version '999' 2>/dev/null || true
    # Tests push the pointer into the top left corner to place it; there it would open the overview.
    gsettings set org.gnome.desktop.interface enable-hot-corners false

    local monitors=() part
    IFS=',' read -ra parts <<<"$LAYOUT"
    for part in "${parts[@]}"; do monitors+=(--virtual-monitor "$part"); done
    export WAYLAND_DISPLAY=lattica-gnome
    unset DISPLAY
    gnome-shell --wayland --headless --no-x11 --wayland-display "$WAYLAND_DISPLAY" "${monitors[@]}" \
        >"$root/shell.log" 2>&1 &
    echo "SHELL_PID=$!" >>"$STATE"

    # Ready once the shell owns its name and, with the extension, once the extension answers.
    if ! gdbus wait --session --timeout "$READY_TIMEOUT" org.gnome.Shell; then
        log "timed out waiting for GNOME Shell; its log:"; tail -20 "$root/shell.log" >&2
        stop_session "$STATE"; return 1
    fi
    if ! gdbus wait --session --timeout "$READY_TIMEOUT" org.gnome.Mutter.DisplayConfig; then
        log "timed out waiting for the shell's display configuration"; stop_session "$STATE"; return 1
    fi
    if ((EXTENSION && ENABLED)) && ! wait_for_extension; then
        log "the extension did not answer; the shell's log:"; tail -20 "$root/shell.log" >&2
        stop_session "$STATE"; return 1
    fi
    leave_overview || log "the shell stays in its overview: windows there are neither focused nor placed"
}

# The shell opens its overview once it has started, where new windows get no focus. It is closed
# through the Shell's own property once it has opened, and is left when the property reads false again
# (after the closing animation).
leave_overview() {
    local property=(--session --dest org.gnome.Shell --object-path /org/gnome/Shell
        --method org.freedesktop.DBus.Properties)
    local deadline=$((SECONDS + READY_TIMEOUT)) opened=0 value
    while ((SECONDS < deadline)); do
        value=$(gdbus call "${property[@]}.Get" org.gnome.Shell OverviewActive) || return 1
        if [ "$value" = "(<true>,)" ]; then
            opened=1
            gdbus call "${property[@]}.Set" org.gnome.Shell OverviewActive '<false>' >/dev/null || return 1
        elif ((opened)); then
            return 0
        fi
        sleep 0.05
    done
    return 1
}

# The shell owns its name before it loads extensions: the extension's own ping is the readiness signal.
# Each call is a D-Bus round trip that fails at once while the object is not exported yet.
wait_for_extension() {
    local deadline=$((SECONDS + READY_TIMEOUT))
    while ((SECONDS < deadline)); do
        gdbus call --session --dest org.gnome.Shell --object-path /app/lattica/Shell \
            --method app.lattica.Shell.Ping >/dev/null 2>&1 && return 0
        # Blocks until the shell has handled one more request on the bus, which paces the loop.
        gdbus call --session --dest org.gnome.Shell --object-path /org/gnome/Shell \
            --method org.freedesktop.DBus.Peer.Ping >/dev/null 2>&1
    done
    return 1
}

stop_session() {
    local state=$1
    [ -f "$state" ] || return 0
    local root
    root=$(state_value "$state" ROOT)
    # Stop in reverse order of starting: the shell (and with it Xwayland), then the buses.
    for key in SHELL_PID SYSTEM_BUS_PID BUS_PID; do
        stop_process "$(state_value "$state" "$key")"
    done
    [ -n "$root" ] && rm -rf "$root"
}

print_session() {
    print_variables WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS DBUS_SYSTEM_BUS_ADDRESS XDG_RUNTIME_DIR HOME \
        XDG_CONFIG_HOME XDG_DATA_HOME STATE
}

export_run_environment() {
    export XDG_SESSION_TYPE=wayland XDG_CURRENT_DESKTOP=GNOME LATTICA_GNOME_LAYOUT=$LAYOUT
}

session_main 17 "$@"
