# For scripts that work windows by hand, to be sourced. They say what to do when a wait is in vain: fail MESSAGE.

# Waits until a command succeeds.
eventually() {
    for _ in $(seq 1200); do
        ! "$@" >/dev/null 2>&1 || return 0
        sleep 0.05
    done
    fail "not within a minute: $*"
}
window_of() { xdotool search --onlyvisible --name "^$1\$" | tail -n 1; }
has_keyboard() { [ "$(xdotool getwindowfocus getwindowname)" = "$1" ]; }
is_gone() { ! xdotool search --onlyvisible --name "^$1\$"; }
# Left, top, width and height of a window without its frame.
place_of() { xdotool getwindowgeometry --shell "$(window_of "$1")" | sed -n 's/^\(X\|Y\|WIDTH\|HEIGHT\)=//p' | tr '\n' ' '; }
# Whether a window stands in the middle of another. Frames are alike, so what is centred frame on frame is centred without them, too.
is_centred_on() {
    local x y w h X Y W H
    read -r x y w h <<<"$(place_of "$1")"
    read -r X Y W H <<<"$(place_of "$2")"
    [ $((2 * x + w - 2 * X - W)) -ge -4 ] && [ $((2 * x + w - 2 * X - W)) -le 4 ] &&
        [ $((2 * y + h - 2 * Y - H)) -ge -4 ] && [ $((2 * y + h - 2 * Y - H)) -le 4 ]
}
