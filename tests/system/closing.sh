#!/usr/bin/env bash
# Closing with unsaved changes: Cancel goes on, No forgets them, Yes stores them.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One
store_rules One 30M 20M

change() {
    double_click_cell 0 2
    wait_focus "$panel" cell
    type_text "$1"
    press Return
    wait_unsaved
}

step 'Cancel'
host_start
change 11M
press alt+F4
wait_window 'Unsaved Changes'
shot question-unsaved-changes
answer 'Unsaved Changes' Escape
wait_window "$panel"
wait_unsaved
wait_column 2 11264K
expect_limits 'One|31457280|20971520'

step 'No'
press alt+F4
wait_window 'Unsaved Changes'
press alt+n
host_ended
expect_limits 'One|31457280|20971520'

step 'Yes'
host_start
wait_column 2 20480K
change 12M
press alt+F4
wait_window 'Unsaved Changes'
press alt+y
host_ended
expect_limits 'One|12582912|12582912'

step 'a change that was taken back is none'
host_start
change 13M
double_click_cell 0 2
wait_focus "$panel" cell
type_text 12M
press Return
wait_saved
host_close
expect_limits 'One|12582912|12582912'

step 'the panel is told to close while a dialog is open: the dialog stays, and so does what it is for'
host_start
double_click_cell 0 5
wait_window "$settings"
peek close "$panel" >/dev/null
wait_window "$settings"
set_limits 15M 14M
wait_gone "$settings"
wait_column 2 14336K
wait_unsaved

step 'the same with a box'
press alt+F4
wait_window 'Unsaved Changes'
peek close "$panel" >/dev/null
wait_window 'Unsaved Changes'
answer 'Unsaved Changes' Escape
wait_unsaved

step 'the session does not end over unsaved changes, and nothing is asked'
expect 'whether the session may end' no "$(peek endsession "$panel")"
wait_window "$panel"
press ctrl+s
wait_saved
expect 'whether the session may end' yes "$(peek endsession "$panel")"
double_click_cell 0 5
wait_window "$settings"
expect 'whether the session may end' no "$(peek endsession "$panel")"
answer "$settings" Escape
double_click_cell 0 2
wait_focus "$panel" cell
expect 'whether the session may end' no "$(peek endsession "$panel")"
press Escape
wait_focus "$panel" IDC_RULES
host_close
expect_limits 'One|15728640|14680064'
