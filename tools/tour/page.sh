#!/bin/bash
# The quota page: folders and rules for anyone, from an empty data folder to rules that are back after a restart.
. "$(dirname "$0")/../tour_lib.sh"
tour_begin "$1" "$2"

settings='Quota Settings'

echo "Making a folder tree"
make_files "$out/tree/Projects" 1900 1
projects=$made_bytes
make_files "$out/tree/Users" 1200 2
users=$made_bytes
make_files "$out/tree/Media" 600 3
media=$made_bytes
mkdir -p "$out/tree/Archive"
tree=$(windows_path "$out/tree")
echo "  Projects $projects bytes, Users $users bytes, Media $media bytes, Archive empty"

# In the list's style: a number up to 1048576 and a unit.
size() { [ "$1" -gt 1048576 ] && echo "$(($1 / 1024))K" || echo "$1 "; }

echo "Playing the tour"
step 'start on an empty data folder'
host_start

step 'press Add without a folder'
click "$panel" $id_folder_add
wait_window 'Add Folder'
shot message-no-path
answer 'Add Folder' Return
wait_shows $id_folder focus "$panel"
shot empty-page

step 'type a folder that does not exist'
type_text "$tree\\Nowhere"
press Return
wait_window 'Add Folder'
shot message-no-such-folder
answer 'Add Folder' Return

step 'add folders by typing'
fill "$panel" $id_folder "$tree\\Projects"
press Return
wait_shows "$tree\\Projects" entries "$panel" $id_folders
fill "$panel" $id_folder "$tree\\Users"
click "$panel" $id_folder_add
wait_for 'the second folder' folder_is_shown "$tree\\Users"
add_folder "$tree\\Media"
add_folder "$tree\\Archive"

step 'type a folder that is already shown, in another spelling'
click "$panel" $id_folder
type_text "${tree//\\//}/users/"
press Return
wait_window 'Add Folder'
shot message-folder-already-shown
answer 'Add Folder' Return
expect 'the folders' "$tree\\Projects
$tree\\Users
$tree\\Media
$tree\\Archive" "$(peek entries "$panel" $id_folders)"
press Home shift+End Delete

step 'look at the browse dialog'
click "$panel" $id_folder_browse
wait_window 'Browse for Folder'
shot browse-for-folder
answer 'Browse for Folder' Escape
wait_window "$panel"

step 'add a rule for anyone on one folder'
click_folder 0
wait_shows "New rules are for $tree\\Projects." text "$panel" $id_folder_hint
click "$panel" $id_add
wait_window "$settings"
wait_shows "$(size $((projects * 5)))" text "$settings" $id_hard
shot quota-settings-add

step 'type limits that cannot be'
set_limits 1K 2K
wait_window Information
shot message-invalid-limits
answer Information Return

step 'type good limits'
set_limits 500M 400M
wait_gone "$settings"
percent() { printf '%02d%%' $(($1 * 100 / $2)); }
in_projects="$(size "$projects")|$(percent "$projects" 524288000)|$tree\\Projects"
wait_rules "Anyone|512000K|409600K|$in_projects"
wait_unsaved

step 'add a rule on two folders at once'
click_folder 1
ctrl_click_folder 3
wait_shows 'New rules are for each of the 2 selected folders.' text "$panel" $id_folder_hint
click "$panel" $id_add
wait_window "$settings"
wait_shows '102400K' text "$settings" $id_hard
click "$settings" $id_ok
wait_for 'the dialog for the second folder' shows "${tree//\\//}/Archive" text "$settings" 1012
wait_window "$settings"
set_limits 200M 150M
wait_gone "$settings"
in_users="$(size "$users")|$(percent "$users" 104857600)|$tree\\Users"
wait_rules "Anyone|204800K|153600K|0 |00%|$tree\\Archive
Anyone|102400K|97280K|$in_users
Anyone|512000K|409600K|$in_projects"
shot rules-of-three-folders

step 'add a rule that is there already'
click_folder 0
click "$panel" $id_add
wait_window Information
shot message-already-used
answer Information Return

step 'accept the limits that the dialog proposes'
click_folder 2
click "$panel" $id_add
wait_window "$settings"
press Return
wait_gone "$settings"
wait_status '4 rules in 4 folders'

step 'edit a rule'
click_cell 2 0
wait_shows 2 chosen "$panel" $id_rules
press Return
wait_window "$settings"
shot quota-settings-edit
fill "$settings" $id_hard 300M
press Return
wait_gone "$settings"
media_hard=$((media * 5)) media_soft=$((media * 5 - media * 5 / 20))
wait_column 1 "$(size $media_hard)|204800K|307200K|512000K"

step 'sort by headings: a click for the one order, a second one for the other'
click_header 3
wait_column 5 "$tree\\Archive|$tree\\Media|$tree\\Users|$tree\\Projects"
click_header 1
wait_column 5 "$tree\\Media|$tree\\Archive|$tree\\Users|$tree\\Projects"
click_header 1
wait_column 5 "$tree\\Projects|$tree\\Users|$tree\\Archive|$tree\\Media"
shot sorted-by-limit
click_header 5
wait_column 5 "$tree\\Users|$tree\\Projects|$tree\\Media|$tree\\Archive"

step 'change the soft limit in its cell'
double_click_cell 3 2
wait_shows cell focus "$panel"
shot editing-in-place
type_text 3G
press Return
wait_window 'Soft Quota Limit'
shot message-too-large-for-the-cell
answer 'Soft Quota Limit' Return
wait_shows cell focus "$panel"
type_text 64M
press Return
wait_column 2 "97280K|409600K|$(size $media_soft)|65536K"
wait_column 1 "307200K|512000K|$(size $media_hard)|65536K"

step 'leave a cell by Esc'
press F2
wait_shows cell focus "$panel"
type_text 1M
press Escape
wait_shows $id_rules focus "$panel"
wait_column 2 "97280K|409600K|$(size $media_soft)|65536K"

step 'drop a rule'
click_cell 2 0
wait_shows 2 chosen "$panel" $id_rules
press Delete
wait_column 5 "$tree\\Users|$tree\\Projects|$tree\\Archive"
wait_unsaved
shot before-apply
shown=$(rules | sort)

step 'apply'
press ctrl+s
wait_saved
shot applied

step 'close, start again: the rules are back'
host_close
host_start
wait_status '3 rules in 3 folders'
wait_status 'All changes stored'
expect 'the rules after the restart' "$shown" "$(rules | sort)"
# Without a window manager the caption of a new window looks inactive until a box was over it.
click "$panel" $id_folder_add
wait_window 'Add Folder'
answer 'Add Folder' Return
click_cell 0 0
wait_shows 0 chosen "$panel" $id_rules
shot after-restart

step 'drop a rule and close: the question; reload gets it back'
press Delete
wait_unsaved
press alt+F4
wait_window 'Unsaved Changes'
shot question-unsaved-changes
answer 'Unsaved Changes' Escape
wait_window "$panel"
press F5
wait_window 'Unsaved Changes'
shot question-reload
answer 'Unsaved Changes' alt+y
wait_saved
wait_status '3 rules in 3 folders'
host_close

step 'look at what is stored'
echo
dump
echo
show_files rules.txt
expect_stored "Anyone|314572800|99614720|$users|$tree\\Users
Anyone|524288000|419430400|$projects|$tree\\Projects
Anyone|67108864|67108864|0|$tree\\Archive"
