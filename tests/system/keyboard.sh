#!/usr/bin/env bash
# The whole job without a mouse: every control is reached, every command has its key.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One Two
xdotool mousemove 0 0
for forbidden in click click_cell double_click_cell click_header click_folder; do
    eval "$forbidden() { fail 'the mouse was used'; }"
done

step 'start with the focus in the folder field'
host_start
wait_shows $id_folder focus "$panel"

step 'Enter adds a folder'
type_text "$tree\\One"
press Return
wait_for 'the folder' folder_is_shown "$tree\\One"
type_text "$tree\\Two"
press alt+a
wait_for 'the second folder' folder_is_shown "$tree\\Two"

step 'the tab key goes round in reading order'
press alt+o
wait_shows $id_folder focus "$panel"
for id in $id_folder_add $id_folder_browse $id_folders $id_folder_remove $id_rules $id_add_account $id_owners_first $id_add $id_reload $id_folder; do
    press Tab
    wait_shows "$id" focus "$panel"
done
press shift+Tab
wait_shows $id_reload focus "$panel"

step 'the check box has its key, and the blank as well'
press alt+w
wait_shows yes checked "$panel" $id_owners_first
wait_shows $id_owners_first focus "$panel"
press space
wait_shows no checked "$panel" $id_owners_first

step 'select both folders and add a rule for each'
press alt+s
wait_shows $id_folders focus "$panel"
press Home shift+End
wait_shows "0
1" chosen "$panel" $id_folders
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
wait_shows $id_rules focus "$panel"
press Home space
wait_shows 0 chosen "$panel" $id_rules
press Return
wait_window "$settings"
wait_shows $id_soft focus "$settings"
type_text 30M
press Tab
wait_shows $id_hard focus "$settings"
type_text 40M
press Return
wait_gone "$settings"
wait_column 1 '40960K|102400K'
wait_column 2 '30720K|97280K'

step 'F2 changes the soft limit in place, Esc leaves it'
press F2
wait_shows cell focus "$panel"
type_text 5M
press Escape
wait_shows $id_rules focus "$panel"
wait_column 2 '30720K|97280K'
press F2
wait_shows cell focus "$panel"
type_text 60M
press Return
wait_shows $id_rules focus "$panel"
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
answer 'Unsaved Changes' alt+y
wait_saved
wait_status '2 rules in 2 folders'

step 'a button that F5 disables hands the keys to the list'
for id in $id_edit $id_drop; do
    press alt+u Home space
    wait_shows 0 chosen "$panel" $id_rules
    wait_shows yes enabled "$panel" $id_edit
    press Tab Tab Tab Tab
    [ "$id" = $id_edit ] || press Tab
    wait_shows "$id" focus "$panel"
    press F5
    wait_shows no enabled "$panel" "$id"
    wait_shows $id_rules focus "$panel"
done

step 'Ctrl+A takes all'
press alt+u ctrl+a
wait_shows '0
1' chosen "$panel" $id_rules

step 'Esc does not close the window'
press alt+o Escape alt+u
wait_shows $id_rules focus "$panel"

step 'the menus have every command'
press alt+r d
wait_status '0 rules in 2 folders'
press alt+f a
wait_saved
press alt+f x
host_ended
expect 'the stored rules' 'No rules are stored.' "$(dump)"
