#!/usr/bin/env bash
# Tries the validator itself: validate_cases.sh KXPVALIDATE FAULTY_MODULE
# The module passes every case, and with a fault that bears a case's name just this case fails and says what is promised.
# With what is allowed nothing fails.
set -euo pipefail

# Of one fault, or of none.
try_fault() {
    local validate=$1 module=$2 fault=$3 code=0 results failed skipped
    results=$(KXP_FAULT=$fault "$validate" "$module" --level 1) || code=$?
    failed=$(grep FAILED <<<"$results" | cut -d' ' -f1 | tr '\n' ' ') || true
    skipped=$(grep -c skipped <<<"$results") || true
    case $fault in
    none | allowed:code-19 | allowed:faces-of-orphans | allowed:other-spelling) [ "$code $skipped" = "0 0" ] && return ;;
    allowed:*) [ "$code" = 0 ] && [ "$skipped" -ge 10 ] && return ;; # what needs a script
    *) [ "$code" = 1 ] && [ "$failed" = "${fault%%:*} " ] && grep -q -e promised: -e crash: <<<"$results" && return ;;
    esac
    echo "with the fault $fault: code $code, failed: $failed, $skipped skipped" >&2
    grep -A 30 -e FAILED -e skipped <<<"$results" >&2
    return 1
}
export -f try_fault

faults=$(grep -oh 'Has("[^"]*")' "$(dirname "${BASH_SOURCE[0]}")"/Faulty* | cut -d'"' -f2 | sort -u)
for name in $("$1" --list | cut -d' ' -f1); do
    grep -q "^$name" <<<"$faults" || { echo "no fault is for the case $name" >&2; exit 1; }
done
# They wait for most of their time, so six go at once.
{ echo "$faults"; echo none; } | xargs -P 6 -I FAULT bash -c 'try_fault "$@"' try_fault "$1" "$2" FAULT
