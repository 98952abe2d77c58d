#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the libFuzzer targets with clang into ./build-fuzz and runs each for SECONDS (default 10) on a
# scratch copy of its seed corpus, one after the other. Fails when a target crashes or breaks a property;
# the input that did it is left in the scratch folder and named in the output.
#   scripts/fuzz.sh [SECONDS] [TARGET...]     extra libFuzzer flags via LATTICA_FUZZ_FLAGS
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
SECONDS_EACH=${1:-10}
shift || true
BUILD_DIR=${LATTICA_FUZZ_BUILD_DIR:-$ROOT/build-fuzz}
TARGETS=("$@")
if [ ${#TARGETS[@]} -eq 0 ]; then
    TARGETS=(PreferencesFileFuzzer ShortcutJsonFuzzer DisplayRecordsFuzzer AppcastFuzzer EdidFuzzer DesktopEntryFuzzer)
fi

export CCACHE_BASEDIR=$ROOT CCACHE_NOHASHDIR=1
cmake -S "$ROOT" -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
    -DLATTICA_FUZZ=ON -DLATTICA_BUILD_TESTS=OFF -DLATTICA_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build "$BUILD_DIR" -j"$(nproc)" --target "${TARGETS[@]}"

SCRATCH=$(mktemp -d "${TMPDIR:-/tmp}/lattica-fuzz.XXXXXX")
echo "scratch corpora and any crashing input: $SCRATCH"
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
failed=()
for target in "${TARGETS[@]}"; do
    corpus=$SCRATCH/$target
    mkdir -p "$corpus" "$SCRATCH/artifacts-$target"
    cp -r "$ROOT/tests/fuzz/corpus/$target/." "$corpus/"
    echo "== $target for ${SECONDS_EACH}s"
    # shellcheck disable=SC2086
    if ! "$BUILD_DIR/tests/fuzz/$target" -max_total_time="$SECONDS_EACH" -timeout=10 -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$SCRATCH/artifacts-$target/" ${LATTICA_FUZZ_FLAGS:-} \
        "$corpus" >"$SCRATCH/$target.log" 2>&1; then
        failed+=("$target")
        tail -n 40 "$SCRATCH/$target.log"
    fi
    grep -E '^stat::number_of_executed_units|^stat::average_exec_per_sec' "$SCRATCH/$target.log" | tr '\n' ' ' || true
    echo
done
if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzzing failed: ${failed[*]} (inputs in $SCRATCH/artifacts-*)" >&2
    exit 1
fi
echo "fuzzing passed: ${TARGETS[*]}"
