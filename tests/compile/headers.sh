#!/usr/bin/env bash
# Every public header by itself, in every language that a host may be written in, with all warnings.
#   tests/compile/headers.sh BUILD OUT
. "$(dirname "$0")/flags.sh"
warnings=(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wundef -Werror -fsyntax-only)
failed=0
compiled=0
try() {
    compiled=$((compiled + 1))
    "$@" 2>"$out/said" || { printf '%s\n' "$*"; cat "$out/said"; failed=1; }
}
for header in "$source"/include/*.h "$build/include/corvane_version.h"; do
    printf '#include <%s>\nint used;\n' "${header##*/}" >"$out/alone.c"
    cp "$out/alone.c" "$out/alone.cpp"
    for standard in c99 c11; do
        try x86_64-w64-mingw32-gcc-posix -std=$standard "${warnings[@]}" -Wstrict-prototypes "${includes[@]}" "$out/alone.c"
        try clang-19 --target=x86_64-w64-mingw32 -std=$standard "${warnings[@]}" -Wstrict-prototypes "${includes[@]}" "$out/alone.c"
        try clang-19 "${microsoft[@]}" -std=$standard "${warnings[@]}" "${includes[@]}" "$out/alone.c"
    done
    for standard in c++11 c++17 c++20; do
        try x86_64-w64-mingw32-g++-posix -std=$standard "${warnings[@]}" "${includes[@]}" "$out/alone.cpp"
        try clang++-19 --target=x86_64-w64-mingw32 -std=$standard "${warnings[@]}" "${includes[@]}" "$out/alone.cpp"
        try clang++-19 "${microsoft[@]}" -std=$standard "${warnings[@]}" "${includes[@]}" "$out/alone.cpp"
    done
done
[ "$compiled" -ge 60 ] || { echo "only $compiled were compiled"; failed=1; }

printf '#include <corvane.h>\n' >"$out/narrow.c"
if clang-19 --target=i686-w64-mingw32 -isystem "$mingw" "${includes[@]}" -fsyntax-only "$out/narrow.c" 2>"$out/said"; then
    echo 'a 32-bit program is not refused'
    failed=1
elif ! grep -q 'corvane is for 64-bit programs' "$out/said"; then
    cat "$out/said"
    failed=1
fi
exit $failed
