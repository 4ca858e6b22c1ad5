# shellcheck shell=bash
# What ./run, ./test and ./bench/run share: errors that are told, one user at a time of what cannot be shared, and the
# Windows runtime for tests and for the sample host on Linux. Sourced with the script's own arguments in place.
#
# Prefixes live in the build folder: a template is made once, and each kind of use gets its own copy of it.
#   quiet    no display at all: dialogs open, run and take messages without an X server
#   screen   on an X display, frames drawn by the runtime itself, so that pictures look like Windows
#   desktop  on a person's own display, among its other windows
# Scripts that use different kinds run side by side; of one kind there is one user at a time.

wine_root=$PWD/build/wine
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
set -E
trap 'echo "$0: ended at ${BASH_SOURCE[0]##*/}, line $LINENO, with code $?: $BASH_COMMAND" >&2' ERR

# ---- one user at a time ----

# A lock is kept by a helper that dies with this script, however that ends. The script itself does not keep the file
# open: a server that survives it would inherit the lock.
declare -A lock_files=() lock_helpers=()

# lock_take NAME FILE [SECONDS]: fails when another script has kept it for so long; without a number, waits.
# What is started from here on is marked as started under the lock.
lock_take() {
    local name=$1 file=$2 seconds=${3:-} lock
    mkdir -p "${file%/*}"
    { exec {lock}>>"$file"; } 2>/dev/null || die "The lock $file cannot be opened: whose is it?"
    if ! flock ${seconds:+-w "$seconds"} "$lock"; then
        exec {lock}>&-
        return 1
    fi
    # The helper ends by nothing but the end of this script. It looks whether that came before it could ask for it.
    (
        trap '' HUP INT TERM
        # shellcheck disable=SC2016 # for the inner shell
        exec env -i setpriv --pdeathsig KILL sh -c '[ "$PPID" = "$1" ] && exec sleep infinity' sh "$$"
    ) </dev/null >/dev/null 2>&1 &
    lock_helpers[$name]=$!
    disown
    exec {lock}>&-
    lock_files[$name]=$file
    printf '%s (process %d, since %(%H:%M:%S)T)\n' "$wine_command" "$$" -1 >"$file"
    # Whatever an earlier script started and could not stop would work in the same folders.
    lock_stop_started "$name"
    export "CORVANE_LOCK_$name=$file"
}

# lock_wait NAME FILE WHAT: waits for as long as it takes, and says for whom.
lock_wait() {
    lock_take "$1" "$2" 1 && return 0
    echo "Waiting until $(<"$2") is done with $3" >&2
    lock_take "$1" "$2"
}

lock_drop() {
    kill -KILL "${lock_helpers[$1]}" 2>/dev/null || true
    unset "lock_helpers[$1]" "lock_files[$1]" "CORVANE_LOCK_$1"
}

# lock_stop_started NAME: ends every program that carries the mark of the lock, of this script or of an earlier one.
lock_stop_started() {
    local mark=CORVANE_LOCK_$1 signal=TERM round found
    for ((round = 0; round < 100; round++)); do
        # The one that looks does not count.
        mapfile -t found < <(cd /proc && exec env -u "$mark" grep -lzxF "$mark=${lock_files[$1]}" [0-9]*/environ 2>/dev/null)
        [ ${#found[@]} -gt 0 ] || return 0
        [ "$round" -lt 50 ] || signal=KILL
        kill -"$signal" "${found[@]%%/*}" 2>/dev/null || true
        sleep 0.1
    done
    echo "$0: could not end the processes ${found[*]%%/*}" >&2
}

# build_preset PRESET [ARGUMENT OF cmake --build ...]: ninja has no lock of its own. Somebody who watches sees how far it is.
build_preset() {
    local preset=$1 ninja=(--quiet)
    shift
    lock_wait "$preset" "$PWD/build/$preset.lock" "the build in build/$preset"
    [ ! -t 1 ] || ninja=()
    # Once it is set up, the build itself sees what changed in how it is set up, but for the presets.
    [ "build/$preset/build.ninja" -nt CMakePresets.json ] || cmake --preset "$preset" >/dev/null ||
        die "The build folder build/$preset could not be set up."
    NINJA_STATUS='   %p ' cmake --build --preset "$preset" "$@" -- "${ninja[@]}" ||
        die "The build of $preset failed; the reason stands above."
    lock_drop "$preset"
}

# ---- the runtime ----

# wine_lock KIND...: from here on the prefixes of these kinds are this script's own.
wine_lock() {
    local kind
    for kind; do
        # A script that has just ended may take a moment to let go.
        lock_take "$kind" "$wine_root/$kind.lock" 2 ||
            die "The Windows runtime \"$kind\" of this checkout is in use by $(<"$wine_root/$kind.lock"). Nothing was started."
        wine_stop "$kind"
    done
}

# Makes the template when it is missing.
wine_template() {
    local template=$wine_root/template aside
    [ -e "$template/complete" ] && return 0
    lock_wait template "$template.lock" "preparing the Windows runtime"
    if [ ! -e "$template/complete" ]; then
        wine_stop template
        rm -rf "$template"
        mkdir -p "$wine_root/home"
        echo "Preparing the Windows runtime (once)" >&2
        aside=(env -u DISPLAY "WINEPREFIX=$template" "HOME=$wine_root/home")
        "${aside[@]}" wineboot -i </dev/null >"$wine_root/wineboot.log" 2>&1 ||
            die "The Windows runtime could not be prepared; see $wine_root/wineboot.log"
        "${aside[@]}" wineserver -w
        # Debian's runtime does not look for its own bitmap fonts, and dialogs take their size from them.
        cp /usr/share/wine/fonts/*.ttf /usr/share/wine/fonts/*.fon "$template/drive_c/windows/Fonts/"
        touch "$template/complete"
    fi
    lock_drop template
}

# Makes the prefix of a kind when it is missing or older than the template, and selects it. The kind is locked.
wine_use() {
    local kind=$1 settings=$wine_root/$1.reg
    wine_template
    export WINEPREFIX=$wine_root/$kind HOME=$wine_root/home
    [ "$WINEPREFIX/complete" -nt "$wine_root/template/complete" ] && return 0
    rm -rf "$WINEPREFIX"
    # Files are shared with the template, except the registry, which is written in place.
    cp -al "$wine_root/template" "$WINEPREFIX"
    rm -f "$WINEPREFIX/complete"
    cp --remove-destination "$wine_root"/template/*.reg "$WINEPREFIX/"
    {
        echo 'REGEDIT4'
        echo
        printf '[HKEY_CURRENT_USER\\Software\\Wine\\Drivers]\n"Audio"=""\n'
        case $kind in
        quiet) printf '"Graphics"="null"\n' ;;
        screen) printf '\n[HKEY_CURRENT_USER\\Software\\Wine\\X11 Driver]\n"Managed"="N"\n' ;;
        esac
    } >"$settings"
    wine regedit /S "Z:${settings//\//\\}" </dev/null >"$wine_root/$kind.log" 2>&1 ||
        die "The Windows runtime \"$kind\" could not be set up; see $wine_root/$kind.log"
    wine_stop "$kind"
    wineserver -w
    touch "$WINEPREFIX/complete"
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

# wine_stop KIND: ends everything that runs in the prefix of a kind, which this script has locked.
wine_stop() {
    [ ! -d "$wine_root/$1" ] || WINEPREFIX=$wine_root/$1 wineserver -k >/dev/null 2>&1 || true
}

# Starts a virtual display of its own; sets DISPLAY. It ends with what else this script has started.
display_start() {
    local ready pid deadline=$((SECONDS + 60))
    ready=$(mktemp)
    Xvfb -displayfd 3 -screen 0 1280x960x24 -nolisten tcp 3>"$ready" >/dev/null 2>&1 </dev/null &
    pid=$!
    disown
    until [ -s "$ready" ]; do
        if [ "$SECONDS" -ge "$deadline" ] || ! kill -0 "$pid" 2>/dev/null; then
            rm -f "$ready"
            die "The virtual display did not start."
        fi
        sleep 0.05
    done
    DISPLAY=:$(<"$ready")
    export DISPLAY
    rm -f "$ready"
}

# Ends what this script has started, and nothing else. For its end, however it comes.
stop_all() {
    local name
    set +e
    trap - ERR
    trap '' HUP INT TERM    # a signal that comes twice would end it half way
    for name in "${!lock_files[@]}"; do
        case $name in quiet | screen | desktop | template) wine_stop "$name" ;; esac
    done
    for name in "${!lock_files[@]}"; do
        lock_stop_started "$name"
        lock_drop "$name"
    done
}
