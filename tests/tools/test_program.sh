#!/usr/bin/env bash
# What cmake/test_program.cmake makes of test programs, in a folder with a blank in its name.
set -euo pipefail
source=$(cd "$(dirname "$0")/../.." && pwd)
above=$(mktemp -d)
trap 'rm -rf "$above"' EXIT
folder="$above/a folder/room"
mkdir -p "$folder"
unset GTEST_FILTER
failed=0
cat >"$folder/CMakeLists.txt" <<E2
cmake_minimum_required(VERSION 3.25)
project(programs LANGUAGES C)
enable_testing()
set(CMAKE_CROSSCOMPILING_EMULATOR "$folder/runtime")
include("$source/cmake/test_program.cmake")
add_executable(program program.c)
run_test_program(program EACH_ALONE)
add_executable(whole program.c)
without_error_output(whole)
run_test_program(whole)
E2
cat >"$folder/program.c" <<'E2'
#include <stdio.h>
#include <stdlib.h>
int main(void)
{
    puts(getenv("GTEST_FILTER") == NULL ? "One.\n  a\n  b\nTwo.\n  c" : "Two.\n  c");
    return 0;
}
E2
cat >"$folder/runtime" <<'E2'
#!/bin/sh
echo noise >&2
exec "$@"
E2
chmod +x "$folder/runtime"
{ CC=clang-19 cmake -G Ninja -S "$folder" -B "$folder/built" && cmake --build "$folder/built"; } >"$above/log" 2>&1 ||
    { cat "$above/log"; exit 1; }
expect() { [ "$2" = "$3" ] || { echo "$1: \"$2\" and not \"$3\""; failed=1; }; }

# Tests that each have a process of their own are listed when they run: a run of some leaves none out of the next.
listed() { ctest --test-dir "$folder/built" -N 2>/dev/null | sed -nE 's/^ *Test +#[0-9]+: //p' | sort | paste -s -d ' '; }
expect 'some' "$(GTEST_FILTER='Two.*' listed)" 'Two.c whole'
expect 'all, after some' "$(listed)" 'One.a One.b Two.c whole'
expect 'all once more' "$(listed)" 'One.a One.b Two.c whole'
expect 'some, after all' "$(GTEST_FILTER='Two.*' listed)" 'Two.c whole'

said=$(ctest --test-dir "$folder/built" -V 2>/dev/null) || { echo "$said"; failed=1; }
expect 'what the runtime says beside a whole program' "$(grep -A 3 '^[0-9]*: Test command.*whole' <<<"$said" | grep -c noise)" 0
expect 'and beside the others' "$(grep -c noise <<<"$said")" 3
exit $failed
