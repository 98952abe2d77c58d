#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks the bash completion of the command line: commands first, then each command's options.
# Usage: bash-completion-test.sh COMPLETION_FILE
set -u
source "$1"
failures=0
expect() {
    local words=$1 wanted=$2
    read -r -a COMP_WORDS <<<"$words"
    [[ $words == *' ' ]] && COMP_WORDS+=("")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMPREPLY=()
    _lattica
    local got="${COMPREPLY[*]}"
    if [[ $got != "$wanted" ]]; then
        echo "completing '$words': got '$got', wanted '$wanted'"
        failures=$((failures + 1))
    fi
}
expect "lattica mo" "move-focused move-all move-app"
expect "lattica dis" "displays"
expect "lattica move-all --f" "--from"
expect "lattica move-focused --to ne" "next"
expect "lattica move-focused --to l" "left"
expect "lattica displays --" "--json"
expect "lattica sw" "swap"
expect "lattica swap ne" "next"
expect "lattica swap 1 --k" "--keep-size"
expect "lattica --ver" "--version"
((failures == 0)) && echo "bash completion: all cases complete as expected"
exit $((failures > 0))
