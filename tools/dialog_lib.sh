# The dialogs of the library, driven and looked at. Sourced behind tools/tour_lib.sh.

settings='Quota Settings'
chooser='Choose subject'

# Control ids of the account chooser.
id_custom_base=1006 id_base=1007 id_accounts=1008 id_name=1009 id_search=1013 id_type=1014
id_cancel=2

# Of the policy editors and their entry dialogs.
id_entry_add=1005 id_entry_remove=1006 id_entry_edit=1008 id_entries=1011 id_notifications=1015
id_entry_text=1012 id_entry_browse=3 id_entry_browse_running=4 id_entry_account=1039

# Of the choosers of files and processes.
id_tree=1038 id_processes=1020

# ---- accounts ----

# write_accounts [COUNT]: the accounts that the store will list, with so many more people among them. The last one
# owns every file on this runtime.
write_accounts() {
    local domain=S-1-5-21-1111-2222-3333 i
    mkdir -p "$data"
    {
        printf 'lornix accounts 1\ndomain EXAMPLE %s\n' $domain
        printf "user $domain-%s EXAMPLE\\\\%s\n" 1001 alice 1002 bob 1003 carol 1004 dave
        printf 'user S-1-5-21-0-0-0-1000 EXAMPLE\\olivia\n'
        printf 'group %s-2001 EXAMPLE\\Accounting\nmember EXAMPLE\\bob\nmember EXAMPLE\\carol\n' $domain
        for ((i = 1; i <= ${1:-0}; i++)); do
            printf 'user %s-%d EXAMPLE\\person%05d\n' $domain $((10000 + i)) "$i"
        done
        echo end
    } >"$data/accounts.txt"
}

# search: presses the default button of the chooser that is open, and waits until all accounts are there.
search() {
    wait_shows yes enabled "$chooser" $id_ok
    click "$chooser" $id_ok
    wait_shows yes enabled "$chooser" $id_cancel
    wait_shows $id_accounts focus "$chooser"
}

# filter COLUMN TEXT: types it under a heading and presses Enter.
filter() {
    at filter "$chooser" $id_accounts "$1" && xdotool click 1
    wait_shows filter focus "$chooser"
    press Home shift+End Delete
    type_text "$2"
    press Return
    wait_shows $id_accounts focus "$chooser"
}

accounts() { peek list "$chooser" $id_accounts | tr '\t' '|'; }
accounts_are() { [ "$(accounts)" = "$1" ]; }
wait_accounts() { wait_for "these accounts: ${1//$'\n'/, }" accounts_are "$1"; }

# pick NAME: searches, filters by the full name, selects the row and presses Add.
pick() {
    search
    filter 1 "$1"
    wait_shows 1 count "$chooser" $id_accounts
    click_row "$chooser" $id_accounts 0
    wait_shows yes enabled "$chooser" $id_ok
    click "$chooser" $id_ok
    wait_gone "$chooser"
}

# has_rule ACCOUNT: whether the rule list has one for it.
has_rule() { rules | cut -f 1 | grep -qxF "$1"; }

# ---- policy editors ----

# menu KEY ENTRY: opens a menu by its key and chooses an entry by its own.
menu() {
    press "alt+$1"
    wait_shows yes menu
    press "$2"
}

# editor_open KEY TITLE [LIST]: opens an editor by its key in the menu.
editor_open() {
    editor=$2
    entries=${3:-$id_entries}
    menu i "$1"
    wait_window "$editor"
}
editor_rows() { peek list "$editor" "$entries" | tr '\t' '|'; }
rows_are() { [ "$(editor_rows)" = "$1" ]; }
wait_entries() { wait_for "these entries: ${1//$'\n'/, }" rows_are "$1"; }

# editor_add TITLE: presses Add and waits for the entry dialog.
editor_add() {
    click "$editor" $id_entry_add
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
    wait_shows yes enabled "$editor" $id_entry_remove
    click "$editor" $id_entry_remove
}

# finish TITLE: presses OK.
finish() {
    click "$1" $id_ok
    wait_gone "$1"
}

# in_file NAME: the entries in a file of the store, words parted by blanks.
in_file() { tr -d '\r' <"$data/$1" | grep -v -e '^#' -e '^checksum' | tr '\t' ' ' | sed '1d;$d'; }
expect_file() { expect "what is stored in $1" "$2" "$(in_file "$1")"; }

# show_files NAME...: prints files of the store as they are.
show_files() {
    local name
    for name; do
        echo "    -- $name"
        sed 's/^/    /' "$data/$name"
    done
}
