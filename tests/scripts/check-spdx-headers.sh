#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Every source, script and build file names its licence in its first three lines, so that a file copied
# out of the tree keeps it. Build folders are not sources.
set -uo pipefail
ROOT=${1:?usage: check-spdx-headers.sh SOURCE_ROOT}
cd "$ROOT" || exit 2
missing=0
checked=0
while IFS= read -r -d '' file; do
    checked=$((checked + 1))
    if ! head -n 3 "$file" | grep -q 'SPDX-License-Identifier: MIT'; then
        echo "no SPDX licence line: $file"
        missing=$((missing + 1))
    fi
done < <(find . \( -path './build*' -o -path './.git' -o -path './_CPack_Packages' \) -prune -o -type f \
    \( -name '*.h' -o -name '*.cpp' -o -name '*.js' -o -name '*.sh' -o -name '*.py' -o -name '*.cmake' \
       -o -name 'CMakeLists.txt' -o -name '*.h.in' -o -path './.ci/run' \) -print0)
echo "checked $checked files, $missing without a licence line"
[ "$checked" -gt 0 ] && [ "$missing" -eq 0 ]
