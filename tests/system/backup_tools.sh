#!/usr/bin/env bash
# The editor of backup tools: names typed, picked from the running processes, picked from the disk.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2"
entry='Backup Processes'
processes='Select program'

step 'add one by typing'
host_start
editor_open b 'Manage backup tools'
editor_add "$entry"
type_text nightly.exe
shot entry
finish "$entry"

step 'one that is running'
editor_add "$entry"
click "$entry" IDC_ENTRY_BROWSE_RUNNING
wait_window "$processes"
expect 'OK with nothing selected' no "$(peek enabled "$processes" IDOK)"
row=$(peek list "$processes" IDC_PROCESS_LIST | grep -n -m 1 -x corvane_host.exe | cut -d : -f 1)
click_row "$processes" IDC_PROCESS_LIST $((row - 1))
wait_shows yes enabled "$processes" IDOK
shot running-processes
finish "$processes"
wait_shows corvane_host.exe text "$entry" IDC_ENTRY_TEXT
finish "$entry"

step 'one from the disk: its name counts, not its folder'
editor_add "$entry"
click "$entry" IDC_ENTRY_BROWSE
wait_window 'Select file'
type_text 'C:\Tools\archive.exe'
press Return
wait_gone 'Select file'
wait_shows archive.exe text "$entry" IDC_ENTRY_TEXT
finish "$entry"
wait_entries 'archive.exe
corvane_host.exe
nightly.exe'
shot three

step 'edit one, remove one'
editor_edit 2 "$entry"
fill "$entry" IDC_ENTRY_TEXT weekly.exe
finish "$entry"
editor_remove 1
wait_entries 'archive.exe
weekly.exe'

step 'store'
finish "$editor"
host_close
expect_file backup-tools.txt 'tool weekly.exe
tool archive.exe'
expect_file active-backup-tools.txt "$(in_file backup-tools.txt)"
