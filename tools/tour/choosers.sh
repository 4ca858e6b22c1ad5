#!/bin/bash
# What is left in the menus: choosing a file and a process, the About box, and the panel without the rights.
. "$(dirname "$0")/../tour_lib.sh"
. "$(dirname "$0")/../dialog_lib.sh"
tour_begin "$1" "$2"
entry='Backup Processes'
mkdir -p "$out/tree/One"

step 'choose a file'
host_start --folder "$(windows_path "$out/tree/One")"
menu t f
wait_window 'Choose file'
shot choose-file
press Return
wait_window 'Chosen File'
expect 'what was chosen' C: "$(peek text 'Chosen File' $id_message)"
shot chosen-file
answer 'Chosen File' Return

step 'choose a process'
menu t p
wait_window 'Select program'
shot choose-process
row=$(peek list 'Select program' $id_processes | grep -n -m 1 -x corvane_host.exe | cut -d : -f 1)
double_click_row 'Select program' $id_processes $((row - 1))
wait_window 'Chosen Process'
expect 'what was chosen' corvane_host.exe "$(peek text 'Chosen Process' $id_message)"
answer 'Chosen Process' Return

step 'a backup process'
menu t b
wait_window "$entry"
type_text 'C:\Tools\nightly.exe'
shot backup-process
finish "$entry"
wait_window 'Chosen Process'
expect 'what was chosen' nightly.exe "$(peek text 'Chosen Process' $id_message)"
shot chosen-process
answer 'Chosen Process' Return

step 'the About box'
menu h a
wait_window 'About Vantrel'
shot about
answer 'About Vantrel' Return
host_close

step 'without the rights of an administrator'
launcher=("$(windows_path "$build/tests/system/as_plain_user.exe")")
host_start --folder "$(windows_path "$out/tree/One")"
wait_status 'Not an administrator: view only'
shot view-only
press alt+i
wait_shows yes menu
shot view-only-menu
press Escape Escape
host_close
