#!/usr/bin/env bash
# The folder box: what may be typed, what is refused with which words, and folders removed from view.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One Two
touch "$out/tree/a file"
store_rules One 30M 20M Two 50M 40M

# refused TYPED TEXT PICTURE: a message with this text, and the typed path still there to be mended.
refused() {
    fill "$panel" IDC_FOLDER_EDIT "$1"
    press Return
    wait_window 'Add Folder'
    shot "$3"
    expect 'the message' "$2" "$(peek text 'Add Folder' IDC_BOX_TEXT)"
    answer 'Add Folder' Return
    wait_focus "$panel" IDC_FOLDER_EDIT
    expect 'the folder field' "$1" "$(peek text "$panel" IDC_FOLDER_EDIT)"
    expect 'the folders' "$folders" "$(peek entries "$panel" IDC_FOLDERS)"
}

step 'refused paths'
host_start
folders=$(peek entries "$panel" IDC_FOLDERS)
expect 'the folders at the start' "$tree\\One
$tree\\Two" "$(sort <<<"$folders")"
refused "$tree\\None" "There is no folder \"$tree\\None\", or it cannot be reached." message-no-such-folder
refused "$tree\\a file" "\"$tree\\a file\" is a file. Quota rules are defined on folders." message-a-file
refused 'data' '"data" is not a full path. Start it with a drive or a server:
C:\Data or \\server\share.' message-no-full-path
refused "${tree//\\//}/ONE/" "The folder \"$tree\\ONE\" is already shown." message-folder-already-shown
click "$panel" IDC_FOLDER_EDIT
press Home shift+End Delete
click "$panel" IDC_FOLDER_ADD
wait_window 'Add Folder'
shot message-no-path
expect 'the message' 'Type the folder'\''s path first, for example C:\Data, or choose it with Browse.' \
    "$(peek text 'Add Folder' IDC_BOX_TEXT)"
answer 'Add Folder' Return

step 'no folder is selected: nothing to add for'
expect 'the selected folders' '' "$(peek chosen "$panel" IDC_FOLDERS)"
expect 'Add' no "$(peek enabled "$panel" IDC_ADD_FOR_ANYONE)"
expect 'Remove' no "$(peek enabled "$panel" IDC_FOLDER_REMOVE)"
wait_shows 'Select the folders that new rules are for.' text "$panel" IDC_FOLDER_HINT

# number_of NAME: where a folder stands in the box.
number_of() { echo $(($(peek entries "$panel" IDC_FOLDERS | grep -nxF "$tree\\$1" | cut -d : -f 1) - 1)); }

step 'remove a folder from view'
click_folder "$(number_of One)"
click "$panel" IDC_FOLDER_REMOVE
wait_column 5 "$tree\\Two"
wait_status '1 rule in 1 folder'
wait_saved

step 'show it again'
add_folder "$tree\\one"
wait_status '2 rules in 2 folders'
wait_saved

step 'remove a folder with unsaved changes: the question'
row=$(row_of Two)
double_click_cell $row 2
wait_focus "$panel" cell
type_text 10M
press Return
wait_unsaved
click_folder "$(number_of Two)"
click "$panel" IDC_FOLDER_REMOVE
wait_window 'Unsaved Changes'
answer 'Unsaved Changes' alt+n
wait_unsaved
wait_status '2 rules in 2 folders'
click "$panel" IDC_FOLDER_REMOVE
wait_window 'Unsaved Changes'
answer 'Unsaved Changes' alt+y
wait_saved
wait_status '1 rule in 1 folder'
host_close

step 'what was removed from view is still stored'
expect_limits 'One|31457280|20971520
Two|52428800|41943040'
