#!/usr/bin/env bash
# Cancel in every dialog changes nothing: not the list, not what is stored, not whether there is something to save.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One Two Three
store_rules One 30M 20M Two 50M 40M
before=$(stored)

step 'show what is stored, and a folder without rules'
host_start
add_folder "$tree\\Three"
rows=$(rules)
nothing_changed() {
    wait_window "$panel"
    wait_saved
    expect 'the list' "$rows" "$(rules)"
    expect 'Apply' no "$(peek enabled "$panel" IDC_APPLY)"
}
cancel_refused_limits() {
    wait_window "$settings"
    set_limits 1K 1K
    wait_window Information
    shot message-invalid-limits
    answer Information Return
    answer "$settings" Escape
    nothing_changed
}

step 'cancel adding, by key and by button'
click "$panel" IDC_ADD_FOR_ANYONE
wait_window "$settings"
answer "$settings" Escape
nothing_changed
click "$panel" IDC_ADD_FOR_ANYONE
wait_window "$settings"
fill "$settings" IDC_QUOTA_HARD_LIMIT 77M
click "$settings" IDCANCEL
wait_gone "$settings"
nothing_changed

step 'cancel adding after limits were refused'
click "$panel" IDC_ADD_FOR_ANYONE
cancel_refused_limits

step 'cancel adding on several folders'
click_folder 2
make_files "$out/tree/Four" 3 4
add_folder "$tree\\Four"
click_folder 2
with_ctrl click_folder 3
click "$panel" IDC_ADD_FOR_ANYONE
wait_window "$settings"
wait_for "the dialog of the first folder" in_applied_to Three
press Escape
wait_for 'the dialog of the next folder' in_applied_to Four
wait_window "$settings"
answer "$settings" Escape
nothing_changed

step 'cancel editing after limits were refused, behind a double click and behind Enter'
for way in 'double_click_cell 0 0' 'press Return'; do
    $way
    cancel_refused_limits
done

step 'leave a cell without typing, and after typing'
double_click_cell 1 2
wait_focus "$panel" cell
press Return
wait_focus "$panel" IDC_RULES
nothing_changed
press F2
wait_focus "$panel" cell
type_text 1M
press Escape
wait_focus "$panel" IDC_RULES
nothing_changed

step 'cancel browsing'
click "$panel" IDC_FOLDER_BROWSE
wait_window 'Browse for Folder'
shot browse-for-folder
answer 'Browse for Folder' Escape
nothing_changed

step 'close: nothing is asked, nothing is stored'
host_close
expect 'the stored rules' "$before" "$(stored)"
