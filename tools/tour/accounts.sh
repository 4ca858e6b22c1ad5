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
click "$chooser" $id_type
wait_shows yes enabled "$chooser" $id_name
fill "$chooser" $id_name 'EXAMPLE\mallory'
wait_shows Add text "$chooser" $id_ok
shot typed-name
press Return
wait_window Warning
shot warning
answer Warning Return
wait_window "$chooser"

step 'search instead'
click "$chooser" $id_search
wait_shows yes enabled "$chooser" $id_accounts
click "$chooser" $id_ok
some_are_there() { [ "$(peek count "$chooser" $id_accounts)" -gt 20 ]; }
wait_for 'the first accounts' some_are_there
shots=$((shots + 1))
picture "$out/$(printf '%02d' $shots)-filling.png"
wait_shows yes enabled "$chooser" $id_cancel
shot all-accounts

step 'filter by the beginning of a name, and by two columns'
filter 0 person0012
wait_shows 10 count "$chooser" $id_accounts
shot filtered
filter 2 Group
wait_shows 0 count "$chooser" $id_accounts
filter 0 ''
wait_accounts 'Accounting|EXAMPLE\Accounting|Group'
filter 2 ''
filter 1 'example\al'
wait_accounts 'alice|EXAMPLE\alice|User'

step 'a rule for the account'
click_row "$chooser" $id_accounts 0
wait_shows yes enabled "$chooser" $id_ok
shot picked
press Return
wait_window "$settings"
expect 'the account' 'EXAMPLE\alice' "$(peek text "$settings" 1001)"
shot settings-for-an-account
set_limits 300M 200M
wait_gone "$settings"
wait_column 0 'EXAMPLE\alice'

step 'a rule for an owner of files: the owners come first'
click "$panel" $id_owners_first
wait_shows yes checked "$panel" $id_owners_first
shot owners-first-checked
click "$panel" $id_add_account
wait_window "$chooser"
search
shot owners-first
filter 2 'File owner'
wait_accounts 'olivia|EXAMPLE\olivia|File owner'
click_row "$chooser" $id_accounts 0
wait_shows yes enabled "$chooser" $id_ok
press Return
wait_window "$settings"
set_limits 400M 300M
wait_gone "$settings"
wait_column 0 'EXAMPLE\olivia|EXAMPLE\alice'

step 'a rule for each member of a group'
click "$panel" $id_owners_first
wait_shows no checked "$panel" $id_owners_first
menu r c
wait_window "$chooser"
pick 'EXAMPLE\Accounting'
wait_window "$settings"
click "$settings" 1006
wait_shows yes checked "$settings" 1006
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
show_files rules.txt
stored_accounts() { dump | sed '1d; s/  .*//' | sort; }
expect 'the accounts with rules' 'EXAMPLE\Accounting
EXAMPLE\alice
EXAMPLE\bob
EXAMPLE\carol
EXAMPLE\olivia' "$(stored_accounts)"
