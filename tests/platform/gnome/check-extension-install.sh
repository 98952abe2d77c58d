#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the build's gnome-extension folder into a temporary prefix and checks that the Shell would
# find a complete extension there: metadata naming its uuid, and an entry with what it imports.
# Usage: check-extension-install.sh BUILD_SUBDIR
set -euo pipefail
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake -DCMAKE_INSTALL_PREFIX="$prefix" -P "$1/cmake_install.cmake" >/dev/null
dir=$prefix/share/gnome-shell/extensions/lattica@lattica.app
fail() { echo "extension install: $*" >&2; exit 1; }
[ -f "$dir/metadata.json" ] || fail "no metadata.json in $dir"
grep -q '"uuid": "lattica@lattica.app"' "$dir/metadata.json" || fail "metadata.json does not name the uuid"
[ -f "$dir/extension.js" ] || fail "no extension.js"
if grep -q '^export default' "$dir/extension.js"; then
    [ -f "$dir/bridge-module.js" ] || fail "the module entry's bridge-module.js is missing"
    grep -q '^export {LatticaBridge};' "$dir/bridge-module.js" || fail "bridge-module.js exports nothing"
else
    grep -q 'Me.imports.bridge' "$dir/extension.js" || fail "extension.js is neither entry"
    [ -f "$dir/bridge.js" ] || fail "the legacy entry's bridge.js is missing"
fi
echo "extension install: complete in $dir"
