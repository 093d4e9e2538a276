#!/usr/bin/env bash
# Works the control panel in the window of stagehost, with a real keyboard and pointer:
#   panel_in_stagehost.sh STAGEHOST
# Puts another script into the running device, makes it the default, picks one of its functions for a stored command, and looks for
# both in the show file. Then the user mode hides the panel, and a script hangs while the window is closed.
set -euo pipefail
stagehost=$1
. "$(dirname "$0")/../../support/by_hand.sh"
work=$(mktemp -d)
pid=
trap 'kill "$pid" 2>/dev/null || true; rm -rf "$work"' EXIT
fail() {
    echo "FAILED: $*" >&2
    echo "the keyboard is in: $(xdotool getwindowfocus getwindowname 2>&1)" >&2
    cat "$work/log" "$work/show.json" >&2
    exit 1
}
show="$work/show.json"
title="stagehost: $show"
has_window() { [ -n "$(window_of "$1")" ]; }
# Opens the window and gives the panel's editor the keyboard.
run() {
    "$stagehost" panel --timeout 60000 "$show" desk >"$work/log" 2>&1 &
    pid=$!
    eventually has_keyboard "$title"
    eventually has_window "ControlPanel Window"
    xdotool mousemove --window "$(window_of "ControlPanel Window")" 300 200 click 1 key ctrl+a
}
close_window() { xdotool key alt+F4; }
ends() {
    wait "$pid" || fail "the exit code is $?"
    grep -qx "$1" "$work/log" || fail "not: $1"
}

echo '({ Old: function() {} })' >"$work/desk.js"
echo '{ "devices": [{ "name": "desk", "driver": "desk.js" }] }' >"$show"
"$stagehost" store "$show" Cue desk "Execute Function" "Script Function Name=Old" >/dev/null

run
script="({ New: function() {}, Newer: function() {} })"
xdotool type --delay 1 "$script"
xdotool key alt+d alt+u
xdotool key alt+c
eventually has_keyboard "Stored commands"
xdotool key Tab Tab space
eventually has_keyboard "Script Function Selector"
xdotool key Down Down Return
eventually has_keyboard "Stored commands"
xdotool key alt+s alt+l
eventually has_keyboard "$title"
close_window
ends "desk: setup changed"
[ "$(cat "$work/desk.js")" = "$script" ] || fail "the script is not in its file"
grep -qF "$(printf '%s' "$script" | base64 -w0)" "$show" || fail "the default script is not in the show"
grep -q 'String=\\"Newer\\"' "$show" || fail "the stored command does not name the function"

echo '{ "host": { "userMode": 0, "theme": "dark" }, "devices": [{ "name": "desk", "driver": "desk.js" }] }' >"$show"
run
xdotool key alt+p # it is hidden
eventually is_gone "ControlPanel Window"
xdotool key alt+p
eventually has_window "ControlPanel Window"
xdotool mousemove --window "$(window_of "ControlPanel Window")" 300 200 click 1 key ctrl+a
xdotool type --delay 1 "while (true) {}"
xdotool key alt+u
close_window
ends "desk: setup as before"
