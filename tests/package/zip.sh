#!/usr/bin/env bash
# Packs, unpacks somewhere else, builds the examples from the package alone with each compiler, and runs them.
#   tests/package/zip.sh BUILD OUT    on the Windows runtime that the caller has selected
. "$(dirname "$0")/lib.sh"
out=$2
rm -rf "$out"
mkdir -p "$out"
out=$(cd "$out" && pwd)
cd "$source"
zip=$(./package --built)
[ -f "$zip" ] || { wrong "no package: $zip"; exit 1; }
zip=$source/$zip
mkdir "$out/handed out"
(cd "$out/handed out" && cmake -E tar xf "$zip")
package=$(echo "$out/handed out"/corvane-*)
[ -d "$package" ] || { wrong 'the package holds no folder of its own'; exit 1; }

for file in bin/{corvane,lornix}.{dll,pdb} bin/corvane_host.{exe,pdb} include/{corvane,corvane_types,corvane_version,lornix_host}.h \
    lib/{corvane,lornix}.lib lib/lib{corvane,lornix}.dll.a docs/integrating.md README.md CHANGELOG.md; do
    [ -s "$package/$file" ] || wrong "not in the package: $file"
done
! grep -rlF "$source" "$package" || wrong 'a path of this machine is in the package'
for header in "$source"/include/*.h; do
    [ -e "$package/include/${header##*/}" ] || wrong "not in the package: ${header##*/}"
done
cp -r "$package/examples" "$out/examples" # read from another folder than the package's

run() {
    local program=$1 code=0
    shift
    "$source/tools/windows_program" "$program" "$@" 2>"$out/run.log" </dev/null | tr -d '\r' || code=$?
    # What stands in $( ) counts by what it says alone.
    [ "$code" = 0 ] || { wrong "$program: code $code"; cat "$out/run.log" >&2; echo "code $code"; }
}
is() { [ "$2" = "$3" ] || wrong "$1: \"$3\" and not \"$2\""; }
windows() { printf 'Z:%s' "${1//\//\\}"; }

# Says how many rules the smallest panel shows; with a word, drops the first one and applies that. Found by its class, without
# a look at the desktop that other tests share: each of their windows would have to answer.
cat >"$out/at_the_panel.c" <<'C'
#include <windows.h>
#include <commctrl.h>
#include <stdio.h>
int main(int words)
{
    HWND panel = FindWindowA("smallest", NULL);
    HWND list = GetDlgItem(panel, 100);
    if (words == 1) {
        printf("%d", (int)SendMessageA(list, LVM_GETITEMCOUNT, 0, 0));
    } else {
        SendMessageA(list, WM_KEYDOWN, VK_DOWN, 0); /* the list: its first row */
        SendMessageA(panel, WM_COMMAND, 103, 0); /* Drop */
        SendMessageA(panel, WM_COMMAND, 104, 0); /* Apply */
    }
    return panel == NULL;
}
C
x86_64-w64-mingw32-gcc "$out/at_the_panel.c" -o "$out/at_the_panel.exe"

# shows_the_rule WHAT PROGRAM FOLDER [WORD]: the smallest panel shows one rule, something is done to it, and it goes when it
# is told to.
shows_the_rule() {
    local rules='' i panel
    wine "$2" "$3" </dev/null >/dev/null 2>&1 &
    panel=$!
    for ((i = 0; i < 300; i++)); do
        rules=$(wine "$out/at_the_panel.exe" 2>/dev/null </dev/null) || true
        [ "$rules" != 1 ] || break
        kill -0 $panel 2>/dev/null || break
        sleep 0.1
    done
    is "$1" 1 "$rules"
    [ -z "${4:-}" ] || run "$out/at_the_panel.exe" "$4"
    wine taskkill /im smallest.exe >/dev/null 2>&1 </dev/null || wrong "$1: it cannot be told to go"
    wait $panel || wrong "$1: it ended with $?"
}

for compiler in clang gcc; do
    built=$out/$compiler
    if ! { cmake -G Ninja -S "$out/examples" -B "$built" -D CMAKE_PREFIX_PATH="$package" -D CMAKE_BUILD_TYPE=Release \
        -D CMAKE_TOOLCHAIN_FILE="$source/cmake/windows-$compiler.cmake" -D CMAKE_COMPILE_WARNING_AS_ERROR=ON \
        -D CMAKE_C_FLAGS='-Wall -Wextra' -D CMAKE_CXX_FLAGS='-Wall -Wextra' &&
        cmake --build "$built"; } >"$out/$compiler.log" 2>&1; then
        wrong "$compiler: the examples do not build"
        tail -30 "$out/$compiler.log" >&2
        continue
    fi
    folder=$(windows "$out/measured")
    mkdir -p "$out/measured"
    printf '%1000s' '' >"$out/measured/file"
    is "$compiler, an empty store" '' "$(run "$built/quota_report.exe" "$(windows "$out/data $compiler")" "$folder")"
    is "$compiler, a rule" "Anyone | 1048576  | 524288  | -1  | 00% | $folder" \
        "$(run "$built/quota_report.exe" "$(windows "$out/data $compiler")" "$folder" 1048576 524288)"
    # Alone in a folder, it has to find both libraries where it was told.
    mkdir -p "$out/alone"
    mv "$built/load_at_run_time.exe" "$out/alone/"
    export LORNIX_DATA
    LORNIX_DATA=$(windows "$out/data $compiler")
    is "$compiler, loaded at run time" '1 rules' \
        "$(run "$out/alone/load_at_run_time.exe" "$(windows "$package/bin/corvane.dll")" "$folder")"
    shows_the_rule "$compiler, the smallest panel" "$built/smallest.exe" "$folder"
    unset LORNIX_DATA
done

# The lines of the page for those without CMake, as they stand there.
mapfile -t lines < <(sed -nE 's/^    ((x86_64-w64-mingw32-gcc|clang) .*)/\1/p' "$package/docs/package.md")
[ ${#lines[@]} = 2 ] || wrong "package.md has ${#lines[@]} lines without CMake that can be tried here"
for line in "${lines[@]}"; do
    rm -f "$package/bin/smallest.exe"
    line=${line/#clang /clang-19 } # by the name that it has here
    (cd "$package" && eval "$line") || { wrong "does not build: $line"; continue; }
    LORNIX_DATA=$(windows "$out/data gcc") shows_the_rule "$line" "$package/bin/smallest.exe" "$folder"
done
cp -r "$out/data gcc" "$out/data dropped"
LORNIX_DATA=$(windows "$out/data dropped") shows_the_rule 'dropping and applying' "$package/bin/smallest.exe" "$folder" drop
is 'what is stored then' '' "$(run "$out/clang/quota_report.exe" "$(windows "$out/data dropped")" "$folder")"

# The sample panel as a project of its own: its files as one, as its speed is not looked at.
if ! { cmake -G Ninja -S "$out/examples/panel" -B "$out/panel" -D CMAKE_PREFIX_PATH="$package" -D CMAKE_BUILD_TYPE=Release \
    -D CMAKE_CXX_FLAGS_RELEASE=-O0 -D CMAKE_UNITY_BUILD=ON -D CMAKE_UNITY_BUILD_BATCH_SIZE=0 \
    -D CMAKE_TOOLCHAIN_FILE="$source/cmake/windows-gcc.cmake" &&
    cmake --build "$out/panel"; } >"$out/panel.log" 2>&1; then
    wrong 'the sample panel does not build from the package'
    tail -30 "$out/panel.log" >&2
else
    shown=$(run "$out/panel/corvane_host.exe" --data "$(windows "$out/data gcc")" --dump)
    [[ $shown == *1048576* ]] || wrong "the sample panel: $shown"
fi

# The import libraries by their Microsoft names, for programs of that ABI.
cat >"$out/abi.c" <<'C'
#include <corvane.h>
#include <lornix_host.h>
void start(void)
{
    ExitProcess(lornixLastError()[0] == 0 && getButtonState(NULL, 1) == 0 ? 7 : 8);
}
C
code=0
clang-19 --target=x86_64-pc-windows-msvc -fms-extensions -fms-compatibility-version=19.40 -fgnuc-version=4.2.1 -isystem /usr/x86_64-w64-mingw32/include -I "$package/include" \
    -c "$out/abi.c" -o "$out/abi.obj" &&
    lld-link-19 /nologo /nodefaultlib /entry:start /subsystem:console /out:"$package/bin/abi.exe" "$out/abi.obj" \
        "$package/lib/corvane.lib" "$package/lib/lornix.lib" /usr/x86_64-w64-mingw32/lib/libkernel32.a || wrong 'the .lib files do not link'
wine "$package/bin/abi.exe" </dev/null >/dev/null 2>&1 || code=$?
is 'a program linked with the .lib files' 7 "$code"
exit $failed
