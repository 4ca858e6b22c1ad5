#!/usr/bin/env bash
# The project as a part of another one: it brings the two libraries, no tests, and no settings. GCC's is gcc.sh.
#   tests/package/part.sh BUILD OUT
. "$(dirname "$0")/lib.sh"
rm -rf "$2"
mkdir -p "$2"
cd "$2"
cat >CMakeLists.txt <<E2
cmake_minimum_required(VERSION 3.25)
project(whole LANGUAGES C CXX)
add_subdirectory("$source" part)
add_executable(smallest WIN32 "$source/examples/smallest.c")
target_link_libraries(smallest PRIVATE corvane::corvane corvane::lornix comctl32)
E2
cmake -G Ninja -S . -B built -D CMAKE_TOOLCHAIN_FILE="$source/cmake/windows-clang.cmake" -D CMAKE_BUILD_TYPE=Release \
    >log 2>&1 || { cat log; exit 1; }
targets=$(ninja -C built -t targets all)
grep -q '^bin/\|part/bin/corvane.dll:' <<<"$targets" || wrong 'there is no corvane.dll'
grep -q '^smallest.exe:' <<<"$targets" || wrong 'there is no smallest.exe'
! grep -E '^[^:]*(gtest|gmock|_tests?\.exe|_bench|corvane_host|benches)' <<<"$targets" || wrong 'tests, benches or the panel come along'
! grep -iE '^(gtest|gmock|install_gtest|googletest|build_gmock|corvane_[a-z_]*:(bool|path|filepath|string))' built/CMakeCache.txt |
    grep -vE '_(BINARY_DIR|SOURCE_DIR|IS_TOP_LEVEL|LIB_DEPENDS)' || wrong 'settings come along'
[ ! -e built/part/CTestTestfile.cmake ] || ! grep -q add_test built/part/CTestTestfile.cmake || wrong 'tests come along'
exit $failed
