# shellcheck shell=bash
# What the stories share. Each sources it, calls
#   story_begin BUILD OUT FOLDER...    BUILD: folder of the build; OUT: folder for data, pictures and logs, emptied first;
#                                      then an empty data folder, and a tree with one small folder of files per name
# and drives the panel as a person does, by keys and mouse, with a look at what stands in its windows. OUT is C:\Quota for
# the programs that are driven. There is no display, unless CORVANE_PICTURES names a folder for pictures: then there is one
# of the story's own, and its keyboard and mouse are used.
#
# Nothing waits for a guessed time: every wait is for a state, ends as soon as it is there, and fails after
# $patience seconds with the name of the step.

set -u -o pipefail
steps=$(dirname "${BASH_SOURCE[0]}")/steps
. "$steps/../../../tools/wine.sh"
. "$steps/look.sh"
. "$steps/hands.sh"
. "$steps/panel.sh"
. "$steps/dialogs.sh"
. "$steps/samples.sh"

patience=120    # far more than a machine needs that does twenty other things
current_step=start
launcher=()    # a program and its options, which starts the host

story_begin() {
    build=$(cd "$1" && pwd) || exit 2
    bin=$build/bin    # where the panel that is started lies
    mkdir -p "$2" || exit 2
    out=$(cd "$2" && pwd)
    shift 2
    prefix=$wine_root/story-${out##*/}
    lock_prefix "$prefix"
    trap story_end EXIT
    trap 'exit 130' HUP INT TERM
    rm -rf "$out"
    mkdir "$out" || exit 2
    data=$out/data
    pictures=${CORVANE_PICTURES:+$CORVANE_PICTURES/${out##*/}}
    rm -rf "$pictures"
    kind=quiet
    # A display loses a key now and then, and then nothing comes.
    [ -z "$pictures" ] || { kind=screen && patience=30; }
    wine_use $kind "$prefix"
    # Programs see the output folder under a short name, the same on every machine.
    ln -s "$out" "$WINEPREFIX/drive_c/Quota"
    [ $kind = quiet ] || display_start
    peek_start

    tree=$(windows_path "$out/tree")
    local folder seed=0
    for folder; do
        seed=$((seed + 1))
        make_files "$out/tree/$folder" 40 "$seed"
    done
}

story_end() {
    stop_all
    rm -rf "$prefix" "$prefix.lock"
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
    echo "In front: $(peek foreground)" >&2
    [ $kind = screen ] && picture "$out/failed.png" && echo "Picture of the screen: $out/failed.png" >&2
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
        breathe
    done
}

# Between two looks, without a process of its own.
exec {nothing_comes}<> <(:)
breathe() { read -r -t 0.02 -u "$nothing_comes" || true; }
