#!/usr/bin/env bash
# Runs what a page shows: each js block under the file name in its first line, each line of a console block that begins with
# "$ ./run " or "$ stagehost ", whose output must be the lines below it, and each that begins with "$ cp -r "; "..." stands for any
# lines to the end. The examples are there, and a page leaves them as they are.
#   readme_snippets.sh PAGE STAGEHOST EXAMPLES
set -euo pipefail
page=$(realpath "$1")
stagehost=$(realpath "$2")
examples=$(realpath "$3")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp -r "$examples" "$folder/examples"
cd "$folder"

awk '/^```js$/ { getline; name = $2; inside = index(name, ".js") > 0; next } /^```$/ { inside = 0 } inside { print > name }' "$page"
awk '/^```console$/ { inside = 1; next } /^```$/ { inside = 0 } inside { print }' "$page" >console
ran=0
expected=
command=
compare() {
    [ -n "$command" ] || return 0
    local actual
    actual=$(eval "\"$stagehost\" $command")$'\n'
    case $expected in *$'...\n') expected=${expected%$'...\n'}; actual=${actual:0:${#expected}} ;; esac
    if [ "$actual" != "$expected" ]; then
        printf '%s\nprinted:\n%s\n%s says:\n%s' "$command" "$actual" "$page" "$expected"
        exit 1
    fi
    ran=$((ran + 1))
}
while IFS= read -r line; do
    case $line in
        '$ ./run '*) compare; command=${line#'$ ./run '}; expected= ;;
        '$ stagehost '*) compare; command=${line#'$ stagehost '}; expected= ;;
        '$ cp -r '*) compare; command=; eval "${line#'$ '}" ;;
        *) expected+=$line$'\n' ;;
    esac
done <console
compare
diff -r "$examples" examples || { echo "$page changes the examples"; exit 1; }
[ "$ran" -gt 0 ] || { echo "$page shows no commands"; exit 1; }
echo "$ran commands of $page do what they show"
