# shellcheck shell=bash
# Looking at what stands in the windows.

# peek stays and answers; what is asked and answered is told in tests/system/peek/main.cpp.
peek_start() {
    # One that the runtime loses before it says a word is started once more.
    coproc PEEK {
        exec 2>>"$out/peek.log"
        wine "$build/tests/system/peek.exe" || [ -s "$out/peek.log" ] || exec wine "$build/tests/system/peek.exe"
    }
    # Pipelines and substitutions ask as well.
    exec {peek_ask}>&"${PEEK[1]}" {peek_answer}<&"${PEEK[0]}"
    wait_for 'the desktop' peek windows
}

peek() {
    local IFS=$'\t' line text=
    printf '%s\n' "$*" >&"$peek_ask"
    # The whole answer is taken before any of it is handed on: the reader may not want all.
    while IFS= read -r -t "$patience" -u "$peek_answer" line; do
        if [[ $line = $'\4'* ]]; then
            printf '%s' "$text"
            return "${line#?}"
        fi
        text+=$line$'\n'
    done
    echo "peek does not answer: $*" >&2
    return 3
}

# The runtime decides which of a program's windows gets the keys; the display only knows the program.
is_in_front() { shows yes front "$1"; }
is_gone() {
    local windows
    windows=$(peek windows) && ! grep -q "^$1" <<<"$windows"
}
shows() { [ "$(peek "${@:2}")" = "$1" ]; }

wait_window() { wait_for "the window \"$1\"" is_in_front "$1"; }
wait_gone() { wait_for "the end of the window \"$1\"" is_gone "$1"; }

# wait_shows WANTED REQUEST...: until a look gives this text.
wait_shows() { wait_for "\"$1\" in ${*:2}" shows "$@"; }

# wait_focus TITLE CONTROL
wait_focus() { wait_shows yes focus "$1" "$2"; }

wait_title() { wait_for "the title \"$1\"" has_title "$1"; }
has_title() { grep -qxF "$1" <<<"$(peek windows)"; }

# picture FILE: what all windows cover together.
picture() {
    local area
    read -r -a area <<<"$(peek extent)" || return
    import -window root -crop "${area[2]}x${area[3]}+${area[0]}+${area[1]}" +repage "$1"
}

# shot NAME: a picture under a speaking name, when pictures are wanted, once two in a row are the same: then all is
# painted.
shots=0
shot() {
    [ -n "$pictures" ] || return 0
    local file before='' now=''
    mkdir -p "$pictures"
    shots=$((shots + 1))
    file=$pictures/$(printf '%02d' "$shots")-$1.png
    shot_settled() {
        before=$now
        picture "$file" || return
        now=$(import -window root rgb:- | cksum)
        [ "$before" = "$now" ]
    }
    wait_for "a settled picture of $1" shot_settled
}
