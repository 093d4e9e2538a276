#!/usr/bin/env bash
# Works the setup dialog with a real keyboard and pointer, under a window manager, on the window of a host without Qt:
#   embedding.sh HOST_PROGRAM MODULE_FILE
# Edits, evaluates, searches, saves and accepts ten times in one process; then the host's window goes away with the dialog open.
set -euo pipefail
host=$1
module=$2
rounds=10
work=$(mktemp -d)
pids=()
trap 'kill "${pids[@]}" 2>/dev/null || true; wait 2>/dev/null || true; rm -rf "$work"' EXIT
mkdir -p "$work/library" "$work/project"

fail() {
    echo "FAILED: $*" >&2
    cat "$work/host.log" >&2
    exit 1
}
# Waits until a command succeeds.
eventually() {
    for _ in $(seq 600); do
        ! "$@" >/dev/null 2>&1 || return 0
        sleep 0.1
    done
    fail "not within a minute: $*"
}
window_of() { xdotool search --onlyvisible --name "$1" | tail -n 1; }
is_active() { [ "$(xdotool getactivewindow getwindowname)" = "$1" ]; }
is_gone() { ! xdotool search --onlyvisible --name "$1"; }
lines_are() { [ "$(grep -c '^code' "$work/host.log")" = "$1" ]; }
has_manager() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q '#'; }
file_is() { [ "$(cat "$1")" = "$2" ]; }

# -displayfd finds a number that nobody uses.
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
pids+=($!)
eventually test -s "$work/display"
DISPLAY=:$(cat "$work/display")
export DISPLAY
openbox >/dev/null 2>&1 &
pids+=($!)
eventually has_manager
QT_QPA_PLATFORM=xcb "$host" "$module" "$work/library" "$work/project" $((rounds + 1)) >"$work/host.log" 2>&1 &
pids+=($!)
host_pid=$!

title="KXP Calverin Script Setup"
for round in $(seq $rounds); do
    eventually is_active "$title"
    [ "$round" != 1 ] || xdotool key alt+m
    dialog=$(window_of "$title")
    xprop -id "$dialog" WM_TRANSIENT_FOR | grep -q "$(printf '0x%x' "$(window_of 'plain host')")" || fail "not the host's"
    xprop -id "$dialog" _NET_WM_STATE | grep -q MODAL || fail "not modal"
    if [ "$round" = 1 ]; then # the dialog opens on its first tab; from then on where it was left
        eval "$(xdotool getwindowgeometry --shell "$dialog")"
        xdotool mousemove $((X + 100)) $((Y + 90)) click 1
    fi
    xdotool key --clearmodifiers ctrl+Page_Down
    xdotool mousemove --window "$dialog" 450 350 click 1
    xdotool key ctrl+a
    xdotool type --delay 5 "({ Round$round: function() {} })"
    xdotool key alt+e ctrl+f
    eventually is_active Find
    xdotool type --delay 5 "Round"
    xdotool key Return Escape
    eventually is_active "$title"
    xdotool key alt+s
    if [ "$round" = 1 ]; then
        eventually is_active "Select Script"
        xdotool type --delay 5 "desk"
        xdotool key alt+o
        eventually is_active "$title"
    fi
    eventually file_is "$work/project/desk.js" "({ Round$round: function() {} })"
    xdotool key alt+o
    eventually lines_are "$round"
done

eventually is_active "$title"
xdotool windowclose "$(window_of 'plain host')"
eventually is_gone "$title"
wait "$host_pid" || fail "the host ended with $?"
tail -n +$((rounds + 1)) "$work/host.log" | head -1 | grep -qx "code 13" || fail "no 13 when the window went"
[ "$(grep -c '^code 771' "$work/host.log")" = $((rounds - 1)) ] || fail "each round but the first changes the commands"
grep -q 'Name="Round10"' "$work/host.log" || fail "the last round is not in the setup"
