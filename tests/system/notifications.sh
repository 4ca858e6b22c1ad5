#!/usr/bin/env bash
# The editor of notifications: every field of an entry, an edit, a removal, and a password that is kept secret.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2"
entry='Notification script'
mkdir -p "$out/scripts"
touch "$out/scripts/warn.vbs" "$out/scripts/clean.exe"

step 'add one, with every field'
host_start
editor_open n Notifications IDC_NOTIFICATIONS_LIST
shot empty
editor_add "$entry"
shot entry-new
click "$entry" IDC_ENTRY_BROWSE
wait_window 'Select file'
type_text 'C:\Quota\scripts\warn.vbs'
shot select-script
press Return
wait_gone 'Select file'
wait_shows 'C:\Quota\scripts\warn.vbs' text "$entry" IDC_ENTRY_TEXT
expect 'the account before it is asked for' no "$(peek enabled "$entry" IDC_NOTIFY_ACCOUNT)"
click "$entry" IDC_NOTIFY_ACCOUNT_ONLY
wait_shows yes enabled "$entry" IDC_NOTIFY_ACCOUNT
fill "$entry" IDC_NOTIFY_ACCOUNT 'EXAMPLE\alice'
fill "$entry" IDC_NOTIFY_RUN_AS 'EXAMPLE\operator'
click "$entry" IDC_NOTIFY_PASSWORD
type_text 'open sesame'
fill "$entry" IDC_NOTIFY_MIN_INCREMENT 10M
click "$entry" IDC_NOTIFY_PER_HOUR
shot entry-filled
finish "$entry"
first='C:\Quota\scripts\warn.vbs|EXAMPLE\alice|1hr|EXAMPLE\operator|10240K'
wait_entries "$first"

step 'add two more, with what is proposed'
for script in clean.exe mail.vbs; do
    editor_add "$entry"
    type_text "C:\\Quota\\scripts\\$script"
    press Return
    wait_gone "$entry"
done
wait_entries "C:\\Quota\\scripts\\mail.vbs|Anyone|1day(s)|IUSR_VANTREL|0 
C:\\Quota\\scripts\\clean.exe|Anyone|1day(s)|IUSR_VANTREL|0 
$first"

step 'edit one, remove one'
editor_edit 1 "$entry"
click "$entry" IDC_NOTIFY_PER_WEEK
finish "$entry"
editor_remove 0
wait_entries "C:\\Quota\\scripts\\clean.exe|Anyone|1week(s)|IUSR_VANTREL|0 
$first"
shot edited

step 'store'
finish "$editor"
host_close
grep -q 'open sesame' "$data/notifications.txt" && fail 'the password is stored in clear'
stored_attributes() { in_file notifications.txt | sed 's/^password-sealed [0-9a-f]*$/password-sealed .../'; }
expect 'what is stored' 'notification C:\Quota\scripts\warn.vbs
for-account EXAMPLE\alice
for-whom 1
rate 3600
run-as EXAMPLE\operator
password-sealed ...
min-increment 10M
notification C:\Quota\scripts\clean.exe
for-whom 0
rate 604800
min-increment 0' "$(stored_attributes)"

step 'open again: all of it is back'
host_start
editor_open n Notifications IDC_NOTIFICATIONS_LIST
editor_edit 1 "$entry"
expect 'the account' 'EXAMPLE\alice' "$(peek text "$entry" IDC_NOTIFY_ACCOUNT)"
expect 'once per hour' yes "$(peek checked "$entry" IDC_NOTIFY_PER_HOUR)"
answer "$entry" Escape
answer "$editor" Escape
host_close
