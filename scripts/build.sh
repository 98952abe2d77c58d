#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Configures and builds Lattica into ./build (or the folder given as first argument).
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${1:-$ROOT/build}
shift || true
# Paths below the source folder are hashed relative to it, and the build folder is left out of the hash,
# so that clones and worktrees in other folders reuse one another's cached objects.
export CCACHE_BASEDIR=$ROOT CCACHE_NOHASHDIR=1
cmake -S "$ROOT" -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
cmake --build "$BUILD_DIR" -j"$(nproc)"
