# shellcheck shell=bash
# Keys and mouse.

press() { xdotool key --delay 4 "$@"; }
type_text() { xdotool type --delay 2 -- "$1"; }

# at REQUEST...: waits for a place that peek names; it is in $place then.
at() { wait_for "a place to click: $*" finds_place "$@"; }
finds_place() { place=$(peek "$@"); }

# mouse TIMES REQUEST...: moves to a place and presses the left button there. Single clicks stand a little beside the
# last one: two in a row on the same control would be a double click.
beside=5
mouse() {
    at "${@:2}"
    # shellcheck disable=SC2206 # two words: x and y
    local hand=(mousemove $place)
    if [ "$1" = 1 ]; then
        beside=$((-beside))
        hand+=(mousemove_relative -- "$beside" 0 mousedown 1 mouseup 1)
    else
        hand+=(mousedown 1 mouseup 1 mousedown 1 mouseup 1)
    fi
    xdotool "${hand[@]}"
}
with_ctrl() {
    xdotool keydown ctrl
    "$@"
    xdotool keyup ctrl
}
click() { mouse 1 point "$@"; }
click_row() { mouse 1 cell "$1" "$2" "$3" 0; }
double_click_row() { mouse 2 cell "$1" "$2" "$3" 0; }
click_heading() { mouse 1 header "$1" "$2" "$3"; }

# fill TITLE CONTROL TEXT: clicks into a field and replaces what stands there.
fill() {
    click "$1" "$2"
    press Home shift+End
    type_text "$3"
    wait_shows "$3" text "$1" "$2"
}

# answer TITLE KEY: answers a message box by a key.
answer() {
    press "$2"
    wait_gone "$1"
}

# menu KEY ENTRY: opens a menu by its key and chooses an entry by its own.
menu() {
    press "alt+$1"
    wait_shows yes menu
    press "$2"
}
