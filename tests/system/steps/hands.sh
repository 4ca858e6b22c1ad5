# shellcheck shell=bash
# Keys and mouse. Without a display peek puts them where the system takes them from the devices. A display has its own
# idea of what its keyboard and mouse do, and takes back what it does not know of: there it has to be its own keyboard.

press() {
    local key
    if [ $kind = screen ]; then
        xdotool key --delay 4 "$@"
        return
    fi
    for key; do
        peek press "$key" || fail "the key $key"
    done
}
type_text() {
    [ -n "$1" ] || return 0
    if [ $kind = screen ]; then
        xdotool type --delay 2 -- "$1"
    else
        peek type "$1" || fail "typing $1"
    fi
}

# at REQUEST...: waits for a place that peek names; it is in $x and $y then.
at() { wait_for "a place to click: $*" finds_place "$@"; }
finds_place() {
    local place
    place=$(peek "$@") && read -r x y <<<"$place"
}

# mouse TIMES REQUEST...: presses the left button at a place. Single clicks stand a little beside the last one: two in a
# row on the same control would be a double click.
beside=5
click_kind=click
mouse() {
    at "${@:2}"
    [ "$1" != 1 ] || { beside=$((-beside)) && x=$((x + beside)); }
    if [ $kind = quiet ]; then
        peek "$click_kind" "$1" "$x" "$y" || fail "a click at $x $y"
        return
    fi
    local hand=(mousemove "$x" "$y" mousedown 1 mouseup 1)
    [ "$1" = 1 ] || hand+=(mousedown 1 mouseup 1)
    [ "$click_kind" = click ] || xdotool keydown ctrl
    xdotool "${hand[@]}"
    [ "$click_kind" = click ] || xdotool keyup ctrl
}

# drag_frame X Y DX DY: drags the frame of a window.
drag_frame() {
    if [ $kind = screen ]; then
        xdotool mousemove "$1" "$2" mousedown 1 mousemove_relative -- "$3" "$4" mouseup 1
    else
        peek drag "$@" || fail 'the window does not follow the mouse'
    fi
}

# wheel NOTCHES: turns it where the mouse is to be.
wheel() {
    if [ $kind = screen ]; then
        xdotool mousemove "$x" "$y" click --repeat "$1" --delay 2 5
    else
        peek wheel "$1" "$x" "$y" || fail 'the wheel'
    fi
}
with_ctrl() {
    click_kind=ctrl-click
    "$@"
    click_kind=click
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
