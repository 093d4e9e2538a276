#!/usr/bin/env bash
# Changes a setting of a device in its dialog, on the window of stagehost, and looks for it in the show file:
#   setup_in_stagehost.sh STAGEHOST
set -euo pipefail
stagehost=$1
title="KXP Calverin Script Setup"
. "$(dirname "$0")/../../support/by_hand.sh"
work=$(mktemp -d)
pid=
trap 'kill "$pid" 2>/dev/null || true; rm -rf "$work"' EXIT
fail() {
    echo "FAILED: $*" >&2
    cat "$work/log" "$work/show.json" >&2
    exit 1
}
# Opens the dialog; the rest are keys that end it.
run() {
    # A shell has what it starts behind itself ignore Ctrl-C, and the program keeps to that.
    env --default-signal=INT "$stagehost" setup --window "$work/show.json" desk >"$work/log" 2>&1 &
    pid=$!
    eventually has_keyboard "$title"
    eventually is_centred_on "$title" "stagehost: .*"
    xdotool mousemove --window "$(xdotool getwindowfocus)" 400 275 click 1 key ctrl+a
    xdotool type --delay 1 "$1"
    xdotool key "${@:2}"
}
# @param what the program says of the setup.
ends_with() {
    wait "$pid" || fail "the exit code is $?"
    grep -q "^desk: setup $1" "$work/log" || fail "not: $1"
}

echo '({ Setup: { address: "10.0.0.1" }, Info: { Title: "Desk" } })' >"$work/desk.js"
echo '{ "devices": [{ "name": "desk", "driver": "desk.js" }] }' >"$work/show.json"
cp "$work/show.json" "$work/before.json"

# Escape asks, since something was changed, and stays when the answer is no.
run 10.0.0.8 Escape
eventually has_keyboard "Warning"
xdotool key Escape
eventually has_keyboard "$title"
xdotool key Escape
eventually has_keyboard "Warning"
xdotool key alt+y
ends_with "left as it was"
cmp -s "$work/show.json" "$work/before.json" || fail "a cancelled dialog changes the show"

run 10.0.0.9 alt+o
ends_with "changed"
grep -q '10\.0\.0\.9' "$work/show.json" || fail "what was set is not in the show"

run 10.0.0.10 alt+n
ends_with "left as it was"
grep -q '10\.0\.0\.9' "$work/show.json" || fail "what had been set is gone"

# A script that is loaded at the start of the show is in the dialog, too.
echo '{ "devices": [{ "name": "desk", "script": "desk.js" }] }' >"$work/show.json"
run 10.0.0.11 alt+o
ends_with "changed"
grep -q '10\.0\.0\.11' "$work/show.json" || fail "the dialog has not shown the script"

# Ctrl-C and the system's request to end the program end it, also while a dialog waits that the dialog has opened.
cp "$work/show.json" "$work/before.json"
for signal in INT TERM; do
    for window in "$title" "Load script"; do
        key=Tab
        [ "$window" = "$title" ] || key=alt+l
        run 10.0.0.12 "$key"
        eventually has_keyboard "$window"
        kill -s "$signal" "$pid"
        status=0
        wait "$pid" || status=$?
        [ "$status" = 3 ] || fail "the exit code is $status after $signal on \"$window\""
        grep -q "desk: interrupted, setup left as it was" "$work/log" || fail "nothing is told of $signal"
        cmp -s "$work/show.json" "$work/before.json" || fail "an interrupted dialog changes the show"
    done
done
