#!/usr/bin/env bash
# Tries the validator itself: validate_cases.sh KXPVALIDATE FAULTY_MODULE
# The module passes every case, and with the fault that bears a case's name just this case fails.
set -euo pipefail

# Of one fault, or of none.
try_fault() {
    local validate=$1 module=$2 fault=$3 code=0 results failed
    results=$(KXP_FAULT=$fault "$validate" "$module" --level 1) || code=$?
    failed=$(grep FAILED <<<"$results" | cut -d' ' -f1 | tr '\n' ' ') || true
    if [ "$fault" = none ]; then
        [ "$code" = 0 ] && ! grep -q skipped <<<"$results" && return
    else
        [ "$code" = 1 ] && [ "$failed" = "$fault " ] && return
    fi
    echo "with the fault $fault: code $code, failed: $failed" >&2
    grep -A 30 -e FAILED -e skipped <<<"$results" >&2
    return 1
}
export -f try_fault

# From the end of the list: there stands what waits the longest. They wait for most of their time, so six go at once.
{ "$1" --list | cut -d' ' -f1 | tac; echo none; } |
    xargs -P 6 -I FAULT bash -c 'try_fault "$@"' try_fault "$1" "$2" FAULT
