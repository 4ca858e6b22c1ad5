#!/usr/bin/env bash
# From an empty data folder to stored rules, and back into a new window.
#   main_job.sh BUILD OUT [OPTION]    the option is one for the panel
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" Projects Users Media

options=("${@:3}")

make_files "$out/tree/Projects" 40 1
projects=$made_bytes
make_files "$out/tree/Users" 40 2
users=$made_bytes

step 'nothing is stored at first'
expect 'the rules of an empty data folder' 'No rules are stored.' "$(dump)"

step 'add two folders'
host_start "${options[@]}"
shot empty
add_folder "$tree\\Projects"
add_folder "$tree\\Users"
wait_status '0 rules in 2 folders'
for id in IDC_EDIT IDC_DROP IDC_APPLY; do
    expect "button $id without a rule" no "$(peek enabled "$panel" "$id")"
done

shot no-rules

step 'add a rule on the one that was added last'
wait_shows "New rules are for $tree\\Users." text "$panel" IDC_FOLDER_HINT
click "$panel" IDC_ADD_FOR_ANYONE
wait_window "$settings"
fill "$settings" IDC_QUOTA_HARD_LIMIT 20M
fill "$settings" IDC_QUOTA_SOFT_LIMIT 10M
shot quota-settings-first
click "$settings" IDOK
wait_gone "$settings"
wait_rules "Anyone|20480K|10240K|$users |$(printf '%02d' $((users * 100 / 20971520)))%|$tree\\Users"
wait_unsaved
shot first-rule
# Adding by dialog and id tells the store at once; by list object that is left to Apply.
times_known() { tr -d '\r' 2>/dev/null <"$data/rules.txt" | grep -c '^folder.*\\Users$'; }
[[ " ${options[*]} " = *' --list-object '* ]] && known=0 || known=1
expect 'how often the folder is known before Apply' "$known" "$(times_known)"
expect 'Apply with an unsaved change' yes "$(peek enabled "$panel" IDC_APPLY)"

step 'add a rule that is in the way of itself'
click "$panel" IDC_ADD_FOR_ANYONE
wait_window Information
shot message-already-used
answer Information Return
wait_status '1 rule in 2 folders'

step 'add on both: one is passed over, the other gets its rule'
click_folder 0
with_ctrl click_folder 1
wait_shows 'New rules are for each of the 2 selected folders.' text "$panel" IDC_FOLDER_HINT
click "$panel" IDC_ADD_FOR_ANYONE
wait_window "$settings"
wait_shows 102400K text "$settings" IDC_QUOTA_HARD_LIMIT
wait_shows 97280K text "$settings" IDC_QUOTA_SOFT_LIMIT
shot quota-settings-add
click "$settings" IDOK
wait_window Information
answer Information Return
wait_column 5 "$tree\\Projects|$tree\\Users"
wait_column 4 "00%|$(printf '%02d' $((users * 100 / 20971520)))%"

step 'edit: a limit below what is there is refused, a good one is taken'
double_click_cell 0 5
wait_window "$settings"
shot quota-settings-edit
fill "$settings" IDC_QUOTA_HARD_LIMIT 100K
click "$settings" IDOK
wait_window Information
answer Information Return
set_limits 50M 40M
wait_gone "$settings"
wait_column 1 '51200K|20480K'
expect 'Edit with a selected row' yes "$(peek enabled "$panel" IDC_EDIT)"

step 'a double click edits the rule it is on, Enter the first one selected'
click_cell 0 5
wait_shows 0 chosen "$panel" IDC_RULES
with_ctrl double_click_cell 1 5
wait_window "$settings"
wait_for 'the rule of the second row' in_applied_to Users
set_limits 24M 12M
wait_gone "$settings"
in_users="24576K|12288K|$users |$(printf '%02d' $((users * 100 / 25165824)))%|$tree\\Users"
wait_rules "Anyone|51200K|40960K|$projects |$(printf '%02d' $((projects * 100 / 52428800)))%|$tree\\Projects
Anyone|$in_users"
wait_shows '0
1' chosen "$panel" IDC_RULES
press Return
wait_window "$settings"
wait_for 'the rule of the first row' in_applied_to Projects
set_limits 60M 45M
wait_gone "$settings"
wait_column 1 '61440K|24576K'
wait_column 2 '46080K|12288K'

step 'sort'
click_header 1
wait_column 1 '24576K|61440K'
click_header 1
wait_column 1 '61440K|24576K'
shot sorted-by-limit

step 'apply'
click "$panel" IDC_APPLY
wait_saved
wait_status 'All changes stored'
shot applied
expect 'Apply without an unsaved change' no "$(peek enabled "$panel" IDC_APPLY)"
expect_stored "Anyone|25165824|12582912|$users|$tree\\Users
Anyone|62914560|47185920|$projects|$tree\\Projects"

expect 'how often the folder is known after Apply' 1 "$(times_known)"

step 'the rules are back in a new window'
shown=$(rules | sort)
host_close
host_start "${options[@]}"
wait_status '2 rules in 2 folders'
expect 'the rules after the restart' "$shown" "$(rules | sort)"

step 'drop one, apply: its folder has none any more'
click_cell "$(row_of Users)" 0
click "$panel" IDC_DROP
wait_column 5 "$tree\\Projects"
click "$panel" IDC_APPLY
wait_saved
host_close
expect_stored "Anyone|62914560|47185920|$projects|$tree\\Projects"
expect 'the rules of the other folder' 'No rules are stored.' "$(dump --folder "$tree\\Users")"
