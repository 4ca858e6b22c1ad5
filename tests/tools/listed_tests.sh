#!/usr/bin/env bash
# Tests that each have a process of their own are listed when they run: a run of some leaves none out of the next.
set -euo pipefail
source=$(cd "$(dirname "$0")/../.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
unset GTEST_FILTER
failed=0
cat >"$folder/CMakeLists.txt" <<E2
cmake_minimum_required(VERSION 3.25)
project(listed LANGUAGES C)
enable_testing()
include("$source/cmake/test_program.cmake")
add_executable(program program.c)
run_test_program(program EACH_ALONE)
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
CC=clang-19 cmake -G Ninja -S "$folder" -B "$folder/built" >"$folder/log" 2>&1 && cmake --build "$folder/built" >>"$folder/log" 2>&1 ||
    { cat "$folder/log"; exit 1; }
listed() { ctest --test-dir "$folder/built" -N | sed -nE 's/^ *Test +#[0-9]+: //p' | paste -s -d ' '; }
expect() { [ "$2" = "$3" ] || { echo "$1: \"$2\" and not \"$3\""; failed=1; }; }
expect 'some' "$(GTEST_FILTER='Two.*' listed)" 'Two.c'
expect 'all, after some' "$(listed)" 'One.a One.b Two.c'
expect 'all once more' "$(listed)" 'One.a One.b Two.c'
expect 'some, after all' "$(GTEST_FILTER='Two.*' listed)" 'Two.c'
exit $failed
