#!/usr/bin/env bash
# The sources as the Microsoft compiler's ABI and language mode take them, with the warnings that its /W4 has a word for.
#   tests/compile/microsoft.sh BUILD OUT
. "$(dirname "$0")/flags.sh"
library=/usr/lib/llvm-19/include/c++/v1
# The library's headers come before the runtime's, which they wrap.
flags=(-nostdinc++ -isystem "$library" "${microsoft[@]}" -std=c++20 -D_LIBCPP_NO_VCRUNTIME "${includes[@]}"
    -DUNICODE -D_UNICODE -DWIN32_LEAN_AND_MEAN -DNOMINMAX -D_WIN32_WINNT=0x0601 -DCORVANE_BUILDING -DLORNIX_BUILDING
    -Wall -Wextra -Wconversion -Wsign-conversion -ferror-limit=0)
printf '#include <%s>\n' windows.h commctrl.h algorithm functional map memory optional set string unordered_map vector \
    >"$out/common.h"
clang++-19 "${flags[@]}" -x c++-header "$out/common.h" -o "$out/common.pch"
export out
# What only the stand-in for the platform's own header has against it does not count.
compile() {
    clang++-19 "${@:2}" -include-pch "$out/common.pch" -fsyntax-only "$1" 2>&1 |
        grep -E '(error|warning): ' | grep -v "^/usr/x86_64-w64-mingw32/include/shobjidl.h:" | sed "s,^,$1: ," || true
    echo "compiled $1"
}
export -f compile
cd "$source"
rooms=(compiler frame quota accounts files processes policies shell lornix)
alone=$(grep '^[^#]' tests/compile/alone.txt)
# The files of a room as one, which takes a third of the time; each by itself is what all other builds do.
for room in "${rooms[@]}"; do
    find "$room" -name '*.cpp' | sort | grep -vxF "$alone" | sed 's/.*/#include "&"/' >"$out/$room.cpp"
    echo "$out/$room.cpp"
done >"$out/whole"
cat "$out/whole" - <<<"$alone" |
    xargs -P "$(nproc)" -I{} bash -c 'compile "$@"' compile {} "${flags[@]}" >"$out/said"
! grep -vE '^compiled ' "$out/said" || exit 1
[ "$(xargs -I{} cat {} <"$out/whole" | wc -l)" -gt 80 ] || { echo 'hardly anything was compiled'; exit 1; }
