#!/usr/bin/env bash
# The shipped examples, and a driver of each kind as "stagehost new" lays it out, as their users test them.
#   example_tests.sh STAGEHOST EXAMPLES
set -euo pipefail
stagehost=$(realpath "$1")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp -r "$2" "$folder/examples"
cd "$folder"
for kind in tcp udp http serial logic; do "$stagehost" new "$kind" "new-$kind" >/dev/null; done
"$stagehost" test --within 120000 | tee printed
for test in examples/{cuelist,driver,evening,house,projector}/show.json examples/museum/day.test.json new-{tcp,udp,http,serial,logic}/show.json; do
    grep -q "^ok      $test " printed
done
