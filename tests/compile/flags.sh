# shellcheck shell=bash
# What both compile tests hand to the compilers. Nothing is linked: what the Microsoft runtime and its headers would say
# is not known here; that the sources and the ABI go together is.
set -euo pipefail
source=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$(cd "$1" && pwd)
mkdir -p "$2"
out=$(cd "$2" && pwd)
unset CPATH
mingw=/usr/x86_64-w64-mingw32/include
microsoft=(--target=x86_64-pc-windows-msvc -fms-extensions -fms-compatibility-version=19.40 -fgnuc-version=4.2.1
    -isystem "$mingw" -include "$source/tests/compile/msvc_runtime.h")
includes=(-I "$source" -I "$source/include" -I "$build/include")
