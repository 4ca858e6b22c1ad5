#!/usr/bin/env bash
# Builds what ships once more from a copy of the sources in another folder: the same bytes must come out.
#   tests/package/same_bytes.sh BUILD OUT
. "$(dirname "$0")/lib.sh"
copy_sources "$2/sources of another one"
cd "$2/sources of another one"
cmake --preset windows >../log 2>&1 || { cat ../log; exit 1; }
cmake --build --preset windows --target corvane_host -- --quiet >../log 2>&1 || { cat ../log; exit 1; }
for binary in corvane.dll lornix.dll corvane_host.exe corvane.pdb lornix.pdb corvane_host.pdb; do
    cmp "build/windows/bin/$binary" "$build/bin/$binary" || wrong "$binary: other bytes"
done
exit $failed
