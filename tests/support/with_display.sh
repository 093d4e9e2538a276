#!/usr/bin/env bash
# Runs a command on a display of its own, which nobody sees, with a window manager:
#   with_display.sh COMMAND...
# The home folder is an empty one. Everything that was started here ends with the command.
set -euo pipefail
place=$(mktemp -d)
mkdir -m 700 "$place/home" "$place/run"
export HOME=$place/home XDG_RUNTIME_DIR=$place/run
unset XDG_CONFIG_HOME XDG_DATA_HOME WAYLAND_DISPLAY
pids=()
# The window manager ends by itself when its display is gone.
trap 'kill "${pids[@]}" 2>/dev/null || true; wait || true; rm -rf "$place"' EXIT

fail() {
    echo "with_display: $*" >&2
    exit 1
}
. "$(dirname "$0")/by_hand.sh"

# A number of a display that nobody uses is told on the descriptor. No key repeats itself (-r): on a busy computer each would
# seem to be held.
Xvfb -displayfd 3 -r -screen 0 1280x1024x24 -nolisten tcp 3>"$place/display" 2>"$place/log" &
pids+=($!)
eventually test -s "$place/display"
DISPLAY=:$(cat "$place/display")
export DISPLAY
# A window that comes before it has begun would never get the keyboard.
openbox --sm-disable --startup "touch $place/ready" >"$place/manager.log" 2>&1 &
pids+=($!)
eventually test -e "$place/ready"
status=0
QT_QPA_PLATFORM=xcb "$@" || status=$?
exit $status
