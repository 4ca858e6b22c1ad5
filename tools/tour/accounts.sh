#!/bin/bash
# Rules for accounts: the chooser in both modes, an owner of files, a group with all its members.
. "$(dirname "$0")/../tour_lib.sh"
. "$(dirname "$0")/../dialog_lib.sh"
tour_begin "$1" "$2"
make_files "$out/tree/Projects" 120 1
tree=$(windows_path "$out/tree")
write_accounts 6000

step 'open the chooser'
host_start --folder "$tree\\Projects"
menu r c
wait_window "$chooser"
shot empty

step 'type a name that nobody has'
click "$chooser" IDC_CHOOSER_TYPE
wait_shows yes enabled "$chooser" IDC_CHOOSER_NAME
fill "$chooser" IDC_CHOOSER_NAME 'EXAMPLE\mallory'
wait_shows Add text "$chooser" IDOK
shot typed-name
press Return
wait_window Warning
shot warning
answer Warning Return
wait_window "$chooser"

step 'search instead'
click "$chooser" IDC_CHOOSER_SEARCH
wait_shows yes enabled "$chooser" IDC_CHOOSER_LIST
click "$chooser" IDOK
some_are_there() { [ "$(peek count "$chooser" IDC_CHOOSER_LIST)" -gt 20 ]; }
wait_for 'the first accounts' some_are_there
shots=$((shots + 1))
picture "$out/$(printf '%02d' $shots)-filling.png"
wait_shows yes enabled "$chooser" IDCANCEL
shot all-accounts

step 'filter by the beginning of a name, and by two columns'
filter 0 person0012
wait_shows 10 count "$chooser" IDC_CHOOSER_LIST
shot filtered
filter 2 Group
wait_shows 0 count "$chooser" IDC_CHOOSER_LIST
filter 0 ''
wait_accounts 'Accounting|EXAMPLE\Accounting|Group'
filter 2 ''
filter 1 'example\al'
wait_accounts 'alice|EXAMPLE\alice|User'

step 'a rule for the account'
click_row "$chooser" IDC_CHOOSER_LIST 0
wait_shows yes enabled "$chooser" IDOK
shot picked
press Return
wait_window "$settings"
expect 'the account' 'EXAMPLE\alice' "$(peek text "$settings" IDC_QUOTA_CREDENTIALS)"
shot settings-for-an-account
set_limits 300M 200M
wait_gone "$settings"
wait_column 0 'EXAMPLE\alice'

step 'a rule for an owner of files: the owners come first'
click "$panel" IDC_OWNERS_FIRST
wait_shows yes checked "$panel" IDC_OWNERS_FIRST
shot owners-first-checked
click "$panel" IDC_ADD_FOR_ACCOUNT
wait_window "$chooser"
search
shot owners-first
filter 2 'File owner'
wait_accounts 'olivia|EXAMPLE\olivia|File owner'
click_row "$chooser" IDC_CHOOSER_LIST 0
wait_shows yes enabled "$chooser" IDOK
press Return
wait_window "$settings"
set_limits 400M 300M
wait_gone "$settings"
wait_column 0 'EXAMPLE\olivia|EXAMPLE\alice'

step 'a rule for each member of a group'
click "$panel" IDC_OWNERS_FIRST
wait_shows no checked "$panel" IDC_OWNERS_FIRST
menu r c
wait_window "$chooser"
pick 'EXAMPLE\Accounting'
wait_window "$settings"
click "$settings" IDC_QUOTA_GROUP_MEMBERS
wait_shows yes checked "$settings" IDC_QUOTA_GROUP_MEMBERS
shot settings-for-a-group
set_limits 500M 400M
wait_gone "$settings"
wait_for 'a rule for the member' has_rule 'EXAMPLE\carol'
shot rules-for-accounts
press ctrl+s
wait_saved
host_close

step 'look at what is stored'
dump
stored_accounts() { dump | sed '1d; s/  .*//' | sort; }
expect 'the accounts with rules' 'EXAMPLE\Accounting
EXAMPLE\alice
EXAMPLE\bob
EXAMPLE\carol
EXAMPLE\olivia' "$(stored_accounts)"
