#!/usr/bin/env bash
# Rules for accounts, stored with the right SIDs: a user, an owner of files, one account on two folders.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One Two Three
write_accounts
alice=S-1-5-21-1111-2222-3333-1001 bob=S-1-5-21-1111-2222-3333-1002 carol=S-1-5-21-1111-2222-3333-1003
accounting=S-1-5-21-1111-2222-3333-2001 olivia=S-1-5-21-0-0-0-1000

# stored_accounts FOLDER: the accounts of a folder's rules, sorted.
stored_accounts() { tr -d '\r' <"$data/rules.txt" | grep -i "^[0-9].*\\\\$1\$" | cut -f 4 | sort; }

step 'a user'
host_start --folder "$tree\\One" --folder "$tree\\Two"
click_folder 0
click "$panel" IDC_ADD_FOR_ACCOUNT
wait_window "$chooser"
pick 'EXAMPLE\alice'
wait_window "$settings"
shot settings-for-an-account
set_limits 30M 20M
wait_gone "$settings"
wait_column 0 'EXAMPLE\alice'

step 'the same one again is refused'
click "$panel" IDC_ADD_FOR_ACCOUNT
wait_window "$chooser"
pick 'EXAMPLE\alice'
wait_window Information
answer Information Return
wait_status '1 rule in 2 folders'

step 'the owner of the files'
menu r o
wait_window "$chooser"
search
shot owners-first
expect 'the second account' "olivia|EXAMPLE\\olivia|File owner" "$(accounts | sed -n 2p)"
expect 'olivia is listed' 1 "$(accounts | grep -c olivia)"
click_row "$chooser" IDC_CHOOSER_LIST 1
wait_shows yes enabled "$chooser" IDOK
press Return
wait_window "$settings"
set_limits 40M 30M
wait_gone "$settings"
wait_column 0 'EXAMPLE\olivia|EXAMPLE\alice'

step 'the same behind the button, as long as the box is checked'
expect 'the box at first' no "$(peek checked "$panel" IDC_OWNERS_FIRST)"
for checked in yes no; do
    click "$panel" IDC_OWNERS_FIRST
    wait_shows $checked checked "$panel" IDC_OWNERS_FIRST
    click "$panel" IDC_ADD_FOR_ACCOUNT
    wait_window "$chooser"
    search
    [ $checked = yes ] && first='olivia|EXAMPLE\olivia|File owner' || first='alice|EXAMPLE\alice|User'
    expect "the second account with \"$checked\" in the box" "$first" "$(accounts | sed -n 2p)"
    answer "$chooser" Escape
    wait_window "$panel"
done

step 'one account on two folders at once'
with_ctrl click_folder 1
click "$panel" IDC_ADD_FOR_ACCOUNT
wait_window "$chooser"
pick 'EXAMPLE\bob'
wait_for 'the dialog of the first folder' in_applied_to One
wait_window "$settings"
set_limits 50M 40M
wait_for 'the dialog of the second folder' in_applied_to Two
wait_window "$settings"
set_limits 60M 50M
wait_gone "$settings"
wait_status '4 rules in 2 folders'

step 'Cancel in the chooser adds nothing'
click "$panel" IDC_ADD_FOR_ACCOUNT
wait_window "$chooser"
answer "$chooser" Escape
wait_status '4 rules in 2 folders'
press ctrl+s
wait_saved
host_close

step 'the stored SIDs'
expect 'the accounts of One' "$olivia
$alice
$bob" "$(stored_accounts one)"
expect 'the accounts of Two' "$bob" "$(stored_accounts two)"

step 'the names are back'
host_start
wait_status '4 rules in 2 folders'
expect 'the accounts' 'EXAMPLE\alice
EXAMPLE\bob
EXAMPLE\bob
EXAMPLE\olivia' "$(rules | cut -f 1 | sort)"
host_close

step 'a rule for each member of a group'
host_start --folder "$tree\\Three"
click_folder 2
click "$panel" IDC_ADD_FOR_ACCOUNT
wait_window "$chooser"
pick 'EXAMPLE\Accounting'
wait_window "$settings"
click "$settings" IDC_QUOTA_GROUP_MEMBERS
wait_shows yes checked "$settings" IDC_QUOTA_GROUP_MEMBERS
shot settings-for-a-group
set_limits 70M 60M
wait_gone "$settings"
wait_for 'a rule for the member' has_rule 'EXAMPLE\carol'
shot rules-for-accounts
press ctrl+s
wait_saved
host_close
expect 'the accounts of Three' "$bob
$carol
$accounting" "$(stored_accounts three)"
