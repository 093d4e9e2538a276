#!/usr/bin/env bash
# Tries the validator itself: validate_cases.sh KXPVALIDATE FAULTY_MODULE
# The module passes every case, and with the fault that bears a case's name just this case fails.
set -euo pipefail
validate=$1 module=$2
problems=0
complain() {
    echo "FAILED: $*" >&2
    problems=$((problems + 1))
}

without=$("$validate" "$module" --level 1) || complain "without a fault: $without"
! grep -q skipped <<<"$without" || complain "a case is skipped: $without"

cases=$("$validate" --list | cut -d' ' -f1)
for fault in $cases; do
    code=0
    results=$(KXP_FAULT=$fault "$validate" "$module" --level 1) || code=$?
    failed=$(grep FAILED <<<"$results" | cut -d' ' -f1 | tr '\n' ' ') || true
    [ "$code" = 1 ] && [ "$failed" = "$fault " ] || complain "with the fault of $fault: code $code, failed: $failed"
done
exit "$((problems > 0))"
