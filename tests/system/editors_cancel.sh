#!/usr/bin/env bash
# Cancel in a policy editor stores nothing, whatever was done before; Cancel in an entry dialog adds nothing.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2"
write_accounts

is_other() { editor_rows | grep -q '^other'; }

# try_editor KEY TITLE LIST FILE ENTRY_DIALOG: with an entry dialog that begins with a text to type.
try_editor() {
    local key=$1 title=$2 list=$3 file=$4 entry=$5
    step "$title"
    editor_open "$key" "$title" "$list"
    editor_add "$entry"
    type_text never
    answer "$entry" Escape
    wait_entries ''
    editor_add "$entry"
    type_text first
    press Return
    wait_gone "$entry"
    wait_shows 1 count "$editor" "$entries"
    click "$editor" IDCANCEL
    wait_gone "$editor"
    [ ! -e "$data/$file" ] || fail "$file was stored"

    editor_open "$key" "$title" "$list"
    wait_entries ''
    editor_add "$entry"
    type_text one
    press Return
    wait_gone "$entry"
    wait_shows 1 count "$editor" "$entries"
    finish "$editor"
    before=$(cksum <"$data/$file")

    editor_open "$key" "$title" "$list"
    wait_shows 1 count "$editor" "$entries"
    rows=$(editor_rows)
    editor_edit 0 "$entry"
    fill "$entry" IDC_ENTRY_TEXT other
    answer "$entry" Escape
    wait_entries "$rows"
    editor_edit 0 "$entry"
    fill "$entry" IDC_ENTRY_TEXT other
    press Return
    wait_gone "$entry"
    wait_for 'the other text' is_other
    press Home space
    wait_shows yes enabled "$editor" IDC_POLICY_REMOVE
    press Tab Tab Tab space
    wait_entries ''
    answer "$editor" Escape
    expect "$file" "$before" "$(cksum <"$data/$file")"
}

host_start
try_editor n Notifications IDC_NOTIFICATIONS_LIST notifications.txt 'Notification script'
try_editor x 'Manage exception files' IDC_POLICY_LIST excludes.txt 'Exclude file'
try_editor e 'Manage blocked extensions' IDC_POLICY_LIST blocked-extensions.txt 'Blocked extension'
try_editor b 'Manage backup tools' IDC_POLICY_LIST backup-tools.txt 'Backup Processes'

step 'Manage Administrative Accounts'
editor_open a 'Manage Administrative Accounts'
editor_add "$chooser"
answer "$chooser" Escape
wait_entries ''
editor_add "$chooser"
pick 'EXAMPLE\alice'
wait_entries 'EXAMPLE\alice'
answer "$editor" Escape
[ ! -e "$data/administrative-accounts.txt" ] || fail 'the accounts were stored'
editor_open a 'Manage Administrative Accounts'
wait_entries ''
answer "$editor" Escape
wait_saved
host_close
