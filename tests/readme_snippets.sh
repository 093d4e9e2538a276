#!/usr/bin/env bash
# Runs what README.md shows: each js block under the file name in its first line, each "$ ./run ..." line of a console block,
# whose output must be the lines below it.
#   readme_snippets.sh README.md STAGEHOST
set -euo pipefail
readme=$(realpath "$1")
stagehost=$(realpath "$2")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

awk '/^```js$/ { getline; name = $2; inside = 1; next } /^```$/ { inside = 0 } inside { print > name }' "$readme"
awk '/^```console$/ { inside = 1; next } /^```$/ { inside = 0 } inside { print }' "$readme" >console
ran=0
expected=
command=
compare() {
    [ -n "$command" ] || return 0
    local actual
    actual=$(eval "\"$stagehost\" ${command#./run }")
    if [ "$actual"$'\n' != "$expected" ]; then
        printf '%s\nprinted:\n%s\nREADME says:\n%s' "$command" "$actual" "$expected"
        exit 1
    fi
    ran=$((ran + 1))
}
while IFS= read -r line; do
    case $line in
        '$ '*) compare; command=${line#\$ }; expected= ;;
        *) expected+=$line$'\n' ;;
    esac
done <console
compare
[ "$ran" -gt 0 ] || { echo "README.md shows no commands"; exit 1; }
echo "$ran commands of README.md do what they show"
