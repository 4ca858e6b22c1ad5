# What the stories share. Sourced by each with the build folder and its own output folder.
. "$(dirname "${BASH_SOURCE[0]}")/../../tools/tour_lib.sh"
. "$(dirname "${BASH_SOURCE[0]}")/../../tools/dialog_lib.sh"

# story_begin BUILD OUT FOLDER...: an empty data folder, and a tree with one small folder of files per name.
story_begin() {
    tour_begin "$1" "$2"
    shift 2
    tree=$(windows_path "$out/tree")
    local folder seed=0
    for folder; do
        seed=$((seed + 1))
        make_files "$out/tree/$folder" 40 "$seed"
    done
}

# add_rule HARD SOFT: a rule for anyone on the selected folder.
add_rule() {
    click "$panel" $id_add
    wait_window "$settings"
    set_limits "$1" "$2"
    wait_gone "$settings"
}

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

# in_applied_to NAME: the settings dialog is for the folder of this name.
in_applied_to() { [[ $(peek text "$settings" 1012) = *[\\/]"$1" ]]; }

# Whether the status line tells of an error.
error_is_shown() { grep -q '^Store: ' <<<"$(peek parts "$panel" $id_status)"; }

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
    message=$(peek text 'Quota Store' $id_message)
    sed 's/^/    /' <<<"$message"
    expect 'how the message begins' "$1" "$(head -n 1 <<<"$message")"
    [ "$(wc -l <<<"$message")" -gt 2 ] || fail 'the message has no reason'
}
