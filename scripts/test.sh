#!/usr/bin/env bash
# Installs what is needed, builds Lattica with its tests, and runs every test (unit tests against the
# fake platform, integration tests each on a virtual desktop of its own). Warnings fail the build here.
# Then a short run of every fuzz target (clang, libFuzzer).
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=$ROOT/build-tests
"$ROOT/scripts/install-deps.sh"
"$ROOT/scripts/build.sh" "$BUILD_DIR" -DLATTICA_BUILD_TESTS=ON -DLATTICA_WERROR=ON
(cd "$BUILD_DIR" && ctest --output-on-failure --timeout 600 -j"$(nproc)")
"$ROOT/scripts/fuzz.sh" 10
