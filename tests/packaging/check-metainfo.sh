#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Validates the AppStream metadata and checks that every screenshot it names is kept in
# packaging/screenshots at the size it states. Usage: check-metainfo.sh METAINFO SOURCE_DIR.
# Exits 77 (skipped) without appstreamcli.
set -euo pipefail
METAINFO=$1
SOURCE_DIR=$2
command -v appstreamcli >/dev/null || { echo "check-metainfo: appstreamcli is missing (Debian package appstream)"; exit 77; }
appstreamcli validate --no-net "$METAINFO"

failures=0
images=$(grep -o '<image [^>]*>[^<]*</image>' "$METAINFO" || true)
[ -n "$images" ] || { echo "check-metainfo: no screenshots"; exit 1; }
while IFS= read -r image; do
    url=$(sed 's/.*>\([^<]*\)<.*/\1/' <<<"$image")
    width=$(sed -n 's/.* width="\([0-9]*\)".*/\1/p' <<<"$image")
    height=$(sed -n 's/.* height="\([0-9]*\)".*/\1/p' <<<"$image")
    file=$SOURCE_DIR/packaging/screenshots/${url##*/}
    if [[ $url != */packaging/screenshots/* || ! -f $file ]]; then
        echo "check-metainfo: $url is not a picture in packaging/screenshots"
        failures=$((failures + 1))
        continue
    fi
    actual=$(identify -format '%wx%h' "$file")
    if [ "$actual" != "${width}x${height}" ]; then
        echo "check-metainfo: ${url##*/} is $actual, the metadata says ${width}x${height}"
        failures=$((failures + 1))
    fi
done <<<"$images"
((failures == 0)) || exit 1
echo "check-metainfo: valid, and every screenshot is kept at its stated size"
