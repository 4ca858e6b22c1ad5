#!/usr/bin/env bash
# The library's dialogs say nothing when the store cannot do its work: the panel does.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One

not_all='Not everything could be read or stored.'

step 'an editor that cannot store'
host_start --folder "$tree\\One"
wait_status 'No store error'
editor_open n Notifications IDC_NOTIFICATIONS_LIST
editor_add 'Notification script'
type_text first
press Return
wait_gone 'Notification script'
block
finish Notifications
wait_store_box "$not_all"
shot message-editor-not-stored
answer 'Quota Store' Return
wait_window "$panel"
wait_for 'the error in the status line' error_is_shown
unblock
[ ! -e "$data/notifications.txt" ] || fail 'the notifications were stored'

step 'an editor that finds a damaged file'
mkdir -p "$data"
echo 'not a list' >"$data/notifications.txt"
editor_open n Notifications IDC_NOTIFICATIONS_LIST
wait_entries ''
answer Notifications Escape
wait_store_box "$not_all"
answer 'Quota Store' Return
expect 'the damaged file' 'not a list' "$(cat "$data/notifications.txt")"
rm "$data/notifications.txt"

step 'an editor without troubles'
editor_open n Notifications IDC_NOTIFICATIONS_LIST
answer Notifications Escape
wait_window "$panel"

step 'a new rule whose folder cannot be noted'
block
add_rule 30M 20M
wait_store_box "$not_all"
answer 'Quota Store' Return
wait_unsaved
wait_status '1 rule in 1 folder'
unblock
press ctrl+s
wait_saved
wait_status 'No store error'
host_close
expect_limits 'One|31457280|20971520'
