#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs scripts/install-deps.sh with apt-get, apt and sudo replaced by stand-ins that record being called.
# Once everything is installed (the test command installs first), a second run must touch neither the
# network nor sudo, so none of them may be called and the script must succeed.
# Usage: check-install-deps-offline.sh SOURCE_DIR
set -euo pipefail
SOURCE_DIR=$1
STUBS=$(mktemp -d)
trap 'rm -rf "$STUBS"' EXIT
for tool in apt-get apt sudo; do
    cat >"$STUBS/$tool" <<STUB
#!/bin/sh
echo "$tool \$*" >>"$STUBS/called"
exit 1
STUB
    chmod +x "$STUBS/$tool"
done

if ! PATH="$STUBS:$PATH" bash "$SOURCE_DIR/scripts/install-deps.sh"; then
    echo "install-deps failed although every package should be present"
    status=1
else
    status=0
fi
if [ -s "$STUBS/called" ]; then
    echo "install-deps called the package manager or sudo on a machine that has everything:"
    cat "$STUBS/called"
    status=1
fi
exit $status
