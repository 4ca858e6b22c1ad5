#!/usr/bin/env bash
# The benches compile. They are built when they are run.
#   tests/compile/benches.sh BUILD OUT
. "$(dirname "$0")/flags.sh"
# As they would be compiled, without writing anything.
ninja -C "$build" -t commands benches |
    grep -F -e " -c $source/bench/" -e " -c '$source/bench/" |
    sed 's/ -MD -MT .* -c / -fsyntax-only /' >"$out/commands"
[ "$(wc -l <"$out/commands")" -gt 20 ] || { echo 'hardly anything is compiled'; exit 1; }
cd "$build"
tr '\n' '\0' <"$out/commands" | xargs -0 -P "$(nproc)" -n 1 bash -c
