#!/usr/bin/env bash
# The account chooser as a person meets it: its two modes, names typed, accounts searched, sorted and filtered.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One
write_accounts 3000

open_chooser() {
    click "$panel" IDC_ADD_FOR_ACCOUNT
    wait_window "$chooser"
}
# can ID WANTED: whether a control can be used.
can() { wait_shows "$2" enabled "$chooser" "$1"; }
# leads_to ACCOUNT: the settings dialog for it is there; it is cancelled.
leads_to() {
    wait_window "$settings"
    expect 'the account' "$1" "$(peek text "$settings" IDC_QUOTA_CREDENTIALS)"
    answer "$settings" Escape
    wait_window "$panel"
}

step 'each mode has its own controls'
host_start --folder "$tree\\One"
open_chooser
shot two-modes
expect 'the mode' yes "$(peek checked "$chooser" IDC_CHOOSER_SEARCH)"
can IDC_CHOOSER_BASE no
can IDC_CHOOSER_NAME no
click "$chooser" IDC_CHOOSER_CUSTOM_BASE
can IDC_CHOOSER_BASE yes
click "$chooser" IDC_CHOOSER_TYPE
can IDC_CHOOSER_NAME yes
for id in IDC_CHOOSER_BASE IDC_CHOOSER_LIST IDC_CHOOSER_CUSTOM_BASE; do
    can "$id" no
done
click "$chooser" IDC_CHOOSER_SEARCH
can IDC_CHOOSER_NAME no
for id in IDC_CHOOSER_BASE IDC_CHOOSER_LIST IDC_CHOOSER_CUSTOM_BASE; do
    can "$id" yes
done
click "$chooser" IDC_CHOOSER_CUSTOM_BASE
can IDC_CHOOSER_BASE no

step 'the default button says what it will do'
expect 'its first text' 'Search...' "$(peek text "$chooser" IDOK)"
click "$chooser" IDC_CHOOSER_TYPE
fill "$chooser" IDC_CHOOSER_NAME someone
wait_shows Add text "$chooser" IDOK
shot typed-name
press shift+Home Delete
wait_shows Search text "$chooser" IDOK

step 'a name that nobody has, and one in the wrong case'
for name in 'EXAMPLE\mallory' anyone; do
    fill "$chooser" IDC_CHOOSER_NAME "$name"
    press Return
    wait_window Warning
    shot warning
    expect 'the warning' 'The user/group name you typed is unavaliable.' \
        "$(peek text Warning IDC_BOX_TEXT | grep -o '^[^.]*\.')"
    answer Warning Return
    wait_window "$chooser"
    expect 'the name' "$name" "$(peek text "$chooser" IDC_CHOOSER_NAME)"
done

step 'names that are known'
fill "$chooser" IDC_CHOOSER_NAME Anyone
press Return
leads_to Anyone
open_chooser
click "$chooser" IDC_CHOOSER_TYPE
fill "$chooser" IDC_CHOOSER_NAME 'EXAMPLE\Accounting'
press Return
leads_to 'EXAMPLE\Accounting'

step 'search: accounts come while more are looked for'
open_chooser
click "$chooser" IDOK
there_are() { [ "$(peek count "$chooser" IDC_CHOOSER_LIST)" -ge "$1" ]; }
wait_for 'the first accounts' there_are 20
wait_shows yes enabled "$chooser" IDCANCEL
there_are 3006 || fail 'the list is not complete'
shot all-accounts

step 'pick one'
expect 'the first rows' "Anyone|Anyone|System
alice|EXAMPLE\\alice|User" "$(accounts | head -n 2)"
expect 'the button before a row is selected' no "$(peek enabled "$chooser" IDOK)"
click_row "$chooser" IDC_CHOOSER_LIST 0
can IDOK yes
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
shot filtered
click_heading "$chooser" IDC_CHOOSER_LIST 1
wait_for 'the names from Z to A' names_are "$down"
click_heading "$chooser" IDC_CHOOSER_LIST 1
wait_for 'the names from A to Z' names_are "$up"

step 'two columns filter together'
filter 2 Group
wait_shows 0 count "$chooser" IDC_CHOOSER_LIST
filter 0 ''
wait_accounts 'Accounting|EXAMPLE\Accounting|Group'
filter 2 ''
filter 0 person0000
wait_for 'the filtered names' names_are "$up"

step 'Esc takes back what was typed into a filter, and only then closes'
mouse 1 filter "$chooser" IDC_CHOOSER_LIST 0
wait_focus "$chooser" filter
press End
type_text 5
wait_for 'the one name' names_are person00005
press Escape
wait_focus "$chooser" IDC_CHOOSER_LIST
wait_shows 9 count "$chooser" IDC_CHOOSER_LIST
answer "$chooser" Escape
wait_window "$panel"
wait_saved
expect 'the rules' '' "$(rules)"
host_close
