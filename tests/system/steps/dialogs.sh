# shellcheck shell=bash
# The dialogs of the library.

# ---- limits ----

settings='Quota Settings'

# set_limits HARD SOFT: fills the dialog that is open, and presses OK.
set_limits() {
    fill "$settings" IDC_QUOTA_HARD_LIMIT "$1"
    fill "$settings" IDC_QUOTA_SOFT_LIMIT "$2"
    click "$settings" IDOK
}

# in_applied_to NAME: the settings dialog is for the folder of this name.
in_applied_to() { [[ $(peek text "$settings" IDC_QUOTA_APPLIED_TO) = *[\\/]"$1" ]]; }

# ---- accounts ----

chooser='Choose subject'

# search: presses the default button of the chooser that is open, and waits until all accounts are there.
search() {
    wait_shows yes enabled "$chooser" IDOK
    click "$chooser" IDOK
    wait_shows yes enabled "$chooser" IDCANCEL
    wait_focus "$chooser" IDC_CHOOSER_LIST
}

# filter COLUMN TEXT: types it under a heading and presses Enter.
filter() {
    mouse 1 filter "$chooser" IDC_CHOOSER_LIST "$1"
    wait_focus "$chooser" filter
    press Home shift+End Delete
    type_text "$2"
    press Return
    wait_focus "$chooser" IDC_CHOOSER_LIST
}

accounts() { peek list "$chooser" IDC_CHOOSER_LIST | tr '\t' '|'; }
accounts_are() { [ "$(accounts)" = "$1" ]; }
wait_accounts() { wait_for "these accounts: ${1//$'\n'/, }" accounts_are "$1"; }

# pick NAME: searches, filters by the full name, selects the row and presses Add.
pick() {
    search
    filter 1 "$1"
    wait_shows 1 count "$chooser" IDC_CHOOSER_LIST
    click_row "$chooser" IDC_CHOOSER_LIST 0
    wait_shows yes enabled "$chooser" IDOK
    click "$chooser" IDOK
    wait_gone "$chooser"
}

# ---- policy editors ----

# editor_open KEY TITLE [LIST]: opens an editor by its key in the menu.
editor_open() {
    editor=$2
    entries=${3:-IDC_POLICY_LIST}
    menu i "$1"
    wait_window "$editor"
}
editor_rows() { peek list "$editor" "$entries" | tr '\t' '|'; }
rows_are() { [ "$(editor_rows)" = "$1" ]; }
wait_entries() { wait_for "these entries: ${1//$'\n'/, }" rows_are "$1"; }

# editor_add TITLE: presses Add and waits for the entry dialog.
editor_add() {
    click "$editor" IDC_POLICY_ADD
    wait_window "$1"
}

# editor_edit ROW TITLE: double-clicks a row and waits for the entry dialog.
editor_edit() {
    double_click_row "$editor" "$entries" "$1"
    wait_window "$2"
}

# editor_remove ROW
editor_remove() {
    click_row "$editor" "$entries" "$1"
    wait_shows yes enabled "$editor" IDC_POLICY_REMOVE
    click "$editor" IDC_POLICY_REMOVE
}

# finish TITLE: presses OK.
finish() {
    click "$1" IDOK
    wait_gone "$1"
}

