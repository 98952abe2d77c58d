#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is needed, builds Lattica with its tests, and runs every test (unit tests against the
# fake platform, integration tests each on a virtual desktop of its own). Warnings fail the build here.
# Then the same suite built with AddressSanitizer and UndefinedBehaviorSanitizer (leak checking on; any
# report fails the test that caused it; LATTICA_TEST_SANITIZED=0 skips it). Last, a short run of every
# fuzz target (clang, libFuzzer).
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=$ROOT/build-tests
SANITIZED_BUILD_DIR=$ROOT/build-sanitized
"$ROOT/scripts/install-deps.sh"

stage() { echo "== $1 ($(date +%T))"; }

stage "build and test"
"$ROOT/scripts/build.sh" "$BUILD_DIR" -DLATTICA_BUILD_TESTS=ON -DLATTICA_WERROR=ON
(cd "$BUILD_DIR" && ctest --output-on-failure --timeout 600 -j"$(nproc)")

if [ "${LATTICA_TEST_SANITIZED:-1}" = 1 ]; then
    stage "build and test with sanitizers"
    # Warnings are checked by the build above; with the sanitizers GCC warns of uninitialised values
    # inside Qt's own containers that are not there. -O1 with line tables only: the sanitizers' usual
    # setting, and it compiles in about half the time of -O2 -g.
    "$ROOT/scripts/build.sh" "$SANITIZED_BUILD_DIR" -DLATTICA_BUILD_TESTS=ON -DLATTICA_BUILD_BENCHMARKS=OFF \
        -DLATTICA_SANITIZE=address,undefined -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g1 -DNDEBUG"
    # Leaks inside libraries we do not build are listed, each with the reason, in the suppressions file.
    export LSAN_OPTIONS="suppressions=$ROOT/tests/sanitizers/lsan-suppressions.txt:print_suppressions=0"
    export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
    (cd "$SANITIZED_BUILD_DIR" && ctest --output-on-failure --timeout 600 -j"$(nproc)")
fi

stage "fuzz smoke"
"$ROOT/scripts/fuzz.sh" 10
stage "done"
