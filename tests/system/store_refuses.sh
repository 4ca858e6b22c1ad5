#!/usr/bin/env bash
# The store cannot write: the panel says so, keeps the changes, and stores them once it can.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One
store_rules One 30M 20M
stored_before=$(stored)

error_is_shown() { grep -q '^Store: ' <<<"$(peek parts "$panel" $id_status)"; }

# A folder that may not be written to. For a user whom no permission holds back, a file in the folder's place.
block() {
    chmod -R a-w "$data"
    if touch "$data/probe" 2>/dev/null; then
        rm "$data/probe"
        chmod -R u+w "$data"
        mv "$data" "$data.aside"
        echo 'in the way' >"$data"
    fi
}
unblock() {
    if [ -d "$data.aside" ]; then
        rm "$data"
        mv "$data.aside" "$data"
    else
        chmod -R u+w "$data"
    fi
}

step 'make a change'
host_start
double_click_cell 0 2
wait_shows cell focus "$panel"
type_text 10M
press Return
wait_unsaved

step 'apply to a folder that cannot be written'
block
press ctrl+s
wait_window 'Quota Store'
message=$(peek text 'Quota Store' $id_message)
echo "$message" | sed 's/^/    /'
expect 'how the message begins' 'The rules were not stored.' "$(head -n 1 <<<"$message")"
[ "$(wc -l <<<"$message")" -gt 2 ] || fail 'the message has no reason'
shot message-not-stored
answer 'Quota Store' Return
wait_unsaved
wait_status 'Unsaved changes'
wait_for 'the error in the status line' error_is_shown
wait_column 2 10240K
expect 'Apply' yes "$(peek enabled "$panel" $id_apply)"

step 'closing with Yes stays open as well'
press alt+F4
wait_window 'Unsaved Changes'
press alt+y
wait_window 'Quota Store'
answer 'Quota Store' Return
wait_window "$panel"
wait_unsaved

step 'nothing that was stored is lost'
unblock
expect 'the stored rules' "$stored_before" "$(stored)"

step 'apply again'
press ctrl+s
wait_saved
wait_status 'No store error'
host_close
expect_limits 'One|10485760|10485760'
