#!/usr/bin/env bash
# The benches compile. They are built when they are run.
#   tests/compile/benches.sh BUILD OUT
. "$(dirname "$0")/flags.sh"
# As they would be compiled, without writing anything.
ninja -C "$build" -t commands benches |
    sed -nE "s,^(.*) -MD -MT .* -c ($source/bench/.*\\.cpp)\$,\\1 -fsyntax-only \\2,p" >"$out/commands"
[ "$(wc -l <"$out/commands")" -gt 20 ] || { echo 'hardly anything is compiled'; exit 1; }
cd "$build"
tr '\n' '\0' <"$out/commands" | xargs -0 -P "$(nproc)" -n 1 bash -c
