#!/usr/bin/env bash
# The command line: folders to show, the dump, and damaged words.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One Two

# printed OPTION...: what a call that prints says on standard error; its exit code in $code.
printed() {
    local text
    text=$(wine "$build/bin/corvane_host.exe" "$@" 2>&1 >/dev/null </dev/null) && code=0 || code=$?
    said=${text//$'\r'/}
}

step 'damaged words, with a script as reader'
printed --dump --fodler x
expect 'the exit code' 2 "$code"
expect 'the message' '"--fodler" is not an option of this program.' "$(head -n 1 <<<"$said")"
printed --dump --data
expect 'the exit code' 2 "$code"
expect 'the message' '--data needs a folder after it.' "$(head -n 1 <<<"$said")"

step 'damaged words, with a person as reader'
wine "$build/bin/corvane_host.exe" --folder </dev/null >>"$out/host.log" 2>&1 &
host_pid=$!
wait_window 'Quota Control Panel Cannot Start'
expect 'the message' '--folder needs a folder after it.' \
    "$(peek text 'Quota Control Panel Cannot Start' IDC_BOX_TEXT | head -n 1)"
shot message-command-line
press Return
host_ended 2

step 'a data folder that is a file'
touch "$out/a file"
printed --dump --data "$(windows_path "$out/a file")"
expect 'the exit code' 1 "$code"
expect 'the message' "The data folder \"$(windows_path "$out/a file")\" cannot be used." "$(head -n 1 <<<"$said")"

step 'folders from the command line, one of them in two spellings, one that is not there'
host_launch --folder "$tree\\One" --folder "${tree//\\//}/Two/" --folder "$tree\\None"
wait_window 'Add Folder'
expect 'the message' "There is no folder \"$tree\\None\", or it cannot be reached." \
    "$(peek text 'Add Folder' IDC_BOX_TEXT)"
answer 'Add Folder' Return
wait_window "$panel"
expect 'the folders' "$tree\\One
$tree\\Two" "$(peek entries "$panel" IDC_FOLDERS)"
add_rule 30M 20M
click_folder 0
add_rule 50M 40M
press ctrl+s
wait_saved
host_close

step 'a folder from the command line that the store knows already'
host_start --folder "$tree\\one"
wait_status '2 rules in 2 folders'
wait_shows "New rules are for $tree\\One." text "$panel" IDC_FOLDER_HINT
host_close

step 'the dump of all folders and of one'
expect_limits 'One|52428800|41943040
Two|31457280|20971520'
expect 'the lines of one folder' 2 "$(dump --folder "$tree\\one" | wc -l)"
expect 'the columns' 'Credentials Quota Limit Soft Quota Limit In Use Defined in' "$(dump | head -n 1 | tr -s ' ')"
