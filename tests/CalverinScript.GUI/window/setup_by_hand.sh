#!/usr/bin/env bash
# Works the setup dialog with a real keyboard and pointer, on a display with a window manager:
#   setup_by_hand.sh HOST_PROGRAM MODULE_FILE
# Ten times in one process: opens it on the host's window, edits, evaluates, searches, saves and accepts. Then the host's window goes
# away while the dialog is open.
set -euo pipefail
host=$1
module=$2
rounds=10
title="KXP Calverin Script Setup"
. "$(dirname "$0")/../../support/by_hand.sh"
work=$(mktemp -d)
mkdir "$work/library" "$work/project"
mkfifo "$work/commands"
trap 'kill "$host_pid" 2>/dev/null || true; rm -rf "$work"' EXIT

fail() {
    echo "FAILED in round ${round:-0}: $*" >&2
    echo "the keyboard is in: $(xdotool getwindowfocus getwindowname 2>&1)" >&2
    cat "$work/log" >&2
    for file in "$work"/project/*; do echo "$file:" >&2 && cat "$file" >&2; done
    exit 1
}
codes_are() { [ "$(grep -c '^code' "$work/log")" = "$1" ]; }
file_is() { [ "$(cat "$work/$1/desk.js")" = "$2" ]; }
is_transient() { xprop -id "$(window_of "$title")" WM_TRANSIENT_FOR | grep -qi "$(printf '0x%x' "$(window_of 'small host')")"; }
is_modal() { xprop -id "$(window_of "$title")" _NET_WM_STATE | grep -q MODAL; }
tell_host() { echo "$1" >&4; }
click() { xdotool mousemove --window "$dialog" "$1" "$2" click 1; }
type_text() { xdotool type --delay 1 "$1"; }

"$host" "$module" "$work/library" "$work/project" <"$work/commands" >"$work/log" 2>&1 &
host_pid=$!
exec 4>"$work/commands"

for round in $(seq $rounds); do
    eventually has_keyboard "small host"
    tell_host show
    eventually has_keyboard "$title"
    eventually is_transient
    eventually is_modal
    [ "$round" != 1 ] || eventually is_centred_on "$title" "small host"
    dialog=$(window_of "$title")
    if [ "$round" = 1 ]; then # a new device is not in programming mode, and opens on its first tab
        click 20 53
        click 110 87
    fi
    click 450 350
    xdotool key ctrl+a
    type_text "({ Round$round: function() {} })"
    xdotool key Return
    type_text "throw 1;"
    xdotool key ctrl+Home
    click 820 638 # evaluates, which puts the caret on the line of the error
    xdotool key shift+Tab shift+Tab
    type_text "//"
    xdotool key ctrl+Home ctrl+f
    eventually has_keyboard "Find"
    type_text "Round"
    xdotool key Return Escape
    eventually has_keyboard "$title"
    type_text "Turn" # over what was found
    xdotool key alt+s
    if [ "$round" = 1 ]; then
        eventually has_keyboard "Select Script"
        type_text "desk"
        xdotool key Return
        eventually has_keyboard "$title"
    fi
    text="({ Turn$round: function() {} })
//throw 1;"
    eventually file_is "library/Script Drivers" "$text"
    eventually file_is project "$text"
    xdotool key alt+o
    eventually codes_are "$round"
done

round=last
eventually has_keyboard "small host"
tell_host show
eventually has_keyboard "$title"
tell_host go
eventually is_gone "$title"
eventually codes_are $((rounds + 1))
tell_host quit
exec 4>&-
wait "$host_pid" || fail "the host ended with $?"

grep '^code' "$work/log" | tail -n 1 | grep -qx "code 13" || fail "no 13 when the window went"
# The first dialog begins a setup, the others change its commands.
[ "$(grep '^code' "$work/log" | head -n $rounds | sort | uniq -c | tr -s ' ' | tr '\n' ';')" = " 1 code 0; 9 code 771;" ] ||
    fail "these codes are wrong"
grep -q "Turn$rounds" "$work/log" || fail "the last round is not in the setup"
