#!/usr/bin/env bash
# Plays the house with its switcher behind a serial port of this test's own, so that nobody else's is in the way.
#   house_show.sh STAGEHOST EXAMPLES
set -euo pipefail
stagehost=$(realpath "$1")
folder=$(mktemp -d)
port=$folder/switcher-line
trap 'kill "$switcher" 2>/dev/null; rm -rf "$folder"' EXIT
cp -r "$2/house" "$folder/house"
sed -i "s,/tmp/stagehost-switcher,$port," "$folder/house/show.json"
grep -qF "$port" "$folder/house/show.json"

socat "pty,raw,echo=0,link=$port" "exec:$folder/house/switcher" &
switcher=$!
"$stagehost" run "$folder/house/show.json" | tee "$folder/printed"
grep -qxF 'The show is over: all 10 steps went well.' "$folder/printed"
