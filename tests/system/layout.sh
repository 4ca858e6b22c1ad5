#!/usr/bin/env bash
# The page follows the window: dragged larger, the list grows; dragged small, nothing is cut off.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One

# drag_corner DX DY: drags the window's lower right corner.
drag_corner() {
    local area
    read -r -a area <<<"$(peek extent)"
    drag_frame $((area[0] + area[2] - 2)) $((area[1] + area[3] - 2)) "$1" "$2"
}
extent_is() { [ "$(peek extent | cut -d ' ' -f 3-)" = "$1" ]; }
# place ID: the middle of a control, counted from the window's lower right corner.
place() {
    local area
    read -r -a area <<<"$(peek extent)"
    wait_for "the place of the control $1" finds_place point "$panel" "$1"
    echo "$((area[0] + area[2] - x)) $((area[1] + area[3] - y))"
}

host_start
read -r -a before <<<"$(peek extent)"
apply=$(place IDC_APPLY)
height_of() { place "$1" | cut -d ' ' -f 2; }
owners_first=$(height_of IDC_OWNERS_FIRST)
browse=$(peek point "$panel" IDC_FOLDER_BROWSE)

step 'larger'
drag_corner 120 90
wait_for 'the larger window' extent_is "$((before[2] + 120)) $((before[3] + 90))"
expect 'the place of Apply at the lower right' "$apply" "$(place IDC_APPLY)"
read -r x y <<<"$browse"
expect 'the place of Browse' "$((x + 120)) $y" "$(peek point "$panel" IDC_FOLDER_BROWSE)"
expect 'the height of the check box' "$owners_first" "$(height_of IDC_OWNERS_FIRST)"
shot larger

step 'as small as can be'
drag_corner -900 -700
smaller() { read -r _ _ w h <<<"$(peek extent)" && [ "$w" -lt "${before[2]}" ] && [ "$h" -lt "${before[3]}" ]; }
wait_for 'the smaller window' smaller
shot smallest
expect 'the place of Apply at the lower right' "$apply" "$(place IDC_APPLY)"
expect 'the height of the check box' "$owners_first" "$(height_of IDC_OWNERS_FIRST)"
# The buttons of the two groups do not meet, and there is room for rows.
wait_for 'the place of Drop' finds_place point "$panel" IDC_DROP
drop=$x
wait_for 'the place of Reload' finds_place point "$panel" IDC_RELOAD
reload=$x
[ $((reload - drop)) -ge 60 ] || fail "Drop and Reload stand $((reload - drop)) apart"
add_folder "$tree\\One"
add_rule 30M 20M
click_cell 0 0
wait_shows 0 chosen "$panel" IDC_RULES
press ctrl+s
wait_saved
host_close
