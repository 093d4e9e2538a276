#!/usr/bin/env bash
# Bad use of the validator, and results that nobody gets: bad_use.sh KXPVALIDATE MODULE
set -euo pipefail
validate=$1
cd "$(dirname "$2")"
name=$(basename "$2")

# expect CODE TEXT WORD...: the exit code, and what standard error has.
expect() {
    local code=0 problem
    problem=$("$validate" "${@:3}" 2>&1 >/dev/null) || code=$?
    [ "$code" = "$1" ] && [[ $problem == *"$2"* ]] && return
    echo "$*: code $code, $problem" >&2
    exit 1
}

expect 2 "No such file" ./nowhere.kxp6
expect 2 "is no regular file" .
expect 2 "needs a case" --only "" "$name"
expect 2 "there is no case" --only nothing "$name"
expect 2 "needs a number" --seed 99999999999999999999999 "$name"
expect 2 "needs a number" --seed -1 "$name"
expect 0 "" --only faces "$name" # found without a folder in front
for words in "--list" "--only faces $name" "--json --only faces $name"; do
    code=0
    # shellcheck disable=SC2086
    "$validate" $words >/dev/full 2>/dev/null || code=$?
    [ "$code" = 2 ] || { echo "$words into a full disk: code $code" >&2; exit 1; }
done
