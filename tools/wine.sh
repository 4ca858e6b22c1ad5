# The Windows runtime for tests and for the sample host on Linux. Sourced by ./run, ./test and ./bench/run.
#
# Prefixes live in the build folder: a template is made once, and each kind of use gets its own copy of it.
#   quiet    no display at all: dialogs open, run and take messages without an X server
#   screen   on an X display, frames drawn by the runtime itself, so that pictures look like Windows
#   desktop  on a person's own display, among its other windows

wine_root=$PWD/build/wine
# The key to a person's display lies in the home folder, which the runtime does not get to see.
if [ -n "${DISPLAY:-}" ]; then
    wine_authority=${XAUTHORITY:-${HOME:-}/.Xauthority}
    if [ -e "$wine_authority" ]; then
        export XAUTHORITY=$wine_authority
    fi
fi
unset LIBRARY_PATH CPATH    # the cross linker would take host libraries from them
export WINEARCH=win64 WINEDEBUG=-all
# Neither the add-on installers nor the crash dialog may pop up; a crash then ends the process at once.
export WINEDLLOVERRIDES='mscoree,mshtml,winemenubuilder.exe,winedbg.exe='

# Makes the template when it is missing.
wine_template() {
    [ -e "$wine_root/template/complete" ] && return 0
    rm -rf "$wine_root"
    mkdir -p "$wine_root/home"
    echo "Preparing the Windows runtime (once)"
    (
        export WINEPREFIX=$wine_root/template HOME=$wine_root/home
        unset DISPLAY
        wineboot -i </dev/null >"$wine_root/wineboot.log" 2>&1
        wineserver -w
        # Debian's runtime does not look for its own bitmap fonts, and dialogs take their size from them.
        cp /usr/share/wine/fonts/*.ttf /usr/share/wine/fonts/*.fon "$WINEPREFIX/drive_c/windows/Fonts/"
        touch "$WINEPREFIX/complete"
    )
}

# Makes a prefix of a kind when it is missing, and selects it.
wine_use() {
    local kind=$1
    wine_template
    export WINEPREFIX=$wine_root/$kind HOME=$wine_root/home
    if [ ! -e "$WINEPREFIX/complete" ]; then
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
        } >"$wine_root/$kind.reg"
        wine regedit /S "Z:$(printf '%s' "$wine_root/$kind.reg" | tr / '\\')" </dev/null >/dev/null 2>&1
        wineserver -k || true
        wineserver -w
        touch "$WINEPREFIX/complete"
    fi
}

# Starts the server and its services with nothing inherited: a pipe handed to them would never close.
wine_start() {
    wineserver -p >/dev/null 2>&1
    wine cmd /c exit </dev/null >/dev/null 2>&1
    # The desktop goes a second after the last program with windows, and would be started anew, with the pipes of
    # whoever comes next. Where nobody sees it, a program that stays keeps it.
    case ${WINEPREFIX:-} in
    */quiet) wine notepad </dev/null >/dev/null 2>&1 & ;;
    esac
}

# Ends everything that runs in the selected prefix; never anything of a prefix that is not ours.
wine_stop() {
    case ${WINEPREFIX:-} in
    "$wine_root"/*) wineserver -k >/dev/null 2>&1 || true ;;
    esac
}

# Starts a virtual display of its own; sets DISPLAY and display_pid. Ended by display_stop.
display_start() {
    local ready
    ready=$(mktemp)
    Xvfb -displayfd 3 -screen 0 1280x960x24 -nolisten tcp 3>"$ready" >/dev/null 2>&1 </dev/null &
    display_pid=$!
    until [ -s "$ready" ]; do
        kill -0 "$display_pid" 2>/dev/null || { echo "The virtual display did not start" >&2; rm -f "$ready"; return 1; }
        sleep 0.05
    done
    DISPLAY=:$(cat "$ready")
    export DISPLAY
    rm -f "$ready"
}

display_stop() {
    [ -n "${display_pid:-}" ] && kill "$display_pid" 2>/dev/null
    display_pid=
}
