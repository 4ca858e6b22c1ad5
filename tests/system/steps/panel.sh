# shellcheck shell=bash
# The panel: its page, its process, and what it has stored.

panel='Quota Control Panel'    # how its title begins
host_pid=

# ---- the page ----

wait_saved() { wait_title "$panel"; }
wait_unsaved() { wait_title "$panel - unsaved changes"; }

rules() { peek list "$panel" IDC_RULES; }
rules_are() { [ "$(rules | tr '\t' '|')" = "$1" ]; }
wait_rules() {
    local deadline=$((SECONDS + patience))
    until rules_are "$1"; do
        [ "$SECONDS" -lt "$deadline" ] || expect "the rule list" "$1" "$(rules | tr '\t' '|')"
        breathe
    done
}

# wait_column COLUMN 'A|B|C': until the cells of a column read so, from top to bottom.
wait_column() { wait_for "\"$2\" in column $1 of the list" column_is "$1" "$2"; }
column_is() { [ "$(rules | cut -f $(($1 + 1)) | paste -s -d '|')" = "$2" ]; }

# row_of FOLDER: the number of the first row that is for a folder of the tree.
row_of() { echo $(($(rules | cut -f 6 | grep -nxF "$tree\\$1" | cut -d : -f 1) - 1)); }

# has_rule ACCOUNT: whether the list has a rule for it.
has_rule() { rules | cut -f 1 | grep -qxF "$1"; }

# wait_status TEXT: until one of the parts of the status line reads so.
wait_status() { wait_for "\"$1\" in the status line" status_has "$1"; }
status_has() { grep -qxF "$1" <<<"$(peek parts "$panel" IDC_STATUS)"; }

# Whether the status line tells of an error.
error_is_shown() { grep -q '^Store: ' <<<"$(peek parts "$panel" IDC_STATUS)"; }

click_cell() { mouse 1 cell "$panel" IDC_RULES "$1" "$2"; }
double_click_cell() { mouse 2 cell "$panel" IDC_RULES "$1" "$2"; }
click_header() { click_heading "$panel" IDC_RULES "$1"; }
click_folder() { mouse 1 entry "$panel" IDC_FOLDERS "$1"; }

# add_folder FOLDER: types it and presses Enter.
add_folder() {
    click "$panel" IDC_FOLDER_EDIT
    type_text "$1"
    press Return
    wait_for "the folder $1 in view" folder_is_shown "$1"
}
folder_is_shown() { grep -qxF "$1" <<<"$(peek entries "$panel" IDC_FOLDERS)"; }

# add_rule HARD SOFT: a rule for anyone on the selected folder.
add_rule() {
    click "$panel" IDC_ADD_FOR_ANYONE
    wait_window "$settings"
    set_limits "$1" "$2"
    wait_gone "$settings"
}

# ---- the process ----

# windows_path PATH: as a program reads it.
windows_path() {
    local path=Z:$1
    path=${path/#"Z:$out"/C:/Quota}
    printf '%s' "${path//\//\\}"
}

# host_launch OPTION...: starts the panel on $data.
host_launch() {
    # It begins where nothing of this machine is in sight.
    (cd "$WINEPREFIX/drive_c" && exec wine "${launcher[@]}" "$(windows_path "$build/bin/corvane_host.exe")" \
        --data "$(windows_path "$data")" "$@" >>"$out/host.log" 2>&1 </dev/null) &
    host_pid=$!
}

# host_start OPTION...: and waits for its window.
host_start() {
    host_launch "$@"
    wait_window "$panel"
}

# host_ended [CODE]: waits until the host that was told to close has ended, and how.
host_ended() {
    local deadline=$((SECONDS + patience)) code=0
    while kill -0 "$host_pid" 2>/dev/null; do
        [ "$SECONDS" -lt "$deadline" ] || fail 'the host did not end'
        breathe
    done
    wait "$host_pid" || code=$?
    host_pid=
    expect 'exit code of the host' "${1:-0}" "$code"
}

host_close() {
    press alt+F4
    host_ended
}

# ---- what is stored ----

# dump OPTION...: the stored rules as the host prints them.
dump() {
    local text code=0
    text=$(wine "$build/bin/corvane_host.exe" --data "$(windows_path "$data")" --dump "$@" 2>>"$out/host.log" </dev/null) ||
        code=$?
    printf '%s\n' "${text//$'\r'/}"
    return $code
}

# stored: the same, one rule a line, sorted, without the heading: account|hard|soft|in use|folder
stored() { dump | sed -n '2,$ { s/   */|/g; s/\([0-9]\)  *\([0-9]\)/\1|\2/g; p }' | sort; }
expect_stored() { expect 'the stored rules' "$1" "$(stored)"; }

# stored_limits: hard and soft limit of every stored rule, by folder.
stored_limits() { stored | sed 's/^Anyone|\([0-9]*|[0-9]*\)|[0-9]*|.*\\/\1 /' | awk '{ print $2 "|" $1 }' | sort; }
expect_limits() { expect 'the stored limits' "$1" "$(stored_limits)"; }

# store_rules FOLDER HARD SOFT ...: stores rules through a host of its own, which it closes again.
store_rules() {
    step 'store some rules to begin with'
    host_start
    while [ $# -gt 0 ]; do
        add_folder "$tree\\$1"
        add_rule "$2" "$3"
        shift 3
    done
    press ctrl+s
    wait_saved
    host_close
}

# in_file NAME: the entries in a file of the store, words parted by blanks.
in_file() { tr -d '\r' <"$data/$1" | grep -v -e '^#' -e '^checksum' | tr '\t' ' ' | sed '1d;$d'; }
expect_file() { expect "what is stored in $1" "$2" "$(in_file "$1")"; }

# block, unblock: the store cannot write, and can again. For a user whom no permission holds back, a file stands in
# the place of the data folder.
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

# wait_store_box LINE: until the box about the store is there; its first line, and that it has a reason. Its text is
# in $message.
wait_store_box() {
    wait_window 'Quota Store'
    message=$(peek text 'Quota Store' IDC_BOX_TEXT)
    sed 's/^/    /' <<<"$message"
    expect 'how the message begins' "$1" "$(head -n 1 <<<"$message")"
    [ "$(wc -l <<<"$message")" -gt 2 ] || fail 'the message has no reason'
}
