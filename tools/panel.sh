#!/usr/bin/env bash
# The sample control panel on a sample folder tree, for a person at the display. Rules that were applied are there
# again at the next start, and are printed when the panel is closed.
#   tools/panel.sh BUILD OUT    with the Windows runtime that the caller has selected
steps=$(dirname "$0")/../tests/system/steps
. "$steps/panel.sh"
. "$steps/samples.sh"
build=$(cd "$1" && pwd)
mkdir -p "$2"
out=$(cd "$2" && pwd)
data=$out/data
ln -sfn "$out" "$WINEPREFIX/drive_c/Quota"

if [ ! -e "$out/tree/complete" ]; then
    echo "Making a folder tree, and accounts to choose from"
    make_files "$out/tree/Projects" 1900 1
    make_files "$out/tree/Users" 1200 2
    make_files "$out/tree/Media" 600 3
    mkdir -p "$out/tree/Archive"
    write_accounts 500
    touch "$out/tree/complete"
fi

folders=()
for folder in Projects Users Media Archive; do
    folders+=(--folder "$(windows_path "$out/tree/$folder")")
done
echo "The control panel is open; close it to end."
code=0
wine "$build/bin/corvane_host.exe" --data "$(windows_path "$data")" "${folders[@]}" </dev/null >"$out/host.log" 2>&1 || code=$?
dump
exit $code
