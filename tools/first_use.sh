#!/usr/bin/env bash
# Measures what somebody waits for who has just got the project: in a fresh clone of the last commit, with the packages
# installed and no compiler cache. Prints a table, with the work that was done in each time and the load of the machine
# before it: beside other work the first column means little.
#   tools/first_use.sh [FOLDER]    the clone; made anew
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/wine.sh
folder=${1:-build/first_use}
rm -rf "$folder"
git clone -q . "$folder"
cd "$folder"
unset CMAKE_C_COMPILER_LAUNCHER CMAKE_CXX_COMPILER_LAUNCHER
log=$PWD/first_use.log

Xvfb -displayfd 3 -screen 0 1280x960x24 -nolisten tcp 3>"$log.display" >/dev/null 2>&1 &
screen=$!
trap 'kill $screen' EXIT
until [ -s "$log.display" ]; do sleep 0.05; done
DISPLAY=:$(<"$log.display")
export DISPLAY

# Until the panel's window is there; then it is closed by ending what has opened it.
first_window() {
    local run
    ./run >>"$log" 2>&1 &
    run=$!
    until xdotool search --onlyvisible --name "$title" >/dev/null 2>&1; do
        kill -0 $run 2>/dev/null || return 1
        sleep 0.1
    done
    date +%s.%N >"$log.end"
    kill $run
    wait $run || true
}
all() { "$@" >>"$log" 2>&1; }

# measure WHAT COMMAND...
measure() {
    local what=$1 load begin
    shift
    load=$(cut -d ' ' -f 1 /proc/loadavg)
    rm -f "$log.end"
    begin=$(date +%s.%N)
    TIMEFORMAT='%U %S'
    { time "$@" || what="$what (failed; see $log)"; } 2>"$log.times"
    [ -e "$log.end" ] || date +%s.%N >"$log.end"
    awk -v what="$what" -v begin="$begin" -v end="$(<"$log.end")" -v load="$load" \
        '{ printf "| %s | %.0f s | %.0f s | %s |\n", what, end - begin, $1 + $2, load }' < <(tail -n 1 "$log.times")
}
title='Quota Control Panel'
echo "| with $(nproc) processors | until it was done | processor time | load before |"
echo '| --- | --- | --- | --- |'
measure './run in a fresh clone, to the first window' first_window
measure './run again' first_window
rm -rf build
unset DISPLAY
measure './test in a fresh clone' all ./test
measure './test --quick after it' all ./test --quick
