#!/usr/bin/env bash
# The editor of blocked extensions: masks for all accounts and for one.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2"
entry='Blocked extension'
write_accounts

step 'a mask for all accounts'
host_start
editor_open e 'Manage blocked extensions'
editor_add "$entry"
expect 'the account' '(All)' "$(peek text "$entry" IDC_ENTRY_ACCOUNT)"
type_text '*.mp3'
shot entry-for-all
finish "$entry"
wait_entries '*.mp3|(All)'

step 'one for a group'
editor_add "$entry"
type_text '*.exe'
click "$entry" IDC_ENTRY_BROWSE
wait_window "$chooser"
pick 'EXAMPLE\Accounting'
wait_window "$entry"
wait_shows 'EXAMPLE\Accounting' text "$entry" IDC_ENTRY_ACCOUNT
shot entry-for-a-group
finish "$entry"
editor_add "$entry"
type_text '*.tmp'
finish "$entry"
wait_entries '*.tmp|(All)
*.exe|EXAMPLE\Accounting
*.mp3|(All)'

step 'edit: another account for one, then remove one'
editor_edit 2 "$entry"
expect 'the mask' '*.mp3' "$(peek text "$entry" IDC_ENTRY_TEXT)"
click "$entry" IDC_ENTRY_BROWSE
wait_window "$chooser"
pick 'EXAMPLE\bob'
wait_shows 'EXAMPLE\bob' text "$entry" IDC_ENTRY_ACCOUNT
finish "$entry"
editor_remove 0
wait_entries '*.exe|EXAMPLE\Accounting
*.mp3|EXAMPLE\bob'
shot edited

step 'store'
finish "$editor"
host_close
expect_file blocked-extensions.txt 'mask S-1-5-21-1111-2222-3333-1002 *.mp3
mask S-1-5-21-1111-2222-3333-2001 *.exe'
expect_file active-blocked-extensions.txt "$(in_file blocked-extensions.txt)"
