#!/usr/bin/env bash
# The tour: all stories of tests/system side by side, each with real keys and mouse on a display of its own, and with a
# picture of every page, dialog and message. The display loses a key now and then; a story that got stuck by that is
# played once more.
#   tools/tour.sh BUILD OUT [STORY ...]    the pictures are in OUT/STORY
set -euo pipefail
build=$1
mkdir -p "$2"
out=$(cd "$2" && pwd)
shift 2
IFS='|'
CORVANE_PICTURES=$out ctest --test-dir "$build/tests/system" -j "$(($(nproc) + 1))" --output-on-failure --repeat until-pass:2 \
    -R "^system\.(${*:-.*})\$" </dev/null
stored=$build/tests/system/stories
for file in main_job/data/rules account_rule/data/rules notifications/data/notifications exception_files/data/excludes \
    blocked_extensions/data/blocked-extensions administrative_accounts/data/administrative-accounts backup_tools/data/backup-tools; do
    if [ -e "$stored/$file.txt" ]; then
        echo "== Stored by the story ${file%%/*}: ${file##*/}.txt"
        tr -d '\r' <"$stored/$file.txt"
    fi
done
echo "The pictures are in $out"
