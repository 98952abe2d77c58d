#!/usr/bin/env bash
# Configures and builds Lattica into ./build (or the folder given as first argument).
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${1:-$ROOT/build}
shift || true
export CCACHE_BASEDIR=$ROOT
cmake -S "$ROOT" -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
cmake --build "$BUILD_DIR" -j"$(nproc)"
