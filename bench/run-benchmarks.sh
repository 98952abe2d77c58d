#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs every benchmark program of a build on its own virtual desktop and prints their tables, then one
# summary table of every figure that has a target: its value, its ratio to its floor and to its peer
# tool (both measured in the same run), and whether the target is met.
#   bench/run-benchmarks.sh [BUILD_DIR]     (default: build)
# LATTICA_BENCH_SHORT=1 runs the tray click with few openings and a short idle window (a smoke run).
set -uo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(dirname "$here")
build=${1:-$root/build}
status=0
# The benchmarks that build a controller keep their preferences and shortcuts out of the user's own.
XDG_CONFIG_HOME=$(mktemp -d)
export XDG_CONFIG_HOME
summary=$(mktemp)
output=$(mktemp)
trap 'rm -rf "$XDG_CONFIG_HOME" "$summary" "$output"' EXIT
export LATTICA_APPCAST_URL=http://127.0.0.1:9/appcast.xml
desktop=("$root/scripts/virtual-desktop.sh" run --wm openbox --layout 1920x1080,2560x1440,1280x1024)
# Runs a benchmark, printing its output as it comes without the summary lines, which are kept for the end.
run_bench() {
    "$@" | tee "$output" | grep -v '^summary'
    local code=${PIPESTATUS[0]}
    grep '^summary' "$output" >>"$summary"
    return "$code"
}
for bench in inventory_bench capture_bench refresh_bench mover_bench shortcut_move_bench command_bench; do
    program="$build/bench/$bench"
    if [ ! -x "$program" ]; then
        echo "run-benchmarks: $bench is not built in $build; skipped" >&2
        continue
    fi
    run_bench "${desktop[@]}" -- "$program" || status=1
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
# The tray click starts its own tray host on each monitor in turn.
lattica=$build/app/lattica
[ -x "$lattica" ] || lattica=$build/lattica
if [ -x "$build/bench/tray_click_bench" ] && [ -x "$lattica" ]; then
    if [ "${LATTICA_BENCH_SHORT:-0}" = 1 ]; then
        counts=(5 30 5)
    else
        counts=(20 1000 60)
    fi
    run_bench "${desktop[@]}" --no-tray -- "$build/bench/tray_click_bench" "$lattica" "${counts[@]}" || status=1
else
    echo "run-benchmarks: tray_click_bench or lattica is not built in $build; skipped" >&2
fi
echo
echo "Summary (ratios: value / floor and value / peer tool, from this run; load: $(cut -d' ' -f1-3 /proc/loadavg))"
awk -F'\t' 'BEGIN { printf "%-60s %10s %-5s %-16s %9s %9s %s\n", "figure", "value", "unit", "target", "/floor", "/peer", "met" }
    { printf "%-60s %10s %-5s %-16s %9s %9s %s\n", $2, $3, $4, $5, $6, $7, $8 }' "$summary"
exit $status
