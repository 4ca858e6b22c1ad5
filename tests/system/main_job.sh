#!/usr/bin/env bash
# From an empty data folder to stored rules, and back into a new window.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" Projects Users Media

make_files "$out/tree/Projects" 40 1
projects=$made_bytes
make_files "$out/tree/Users" 40 2
users=$made_bytes

step 'nothing is stored at first'
expect 'the rules of an empty data folder' 'No rules are stored.' "$(dump)"

step 'add two folders'
host_start
add_folder "$tree\\Projects"
add_folder "$tree\\Users"
wait_status '0 rules in 2 folders'
for id in $id_edit $id_drop $id_apply; do
    expect "button $id without a rule" no "$(peek enabled "$panel" "$id")"
done

step 'add a rule on the one that was added last'
wait_shows "New rules are for $tree\\Users." text "$panel" $id_folder_hint
add_rule 20M 10M
wait_rules "Anyone|20480K|10240K|$users |$(printf '%02d' $((users * 100 / 20971520)))%|$tree\\Users"
wait_unsaved
expect 'Apply with an unsaved change' yes "$(peek enabled "$panel" $id_apply)"

step 'add a rule that is in the way of itself'
click "$panel" $id_add
wait_window Information
answer Information Return
wait_status '1 rule in 2 folders'

step 'add on both: one is passed over, the other gets its rule'
click_folder 0
ctrl_click_folder 1
wait_shows 'New rules are for each of the 2 selected folders.' text "$panel" $id_folder_hint
click "$panel" $id_add
wait_window "$settings"
wait_shows 102400K text "$settings" $id_hard
wait_shows 97280K text "$settings" $id_soft
click "$settings" $id_ok
wait_window Information
answer Information Return
wait_column 5 "$tree\\Projects|$tree\\Users"
wait_column 4 "00%|$(printf '%02d' $((users * 100 / 20971520)))%"

step 'edit: a limit below what is there is refused, a good one is taken'
double_click_cell 0 5
wait_window "$settings"
fill "$settings" $id_hard 100K
click "$settings" $id_ok
wait_window Information
answer Information Return
set_limits 50M 40M
wait_gone "$settings"
wait_column 1 '51200K|20480K'
expect 'Edit with a selected row' yes "$(peek enabled "$panel" $id_edit)"

step 'sort'
click_header 1
wait_column 1 '20480K|51200K'
click_header 1
wait_column 1 '51200K|20480K'

step 'apply'
click "$panel" $id_apply
wait_saved
wait_status 'All changes stored'
expect 'Apply without an unsaved change' no "$(peek enabled "$panel" $id_apply)"
expect_stored "Anyone|20971520|10485760|$users|$tree\\Users
Anyone|52428800|41943040|$projects|$tree\\Projects"

step 'the rules are back in a new window'
shown=$(rules | sort)
host_close
host_start
wait_status '2 rules in 2 folders'
expect 'the rules after the restart' "$shown" "$(rules | sort)"

step 'drop one, apply: its folder has none any more'
row=$(rules | cut -f 6 | grep -nxF "$tree\\Users" | cut -d : -f 1)
click_cell $((row - 1)) 0
click "$panel" $id_drop
wait_column 5 "$tree\\Projects"
click "$panel" $id_apply
wait_saved
host_close
expect_stored "Anyone|52428800|41943040|$projects|$tree\\Projects"
expect 'the rules of the other folder' 'No rules are stored.' "$(dump --folder "$tree\\Users")"
