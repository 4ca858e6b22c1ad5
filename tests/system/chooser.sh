#!/usr/bin/env bash
# The account chooser as a person meets it: its two modes, names typed, accounts searched, sorted and filtered.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One
write_accounts 30

open_chooser() {
    click "$panel" $id_add_account
    wait_window "$chooser"
}
# can ID WANTED: whether a control can be used.
can() { wait_shows "$2" enabled "$chooser" "$1"; }
# leads_to ACCOUNT: the settings dialog for it is there; it is cancelled.
leads_to() {
    wait_window "$settings"
    expect 'the account' "$1" "$(peek text "$settings" 1001)"
    answer "$settings" Escape
    wait_window "$panel"
}

step 'each mode has its own controls'
host_start --folder "$tree\\One"
open_chooser
expect 'the mode' yes "$(peek checked "$chooser" $id_search)"
can $id_base no
can $id_name no
click "$chooser" $id_custom_base
can $id_base yes
click "$chooser" $id_type
can $id_name yes
for id in $id_base $id_accounts $id_custom_base; do
    can "$id" no
done
click "$chooser" $id_search
can $id_name no
for id in $id_base $id_accounts $id_custom_base; do
    can "$id" yes
done
click "$chooser" $id_custom_base
can $id_base no

step 'the default button says what it will do'
expect 'its first text' 'Search...' "$(peek text "$chooser" $id_ok)"
click "$chooser" $id_type
fill "$chooser" $id_name someone
wait_shows Add text "$chooser" $id_ok
press shift+Home Delete
wait_shows Search text "$chooser" $id_ok

step 'a name that nobody has, and one in the wrong case'
for name in 'EXAMPLE\mallory' anyone; do
    fill "$chooser" $id_name "$name"
    press Return
    wait_window Warning
    expect 'the warning' 'The user/group name you typed is unavaliable.' \
        "$(peek text Warning $id_message | grep -o '^[^.]*\.')"
    answer Warning Return
    wait_window "$chooser"
    expect 'the name' "$name" "$(peek text "$chooser" $id_name)"
done

step 'names that are known'
fill "$chooser" $id_name Anyone
press Return
leads_to Anyone
open_chooser
click "$chooser" $id_type
fill "$chooser" $id_name 'EXAMPLE\Accounting'
press Return
leads_to 'EXAMPLE\Accounting'

step 'search, and pick by a double click followed by Enter'
open_chooser
search
expect 'the first rows' "Anyone|Anyone|System
alice|EXAMPLE\\alice|User" "$(accounts | head -n 2)"
expect 'the button before a row is selected' no "$(peek enabled "$chooser" $id_ok)"
click_row "$chooser" $id_accounts 0
can $id_ok yes
press Return
leads_to Anyone

step 'sort: the first click runs from Z to A'
open_chooser
search
filter 0 person0000
names() { accounts | cut -d '|' -f 1 | paste -s -d ' '; }
names_are() { [ "$(names)" = "$1" ]; }
up='person00001 person00002 person00003 person00004 person00005 person00006 person00007 person00008 person00009'
down=$(tr ' ' '\n' <<<"$up" | tac | paste -s -d ' ')
wait_for 'the filtered names' names_are "$up"
click_heading "$chooser" $id_accounts 1
wait_for 'the names from Z to A' names_are "$down"
click_heading "$chooser" $id_accounts 1
wait_for 'the names from A to Z' names_are "$up"

step 'Esc takes back what was typed into a filter, and only then closes'
at filter "$chooser" $id_accounts 0 && xdotool click 1
wait_shows filter focus "$chooser"
press End
type_text 5
wait_for 'the one name' names_are person00005
press Escape
wait_shows $id_accounts focus "$chooser"
wait_shows 9 count "$chooser" $id_accounts
answer "$chooser" Escape
wait_window "$panel"
wait_saved
expect 'the rules' '' "$(rules)"
host_close
