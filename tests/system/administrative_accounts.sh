#!/usr/bin/env bash
# The editor of administrative accounts: the chooser is its entry dialog.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2"
write_accounts

step 'add three'
host_start
editor_open a 'Manage Administrative Accounts'
shot empty
for name in alice Accounting dave; do
    editor_add "$chooser"
    pick "EXAMPLE\\$name"
    wait_window "$editor"
done
wait_entries 'EXAMPLE\dave
EXAMPLE\Accounting
EXAMPLE\alice'

step 'anyone is nobody in particular'
editor_add "$chooser"
pick Anyone
wait_window "$editor"
wait_shows 3 count "$editor" IDC_POLICY_LIST

step 'another account by a double click, one removed'
editor_edit 2 "$chooser"
pick 'EXAMPLE\bob'
wait_window "$editor"
editor_remove 0
wait_entries 'EXAMPLE\Accounting
EXAMPLE\bob'
shot edited

step 'store'
finish "$editor"
host_close
expect_file administrative-accounts.txt 'account EXAMPLE\bob
account EXAMPLE\Accounting'
expect_file active-administrative-accounts.txt "$(in_file administrative-accounts.txt)"
