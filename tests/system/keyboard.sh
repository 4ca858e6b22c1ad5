#!/usr/bin/env bash
# The whole job without a mouse: every control is reached, every command has its key.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One Two
mouse() { fail 'the mouse was used'; }

step 'start with the focus in the folder field'
host_start
wait_focus "$panel" IDC_FOLDER_EDIT

step 'Enter adds a folder'
type_text "$tree\\One"
press Return
wait_for 'the folder' folder_is_shown "$tree\\One"
type_text "$tree\\Two"
press alt+a
wait_for 'the second folder' folder_is_shown "$tree\\Two"

step 'the tab key goes round in reading order'
press alt+o
wait_focus "$panel" IDC_FOLDER_EDIT
for id in IDC_FOLDER_ADD IDC_FOLDER_BROWSE IDC_FOLDERS IDC_FOLDER_REMOVE IDC_RULES IDC_ADD_FOR_ACCOUNT IDC_OWNERS_FIRST IDC_ADD_FOR_ANYONE IDC_RELOAD IDC_FOLDER_EDIT; do
    press Tab
    wait_focus "$panel" "$id"
done
press shift+Tab
wait_focus "$panel" IDC_RELOAD

step 'the check box has its key, and the blank as well'
press alt+w
wait_shows yes checked "$panel" IDC_OWNERS_FIRST
wait_focus "$panel" IDC_OWNERS_FIRST
press space
wait_shows no checked "$panel" IDC_OWNERS_FIRST

step 'select both folders and add a rule for each'
press alt+s
wait_focus "$panel" IDC_FOLDERS
press Home shift+End
wait_shows "0
1" chosen "$panel" IDC_FOLDERS
press alt+y
wait_window "$settings"
press Return
wait_for 'the second dialog' in_applied_to Two
wait_window "$settings"
press Return
wait_gone "$settings"
wait_column 5 "$tree\\Two|$tree\\One"

step 'Enter edits the selected rule'
press alt+u
wait_focus "$panel" IDC_RULES
press Home space
wait_shows 0 chosen "$panel" IDC_RULES
press Return
wait_window "$settings"
wait_focus "$settings" IDC_QUOTA_SOFT_LIMIT
type_text 30M
press Tab
wait_focus "$settings" IDC_QUOTA_HARD_LIMIT
type_text 40M
press Return
wait_gone "$settings"
wait_column 1 '40960K|102400K'
wait_column 2 '30720K|97280K'

step 'F2 changes the soft limit in place, Esc leaves it'
press F2
wait_focus "$panel" cell
type_text 5M
press Escape
wait_focus "$panel" IDC_RULES
wait_column 2 '30720K|97280K'
press F2
wait_focus "$panel" cell
type_text 60M
press Return
wait_focus "$panel" IDC_RULES
wait_column 1 '61440K|102400K'
wait_column 2 '61440K|97280K'

step 'Ctrl+S stores'
press ctrl+s
wait_saved
expect_limits 'One|104857600|99614720
Two|62914560|62914560'

step 'Del drops, F5 brings back'
press Delete
wait_column 5 "$tree\\One"
wait_unsaved
press F5
wait_window 'Unsaved Changes'
shot question-reload
answer 'Unsaved Changes' alt+y
wait_saved
wait_status '2 rules in 2 folders'

step 'a button that F5 disables hands the keys to the list'
for id in IDC_EDIT IDC_DROP; do
    press alt+u Home space
    wait_shows 0 chosen "$panel" IDC_RULES
    wait_shows yes enabled "$panel" IDC_EDIT
    press Tab Tab Tab Tab
    [ "$id" = IDC_EDIT ] || press Tab
    wait_focus "$panel" "$id"
    press F5
    wait_shows no enabled "$panel" "$id"
    wait_focus "$panel" IDC_RULES
done

step 'Ctrl+A takes all'
press alt+u ctrl+a
wait_shows '0
1' chosen "$panel" IDC_RULES

step 'Esc does not close the window'
press alt+o Escape alt+u
wait_focus "$panel" IDC_RULES

step 'the menus have every command'
press alt+r d
wait_status '0 rules in 2 folders'
press alt+f a
wait_saved
press alt+f x
host_ended
expect 'the stored rules' 'No rules are stored.' "$(dump)"
