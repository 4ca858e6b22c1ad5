# shellcheck shell=bash
# What the tests of what ships have in common. Sourced with the build folder as the first argument.
set -euo pipefail
source=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$(cd "$1" && pwd)
export LC_ALL=C.UTF-8
unset LIBRARY_PATH CPATH DESTDIR CC CXX CFLAGS CXXFLAGS LDFLAGS

failed=0
wrong() {
    echo "$*" >&2
    failed=1
}

# copy_sources FOLDER: what belongs to the project, without what was built.
copy_sources() {
    rm -rf "$1"
    mkdir -p "$1"
    tar -C "$source" --exclude=./build --exclude=./.git -cf - . | tar -C "$1" -xf -
}
