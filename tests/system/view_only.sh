#!/usr/bin/env bash
# Without the rights of an administrator the panel shows everything and changes nothing.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One Two
store_rules One 30M 20M Two 50M 40M
before=$(stored)

# not_possible ID...: none of these buttons can be pressed.
not_possible() {
    local id
    for id; do
        expect "button $id" no "$(peek enabled "$panel" "$id")"
    done
}
nothing_happened() {
    wait_window "$panel"
    wait_saved
    wait_status '2 rules in 2 folders'
}

step 'the state is shown'
launcher=("$(windows_path "$build/tests/system/as_plain_user.exe")")
host_start
wait_status 'Not an administrator: view only'
wait_status '2 rules in 2 folders'
wait_shows 'Only an administrator can change rules and policies.' text "$panel" IDC_FOLDER_HINT

shot view-only
press alt+i
wait_shows yes menu
shot view-only-menu
press Escape Escape
wait_shows no menu

step 'no button changes anything'
not_possible IDC_ADD_FOR_ACCOUNT IDC_OWNERS_FIRST IDC_ADD_FOR_ANYONE IDC_EDIT IDC_DROP IDC_APPLY
click_folder 0
click_cell 0 0
wait_shows 0 chosen "$panel" IDC_RULES
not_possible IDC_ADD_FOR_ACCOUNT IDC_OWNERS_FIRST IDC_ADD_FOR_ANYONE IDC_EDIT IDC_DROP IDC_APPLY

step 'nor does a key or the mouse'
press Return F2 Delete alt+w
nothing_happened
expect 'the check box' no "$(peek checked "$panel" IDC_OWNERS_FIRST)"
double_click_cell 0 0
nothing_happened
double_click_cell 0 2
nothing_happened

step 'nor an entry of a menu'
for keys in 'r c' 'r y' 'r o' 'r e' 'r s' 'r d' 'i n' 'i x' 'i e' 'i a' 'i b'; do
    menu ${keys% *} ${keys#* }
    while [ "$(peek menu)" = yes ]; do
        press Escape
    done
    nothing_happened
done

step 'looking is allowed'
click_header 1
wait_column 1 '30720K|51200K'
click_folder 0
click "$panel" IDC_FOLDER_REMOVE
wait_status '1 rule in 1 folder'
press F5
wait_status '1 rule in 1 folder'
menu h a
wait_window 'About Vantrel'
answer 'About Vantrel' Escape
host_close
launcher=()
expect 'the stored rules' "$before" "$(stored)"
