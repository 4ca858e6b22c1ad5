#!/usr/bin/env bash
# Both libraries built by GCC, as a part of another project, without a warning: and the tests of faults, which GCC has no
# keywords for, run on them.
#   tests/package/gcc.sh BUILD OUT    on the Windows runtime that the caller has selected
. "$(dirname "$0")/lib.sh"
out=$2
rm -rf "$out"
mkdir -p "$out"
out=$(cd "$out" && pwd)
cat >"$out/CMakeLists.txt" <<E2
cmake_minimum_required(VERSION 3.25)
project(whole LANGUAGES C CXX)
add_subdirectory("$source" part)
file(STRINGS "$source/tests/compile/alone.txt" alone REGEX "^[^#]")
list(TRANSFORM alone PREPEND "$source/")
foreach(target corvane_logic corvane_frame corvane_quota corvane_accounts corvane_files corvane_processes corvane_policies
    corvane_shell lornix_logic lornix)
  get_target_property(folder \${target} SOURCE_DIR)
  set_target_properties(\${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0)
  set_source_files_properties(\${alone} DIRECTORY \${folder} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endforeach()
add_executable(smallest WIN32 "$source/examples/smallest.c")
target_link_libraries(smallest PRIVATE corvane::corvane corvane::lornix comctl32)
target_link_options(smallest PRIVATE -municode)
add_executable(trapped_call "$source/tests/compiler/trapped_call_test.cpp")
target_compile_features(trapped_call PRIVATE cxx_std_20)
target_link_libraries(trapped_call PRIVATE corvane_compiler)
target_link_options(trapped_call PRIVATE -static)
E2
# What is looked for here is what the compiler says and whether faults are survived; speed is not. The files of a room are
# compiled as one; each by itself is what all other builds do.
if ! { cmake -G Ninja -S "$out" -B "$out/built" -D CMAKE_TOOLCHAIN_FILE="$source/cmake/windows-gcc.cmake" \
    -D CMAKE_BUILD_TYPE=Release -D CMAKE_CXX_FLAGS_RELEASE=-O0 &&
    cmake --build "$out/built"; } >"$out/log" 2>&1; then
    tail -30 "$out/log"
    ! grep -qE 'redefinition|ambiguous' "$out/log" || echo 'A name that two files of a room have? tests/compile/alone.txt'
    exit 1
fi
! grep -E 'warning: ' "$out/log" || wrong 'GCC warns'

# test_on FOLDER LIBRARY PROGRAM FILTER: the program as it was built for the tests, beside GCC's library.
test_on() {
    local beside=$out/${3%.exe} said
    mkdir -p "$beside"
    cp "$build/$1/$3" "$build/$1"/*.dll "$beside/"
    cp "$out/built/part/bin/$2" "$beside/"
    said=$(cd "$beside" && GTEST_BRIEF=1 "$source/tools/windows_program" "./$3" --gtest_filter="$4" 2>/dev/null </dev/null) || wrong "$said"
    [[ $said =~ PASSED[[:space:]]*\][[:space:]]*[1-9] ]] || wrong "$3: no test ran"
    echo "$3: $(tail -n 1 <<<"$said")"
}
said=$("$source/tools/windows_program" "$out/built/trapped_call.exe" 2>/dev/null </dev/null) || wrong "$said"
test_on tests/bin corvane.dll frame_tests.exe '-HeapRegimeTest.*'
test_on tests/bin corvane.dll quota_dialog_tests_high.exe '*.MeasuringTheFolderIsSilent/*'
test_on tests/bin corvane.dll policies_test_high.exe '*.AFaultInAnyStoreCall*'
test_on tests/lornix lornix.dll store_tests.exe '*Fault*'
exit $failed
