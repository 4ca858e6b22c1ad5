#!/usr/bin/env bash
# Choosing a file in the tree of drives, and a running process.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2"
files='Choose file' processes='Select program' entry='Backup Processes'

# The tree shows the files of a drive's first folder, in the order of their names but for the last one.
for name in alpha.txt bravo.txt charlie.txt; do
    echo "$name" >"$WINEPREFIX/drive_c/$name"
done

step 'the drives; the one that the host stands on is open'
host_start
menu t f
wait_window "$files"
shot choose-file
shown=$(peek tree "$files" IDC_CHOOSE_FILE_TREE)
expect 'the files of the drive' 3 "$(grep -cxE $'\t(alpha|bravo|charlie)\\.txt' <<<"$shown")"
expect 'the first drive' C: "$(head -n 1 <<<"$shown")"
expect 'the selected node' C: "$(peek chosen "$files" IDC_CHOOSE_FILE_TREE)"

step 'OK with a drive'
press Return
wait_window 'Chosen File'
shot chosen-file
expect 'what was chosen' C: "$(peek text 'Chosen File' IDC_BOX_TEXT)"
answer 'Chosen File' Return

step 'OK with a file, found by typing its name'
menu t f
wait_window "$files"
click "$files" IDC_CHOOSE_FILE_TREE
wait_focus "$files" IDC_CHOOSE_FILE_TREE
type_text brav
wait_shows bravo.txt chosen "$files" IDC_CHOOSE_FILE_TREE
press Return
wait_window 'Chosen File'
expect 'what was chosen' 'C:\bravo.txt' "$(peek text 'Chosen File' IDC_BOX_TEXT)"
answer 'Chosen File' Return

step 'a drive that is closed and opened is read again'
menu t f
wait_window "$files"
click "$files" IDC_CHOOSE_FILE_TREE
wait_focus "$files" IDC_CHOOSE_FILE_TREE
press Home Left
touch "$WINEPREFIX/drive_c/delta.txt"
has_delta() { peek tree "$files" IDC_CHOOSE_FILE_TREE | grep -qx $'\tdelta.txt'; }
! has_delta || fail 'the closed drive shows a file'
press Right
wait_for 'the new file' has_delta

step 'Cancel chooses nothing'
answer "$files" Escape
wait_window "$panel"
menu t p
wait_window "$processes"
answer "$processes" Escape
wait_window "$panel"

step 'a process, by its name'
menu t p
wait_window "$processes"
expect 'the order' "$(peek list "$processes" IDC_PROCESS_LIST | sort -f)" "$(peek list "$processes" IDC_PROCESS_LIST)"
expect 'OK with nothing selected' no "$(peek enabled "$processes" IDOK)"
click "$processes" IDC_PROCESS_LIST
type_text corv
wait_shows yes enabled "$processes" IDOK
shot choose-process
press Return
wait_window 'Chosen Process'
shot chosen-process
expect 'what was chosen' corvane_host.exe "$(peek text 'Chosen Process' IDC_BOX_TEXT)"
answer 'Chosen Process' Return
wait_window "$panel"

step 'a backup process: the name at the end of what is typed'
for name in nightly.exe weekly.exe; do
    menu t b
    wait_window "$entry"
    type_text "C:\\Tools\\$name"
    [ $name != nightly.exe ] || shot backup-process
    press Return
    wait_window 'Chosen Process'
    expect 'what was chosen' $name "$(peek text 'Chosen Process' IDC_BOX_TEXT)"
    answer 'Chosen Process' Return
    wait_window "$panel"
done
menu t b
wait_window "$entry"
answer "$entry" Escape
wait_window "$panel"
host_close
