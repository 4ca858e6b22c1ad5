# Drives the sample host as a person does: real keys and mouse movements on an X display, and a look at what
# stands in its windows. Sourced by the parts of the tour and by the tests in tests/system. The caller has selected a
# display and a Windows runtime, and then calls
#   tour_begin BUILD OUT    BUILD: folder of the build; OUT: folder for data, pictures and logs, emptied first. For
#                           the programs that are driven it is C:\Quota.
#
# Nothing waits for a guessed time: every wait is for a state, ends as soon as it is there, and fails after
# $patience seconds with the name of the step.

set -u -o pipefail

patience=30
panel='Quota Control Panel'    # how the host's title begins

# Control ids of the host and of the Quota Settings dialog.
id_folder=1001 id_folder_add=1002 id_folder_browse=1003 id_folders=1005 id_folder_remove=1006 id_folder_hint=1007
id_rules=1009 id_add=1010 id_add_account=1011 id_edit=1012 id_drop=1013 id_reload=1014 id_apply=1015 id_status=1016
id_owners_first=1017
id_soft=1003 id_hard=1004
id_ok=1 id_message=65535

# ---- steps and failures ----

current_step=start
shots=0
host_pid=
at_end=()      # commands that put things back, the last one first
launcher=()    # a program and its options, which starts the host

tour_begin() {
    build=$(cd "$1" && pwd) || exit 2
    out=$2
    rm -rf "$out"
    mkdir -p "$out" || exit 2
    out=$(cd "$out" && pwd)
    data=$out/data
    # Programs see the output folder under a short name, the same on every machine.
    short_name=$WINEPREFIX/drive_c/Quota
    ln -sfn "$out" "$short_name"
    trap tour_end EXIT
}

# at_end COMMAND...: runs it when the script ends, however that comes.
at_end() { at_end=("$(printf '%q ' "$@")" "${at_end[@]}"); }

tour_end() {
    local command
    for command in "${at_end[@]}"; do
        eval "$command"
    done
    [ -L "$short_name" ] && rm "$short_name"
    [ -n "$host_pid" ] && kill "$host_pid" 2>/dev/null
    host_pid=
}

# step TEXT: what is done next; said to the person who watches and in the error when it gets stuck.
step() {
    current_step=$*
    echo "  $*"
}

fail() {
    echo "FAILED at the step \"$current_step\": $*" >&2
    echo "Windows on the screen:" >&2
    peek windows >&2
    echo "Focus: $(xdotool getwindowfocus getwindowname 2>&1)" >&2
    picture "$out/failed.png" && echo "Picture of the screen: $out/failed.png" >&2
    exit 1
}

# expect WHAT WANTED GOT
expect() {
    [ "$2" = "$3" ] || fail "$1
--- wanted
$2
--- got
$3"
}

# wait_for WHAT COMMAND...: until the command succeeds.
wait_for() {
    local what=$1 deadline=$((SECONDS + patience))
    shift
    until "$@"; do
        [ "$SECONDS" -lt "$deadline" ] || fail "$what did not come within $patience seconds"
        if [ -n "$host_pid" ] && ! kill -0 "$host_pid" 2>/dev/null; then
            fail "the host ended while it was to show $what"
        fi
        sleep 0.05
    done
}

# ---- looking ----

# peek REQUEST...: see tests/system/peek/main.cpp.
peek() {
    local text
    text=$(wine "$build/tests/system/peek.exe" "$@" 2>/dev/null </dev/null) || return
    printf '%s\n' "${text//$'\r'/}"
}

# The runtime decides which of a program's windows gets the keys; the display only knows the program.
is_in_front() { peek focus "$1" >/dev/null; }
is_gone() {
    local windows
    windows=$(peek windows) && ! grep -q "^$1" <<<"$windows"
}
shows() { [ "$(peek "${@:2}")" = "$1" ]; }

wait_window() { wait_for "the window \"$1\"" is_in_front "$1"; }
wait_gone() { wait_for "the end of the window \"$1\"" is_gone "$1"; }

# wait_shows WANTED REQUEST...: until a look gives this text.
wait_shows() { wait_for "\"$1\" in ${*:2}" shows "$@"; }

wait_title() { wait_for "the title \"$1\"" has_title "$1"; }
has_title() { grep -qxF "$1" <<<"$(peek windows)"; }
wait_saved() { wait_title "$panel"; }
wait_unsaved() { wait_title "$panel - unsaved changes"; }

rules() { peek list "$panel" $id_rules; }
rules_are() { [ "$(rules | tr '\t' '|')" = "$1" ]; }
wait_rules() {
    local deadline=$((SECONDS + patience))
    until rules_are "$1"; do
        [ "$SECONDS" -lt "$deadline" ] || expect "the rule list" "$1" "$(rules | tr '\t' '|')"
        sleep 0.05
    done
}

# wait_column COLUMN 'A|B|C': until the cells of a column read so, from top to bottom.
wait_column() { wait_for "\"$2\" in column $1 of the list" column_is "$1" "$2"; }
column_is() { [ "$(rules | cut -f $(($1 + 1)) | paste -s -d '|')" = "$2" ]; }

# wait_status TEXT: until one of the parts of the status line reads so.
wait_status() { wait_for "\"$1\" in the status line" status_has "$1"; }
status_has() { grep -qxF "$1" <<<"$(peek parts "$panel" $id_status)"; }

# picture FILE: what all windows cover together.
picture() {
    local area
    read -r -a area <<<"$(peek extent)" || return
    import -window root -crop "${area[2]}x${area[3]}+${area[0]}+${area[1]}" +repage "$1"
}

# shot NAME: a picture under a speaking name, once two in a row are the same: then all is painted.
shot() {
    local file before='' now=''
    shots=$((shots + 1))
    file=$out/$(printf '%02d' "$shots")-$1.png
    shot_settled() {
        before=$now
        picture "$file" || return
        now=$(import -window root rgb:- | cksum)
        [ "$before" = "$now" ]
    }
    wait_for "a settled picture of $1" shot_settled
}

# ---- doing ----

press() { xdotool key --delay 20 "$@"; }
type_text() { xdotool type --delay 8 -- "$1"; }

# at REQUEST...: moves the mouse to the place that peek names.
at() {
    wait_for "a place to click: $*" finds_place "$@"
    # shellcheck disable=SC2086 # two words: x and y
    xdotool mousemove $place
}
finds_place() { place=$(peek "$@"); }
click() { at point "$@" && xdotool click 1; }
click_row() { at cell "$1" "$2" "$3" 0 && xdotool click 1; }
double_click_row() { at cell "$1" "$2" "$3" 0 && xdotool click --repeat 2 --delay 60 1; }
click_cell() { at cell "$panel" $id_rules "$1" "$2" && xdotool click 1; }
double_click_cell() { at cell "$panel" $id_rules "$1" "$2" && xdotool click --repeat 2 --delay 60 1; }
# Each click stands a little beside the last one, or two of them would be a double click.
beside=8
click_heading() {
    beside=$((-beside))
    at header "$1" "$2" "$3" && xdotool mousemove_relative -- "$beside" 0 click 1
}
click_header() { click_heading "$panel" $id_rules "$1"; }
click_folder() { at entry "$panel" $id_folders "$1" && xdotool click 1; }
ctrl_double_click_cell() {
    xdotool keydown ctrl
    double_click_cell "$@"
    xdotool keyup ctrl
}
ctrl_click_folder() {
    xdotool keydown ctrl
    click_folder "$1"
    xdotool keyup ctrl
}

# fill TITLE ID TEXT: clicks into a field and replaces what stands there.
fill() {
    click "$1" "$2"
    press Home shift+End
    type_text "$3"
    wait_shows "$3" text "$1" "$2"
}

# set_limits HARD SOFT: fills the Quota Settings dialog that is open, and presses OK.
set_limits() {
    fill 'Quota Settings' $id_hard "$1"
    fill 'Quota Settings' $id_soft "$2"
    click 'Quota Settings' $id_ok
}

# answer TITLE KEY: answers a message box by a key.
answer() {
    press "$2"
    wait_gone "$1"
}

# add_folder FOLDER: types it and presses Enter.
add_folder() {
    click "$panel" $id_folder
    type_text "$1"
    press Return
    wait_for "the folder $1 in view" folder_is_shown "$1"
}
folder_is_shown() { grep -qxF "$1" <<<"$(peek entries "$panel" $id_folders)"; }

# ---- the host ----

# windows_path PATH: as a program reads it.
windows_path() {
    local path=Z:$1
    [ -n "${short_name:-}" ] && path=${path/#"Z:$out"/C:/Quota}
    printf '%s' "${path//\//\\}"
}

# host_start OPTION...: starts the host on $data and waits for its window.
host_start() {
    # A second panel would be looked at in place of this one.
    is_gone "$panel" || fail 'another control panel is on the display'
    # It begins where nothing of this machine is in sight.
    (cd "$WINEPREFIX/drive_c" && exec wine "${launcher[@]}" "$(windows_path "$build/bin/corvane_host.exe")" \
        --data "$(windows_path "$data")" "$@" >>"$out/host.log" 2>&1 </dev/null) &
    host_pid=$!
    wait_window "$panel"
}

# host_ended: waits until the host that was told to close has ended, which it must do with 0.
host_ended() {
    local deadline=$((SECONDS + patience)) code=0
    while kill -0 "$host_pid" 2>/dev/null; do
        [ "$SECONDS" -lt "$deadline" ] || fail 'the host did not end'
        sleep 0.05
    done
    wait "$host_pid" || code=$?
    host_pid=
    expect 'exit code of the host' 0 "$code"
}

host_close() {
    press alt+F4
    host_ended
}

# dump OPTION...: the stored rules as the host prints them.
dump() {
    local text code=0
    text=$(wine "$build/bin/corvane_host.exe" --data "$(windows_path "$data")" --dump "$@" 2>>"$out/host.log" </dev/null) ||
        code=$?
    printf '%s\n' "${text//$'\r'/}"
    return $code
}

# show_files NAME...: prints files of the store as they are.
show_files() {
    local name
    for name; do
        echo "    -- $name"
        sed 's/^/    /' "$data/$name"
    done
}

# stored: the same, one rule a line, sorted, without the heading: account|hard|soft|in use|folder
stored() { dump | sed -n '2,$ { s/   */|/g; s/\([0-9]\)  *\([0-9]\)/\1|\2/g; p }' | sort; }

expect_stored() { expect 'the stored rules' "$1" "$(stored)"; }

# ---- folders to measure ----

made_bytes=0

# make_files FOLDER COUNT SEED: files of varied sizes in a dozen folders below; the same ones each time. The sum of
# their sizes is in made_bytes.
make_files() {
    local i size
    made_bytes=0
    mkdir -p "$1"/{a,b,c}/{p,q,r,s}
    local places=("$1"/{a,b,c}/{p,q,r,s})
    for ((i = 0; i < $2; i++)); do
        size=$(((i * 7919 + $3 * 104729) % 30011 + 1))
        made_bytes=$((made_bytes + size))
        printf '%*s' "$size" '' >"${places[i % 12]}/file$i.dat"
    done
}
