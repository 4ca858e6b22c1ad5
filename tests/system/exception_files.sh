#!/usr/bin/env bash
# The editor of exception files: add by typing and by browsing, edit, remove, store.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2"
entry='Exclude file'

host_start
step 'an empty list'
editor_open x 'Manage exception files'
expect 'Edit with nothing selected' no "$(peek enabled "$editor" IDC_POLICY_EDIT)"
expect 'Delete with nothing selected' no "$(peek enabled "$editor" IDC_POLICY_REMOVE)"
shot empty

step 'add by typing'
editor_add "$entry"
type_text 'C:\Shares\Projects\build'
shot entry
finish "$entry"
wait_entries 'C:\Shares\Projects\build'

step 'add by browsing: a file that need not exist'
editor_add "$entry"
click "$entry" IDC_ENTRY_BROWSE
wait_window 'Select file'
shot select-file
type_text 'C:\Quota\scratch.tmp'
press Return
wait_gone 'Select file'
wait_shows 'C:\Quota\scratch.tmp' text "$entry" IDC_ENTRY_TEXT
finish "$entry"
editor_add "$entry"
type_text 'pagefile.sys'
press Return
wait_entries 'pagefile.sys
C:\Quota\scratch.tmp
C:\Shares\Projects\build'

step 'edit by a double click, remove'
editor_edit 1 "$entry"
fill "$entry" IDC_ENTRY_TEXT 'C:\Shares\*.tmp'
finish "$entry"
wait_entries 'pagefile.sys
C:\Shares\*.tmp
C:\Shares\Projects\build'
editor_remove 2
wait_entries 'pagefile.sys
C:\Shares\*.tmp'
shot edited

step 'store: the list, what is active, and the rules for the driver'
finish "$editor"
host_close
expect_file excludes.txt 'exclude C:\Shares\*.tmp
exclude pagefile.sys'
expect_file active-excludes.txt "$(in_file excludes.txt)"
expect_file excludes.cnf "$(in_file excludes.txt)"
