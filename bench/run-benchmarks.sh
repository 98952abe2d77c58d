#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs every benchmark program of a build on its own virtual desktop and prints their tables.
#   bench/run-benchmarks.sh [BUILD_DIR]     (default: build)
set -uo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(dirname "$here")
build=${1:-$root/build}
status=0
# The benchmarks that build a controller keep their preferences and shortcuts out of the user's own.
XDG_CONFIG_HOME=$(mktemp -d)
export XDG_CONFIG_HOME
trap 'rm -rf "$XDG_CONFIG_HOME"' EXIT
export LATTICA_APPCAST_URL=http://127.0.0.1:9/appcast.xml
for bench in inventory_bench capture_bench refresh_bench mover_bench shortcut_move_bench command_bench; do
    program="$build/bench/$bench"
    if [ ! -x "$program" ]; then
        echo "run-benchmarks: $bench is not built in $build; skipped" >&2
        continue
    fi
    "$root/scripts/virtual-desktop.sh" run --wm openbox --layout 1920x1080,2560x1440,1280x1024 -- "$program" || status=1
done
# The KWin backend on a headless KWin with three outputs of different sizes.
if [ -x "$build/bench/kwin_bench" ]; then
    "$root/scripts/virtual-kwin.sh" run --layout 1920x1080,2560x1440,1280x720 -- \
        env QT_QPA_PLATFORM=wayland "$build/bench/kwin_bench" || status=1
else
    echo "run-benchmarks: kwin_bench is not built in $build; skipped" >&2
fi
# GNOME Shell through the extension, on a headless shell with two monitors.
if [ -x "$build/bench/gnome_bench" ] && command -v gnome-shell >/dev/null; then
    "$root/scripts/virtual-gnome.sh" run --layout 1920x1080,1280x720 -- env QT_QPA_PLATFORM=wayland "$build/bench/gnome_bench" || status=1
else
    echo "run-benchmarks: gnome_bench is not built in $build or gnome-shell is missing; skipped" >&2
fi
exit $status
