#!/usr/bin/env bash
# Which tests ./test --quick chooses for which change.
set -euo pipefail
tools=$(cd "$(dirname "$0")/../../tools" && pwd)
. "$tools/changed_rooms.sh"
failed=0
expect() {
    local got
    got=$(tr '\n' ' ' <<<"$2")
    [ "${got% }" = "$3" ] || { echo "$1: \"${got% }\" and not \"$3\""; failed=1; }
}
rooms() { printf '%s\n' "$@" | rooms_of_files; }

expect 'a file of a room' "$(rooms quota/list_fill.cpp)" quota
expect 'a room in a room' "$(rooms lornix/rules/rule_file.cpp)" lornix
expect 'a test' "$(rooms tests/policies/excludes_test.cpp)" policies
expect 'several' "$(rooms host/main.cpp accounts/sid_ctrl.cpp tests/accounts/sid_ctrl_test.cpp)" 'accounts host'
expect 'templates' "$(rooms res/corvane.rc)" templates
expect 'the ground' "$(rooms compiler/trapped_call.h)" 'compiler frame'
expect 'the export list' "$(rooms corvane.def)" 'frame lornix'
expect 'pages and tools' "$(rooms README.md docs/store.md tools/wine.sh)" ''
expect 'what takes long' "$(rooms tests/system/main_job.sh tests/stress/monkey.cpp)" ''
expect 'nothing' "$(rooms_of_files </dev/null)" ''

# What has changed, in a history of its own.
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
export GIT_CONFIG_GLOBAL=/dev/null GIT_CONFIG_SYSTEM=/dev/null
unset GIT_DIR GIT_WORK_TREE GIT_INDEX_FILE
git init -q .
git config user.name somebody
git config user.email somebody@example.org
mkdir quota files
touch quota/a.cpp files/b.cpp
git add .
git commit -qm first
expect 'the first commit' "$(changed_files)" 'files/b.cpp quota/a.cpp'
echo 1 >files/b.cpp
git commit -qam second
expect 'the last commit' "$(changed_files)" files/b.cpp
echo 2 >quota/a.cpp
mkdir shell
touch shell/new.cpp
expect 'what is not committed' "$(changed_files)" 'quota/a.cpp shell/new.cpp'
git add .
expect 'what is to be committed' "$(changed_files)" 'quota/a.cpp shell/new.cpp'
exit $failed
