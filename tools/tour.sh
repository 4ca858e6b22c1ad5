#!/bin/bash
# A tour of the sample host: plays the work of an administrator on a real folder tree with real keys and mouse,
# checks and prints what is stored, and leaves a picture of every page, dialog and message.
#   tools/tour.sh BUILD OUT [PART ...]    on the display and the Windows runtime that the caller has selected. The
#                                         parts are the scripts in tools/tour; without any, all of them
set -u
build=$1 out=$2
shift 2
parts=$(dirname "$0")/tour
[ $# -gt 0 ] || set -- page accounts notifications exception_files blocked_extensions administrative_accounts \
    backup_tools choosers
begun=$SECONDS
for part; do
    echo "== ${part//_/ }"
    bash "$parts/$part.sh" "$build" "$out/$part" || exit
done
echo "The tour is done in $((SECONDS - begun)) seconds: what is stored is what was expected. The pictures are in $out"
