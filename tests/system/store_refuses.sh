#!/usr/bin/env bash
# The store cannot write: the panel says so, keeps the changes, and stores them once it can.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One
store_rules One 30M 20M
stored_before=$(stored)

step 'make a change'
host_start
double_click_cell 0 2
wait_focus "$panel" cell
type_text 10M
press Return
wait_unsaved

step 'apply to a folder that cannot be written'
block
press ctrl+s
wait_store_box 'The rules were not stored.'
shot message-not-stored
answer 'Quota Store' Return
wait_unsaved
wait_status 'Unsaved changes'
wait_for 'the error in the status line' error_is_shown
wait_column 2 10240K
expect 'Apply' yes "$(peek enabled "$panel" IDC_APPLY)"

step 'closing with Yes stays open as well'
press alt+F4
wait_window 'Unsaved Changes'
press alt+y
wait_window 'Quota Store'
answer 'Quota Store' Return
wait_window "$panel"
wait_unsaved

step 'nothing that was stored is lost'
unblock
expect 'the stored rules' "$stored_before" "$(stored)"

step 'apply again'
press ctrl+s
wait_saved
wait_status 'No store error'
host_close
expect_limits 'One|10485760|10485760'
