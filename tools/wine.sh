# shellcheck shell=bash
# What the scripts share: errors that are told, one user at a time of what cannot be shared, and the Windows runtime for
# tests and for the sample host on Linux. Sourced with the script's own arguments in place.
#
# A template of the runtime is made once in build/wine; each use gets a fresh copy, a prefix, with the settings of its kind:
#   quiet    no display at all: dialogs open, run and take messages without an X server
#   screen   on an X display, frames drawn by the runtime itself, so that pictures look like Windows
#   desktop  on a person's own display, among its other windows
# Whatever is started in a prefix ends with it, and so does the virtual display that belongs to it.

checkout=$(cd "${BASH_SOURCE[0]%/*}/.." && pwd)
wine_root=$checkout/build/wine
wine_command=$0${*:+ $*}
# The key to a person's display lies in the home folder, which the runtime does not get to see.
if [ -n "${DISPLAY:-}" ]; then
    wine_authority=${XAUTHORITY:-${HOME:-}/.Xauthority}
    if [ -e "$wine_authority" ]; then
        export XAUTHORITY=$wine_authority
    fi
fi
unset WINEPREFIX            # one from outside is not ours, to use or to stop
unset LIBRARY_PATH CPATH    # the cross linker would take host libraries from them
export WINEARCH=win64 WINEDEBUG=-all
# File names of any alphabet, wherever the scripts are called from: a service or a bare login often has no locale, and
# the runtime then refuses what is not ASCII.
export LC_ALL=C.UTF-8
# Neither the add-on installers nor the crash dialog may pop up; a crash then ends the process at once.
export WINEDLLOVERRIDES='mscoree,mshtml,winemenubuilder.exe,winedbg.exe='

# ---- errors ----

die() {
    echo "$0: $*" >&2
    exit 1
}

# What no sentence was written for is told as well, wherever it fails.
tell_errors() {
    set -E
    trap 'echo "$0: ended at ${BASH_SOURCE[0]##*/}, line $LINENO, with code $?: $BASH_COMMAND" >&2' ERR
}

# ---- one user at a time ----

# lock FILE [SECONDS]: fails when somebody else keeps it for so long; without a number, waits. Whatever is started from
# here on inherits it: it is free again when the last of them has ended.
lock() {
    local file=$1 seconds=${2:-} open
    mkdir -p "${file%/*}"
    { exec {open}>>"$file"; } 2>/dev/null || die "The lock $file cannot be opened: whose is it?"
    if ! flock ${seconds:+-w "$seconds"} "$open"; then
        exec {open}>&-
        return 1
    fi
    printf '%s (process %d, since %(%H:%M:%S)T)\n' "$wine_command" "$$" -1 >"$file"
}

# lock_wait FILE WHAT: waits for as long as it takes, and says for whom.
lock_wait() {
    lock "$1" 1 && return 0
    echo "Waiting until $(<"$1") is done with $2" >&2
    lock "$1"
}

# lock_prefix PREFIX: from here on the prefix is this script's own.
lock_prefix() {
    # A script that has just ended may take a moment to let go.
    lock "$1.lock" 2 || { stop_left "$1" && lock "$1.lock" 2; } ||
        die "The Windows runtime $1 is in use by $(<"$1.lock"). Nothing was started."
    prefix_stop "$1"
}

# stop_left PREFIX: ends what runs in it when the script that has locked it is gone without doing so.
stop_left() {
    [[ $(<"$1.lock") =~ \(process\ ([0-9]+) ]] && [ ! -e "/proc/${BASH_REMATCH[1]}" ] && prefix_stop "$1"
}

# build_preset PRESET [ARGUMENT OF cmake --build ...]: ninja has no lock of its own. Somebody who watches sees how far it is.
build_preset() {
    (
        preset=$1 ninja=(--quiet)
        shift
        lock_wait "$checkout/build/$preset.lock" "the build in build/$preset"
        [ ! -t 1 ] || ninja=()
        # Once it is set up, the build itself sees what changed in how it is set up, but for the presets.
        [ "build/$preset/build.ninja" -nt CMakePresets.json ] || cmake --preset "$preset" >/dev/null ||
            die "The build folder build/$preset could not be set up."
        NINJA_STATUS='   %p ' cmake --build --preset "$preset" "$@" -- "${ninja[@]}" ||
            die "The build of $preset failed; the reason stands above."
    ) || exit
}

# ---- the runtime ----

wine_used=()    # the prefixes that this script has taken

# wine_lock KIND...: from here on the prefixes of these kinds are this script's own.
wine_lock() {
    local kind
    for kind; do
        lock_prefix "$wine_root/$kind"
    done
}

# Makes the template when it is missing.
wine_template() (
    template=$wine_root/template
    [ -e "$template/complete" ] && exit
    lock_wait "$template.lock" "preparing the Windows runtime"
    [ -e "$template/complete" ] && exit
    prefix_stop "$template"
    rm -rf "$template"
    mkdir -p "$wine_root/home"
    echo "Preparing the Windows runtime (once)" >&2
    unset DISPLAY
    export WINEPREFIX=$template HOME=$wine_root/home
    wineboot -i </dev/null >"$wine_root/wineboot.log" 2>&1 ||
        die "The Windows runtime could not be prepared; see $wine_root/wineboot.log"
    wineserver -w
    # Debian's runtime does not look for its own bitmap fonts, and dialogs take their size from them.
    cp /usr/share/wine/fonts/*.ttf /usr/share/wine/fonts/*.fon "$template/drive_c/windows/Fonts/"
    touch "$template/complete"
)

# wine_use KIND [PREFIX]: makes the prefix anew and selects it. It has been locked; without a name it is the one of its kind.
wine_use() {
    wine_template || exit
    export WINEPREFIX=${2:-$wine_root/$1} HOME=$wine_root/home
    wine_used+=("$WINEPREFIX")
    rm -rf "$WINEPREFIX"
    # Files are shared with the template, except the registry, which is written in place.
    cp -al "$wine_root/template" "$WINEPREFIX"
    cp --remove-destination "$wine_root"/template/*.reg "$WINEPREFIX/"
    {
        # shellcheck disable=SC1003 # the registry's own way to write a backslash
        printf '\n[Software\\\\Wine\\\\Drivers]\n"Audio"=""\n'
        case $1 in
        quiet) printf '"Graphics"="null"\n' ;;
        screen)
            printf '\n[Software\\\\Wine\\\\Explorer]\n"Desktop"="one"\n'
            printf '\n[Software\\\\Wine\\\\Explorer\\\\Desktops]\n"one"="1280x960"\n'
            ;;
        esac
    } >>"$WINEPREFIX/user.reg"
}

# Starts the server and its services with nothing inherited: a pipe handed to them would never close.
wine_start() {
    local log=$WINEPREFIX.log
    { wineserver -p && wine cmd /c exit; } </dev/null >"$log" 2>&1 || die "The Windows runtime did not start; see $log"
    # The desktop goes a second after the last program with windows, and would be started anew, with the pipes of
    # whoever comes next. Where nobody sees it, a program that stays keeps it.
    case $WINEPREFIX in
    */quiet)
        wine notepad </dev/null >/dev/null 2>&1 &
        disown
        ;;
    esac
}

# Starts a virtual display for the selected prefix; sets DISPLAY.
display_start() {
    local ready=$WINEPREFIX.ready pid deadline=$((SECONDS + 60))
    : >"$ready"
    Xvfb -displayfd 3 -screen 0 1280x960x24 -nolisten tcp 3>"$ready" >/dev/null 2>&1 </dev/null &
    pid=$!
    disown
    echo "$pid" >"$WINEPREFIX.display"
    until [ -s "$ready" ]; do
        [ "$SECONDS" -lt "$deadline" ] && kill -0 "$pid" 2>/dev/null || die "The virtual display did not start."
        sleep 0.02
    done
    DISPLAY=:$(<"$ready")
    export DISPLAY
    rm -f "$ready"
}

# prefix_stop PREFIX: ends everything that runs in it, and its display.
prefix_stop() {
    local pid
    [ ! -d "$1" ] || WINEPREFIX=$1 wineserver -k >/dev/null 2>&1 || true
    [ -e "$1.display" ] || return 0
    pid=$(<"$1.display")
    # The number may have gone to another program.
    if [ "$(cat "/proc/$pid/comm" 2>/dev/null)" = Xvfb ]; then
        kill "$pid" 2>/dev/null || true
    fi
    rm -f "$1.display"
}

# Ends what this script has started, and nothing else. For its end, however it comes.
stop_all() {
    local prefix
    set +e
    trap - ERR
    trap '' HUP INT TERM    # a signal that comes twice would end it half way
    for prefix in "${wine_used[@]}"; do
        prefix_stop "$prefix"
    done
    # Stories end what they have started, unless they are killed themselves.
    for prefix in "$wine_root"/story-*.lock; do
        [ ! -e "$prefix" ] || stop_left "${prefix%.lock}"
    done
}
