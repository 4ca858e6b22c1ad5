#!/usr/bin/env bash
# tools/first_use.sh on a project that only says what was asked of it.
set -euo pipefail
source=$(cd "$(dirname "$0")/../.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failed=0
expect() { [ "$2" = "$3" ] || { echo "$1: \"$2\" and not \"$3\""; failed=1; }; }

export GIT_CONFIG_GLOBAL=/dev/null GIT_CONFIG_SYSTEM=/dev/null SAID=$folder/said WINDOW=$folder/window
unset GIT_DIR GIT_WORK_TREE GIT_INDEX_FILE
mkdir -p "$folder/project/tools" "$folder/bin"
cp "$source"/tools/{first_use.sh,wine.sh} "$folder/project/tools/"
script() { cat >"$1" && chmod +x "$1"; }
# What is asked of it, where, on which display, and whether something was built before and is kept.
script "$folder/project/run" <<'E2'
#!/usr/bin/env bash
echo "$(basename "$0") $* on \"${DISPLAY:-}\" $([ ! -e build ] || echo built)${CMAKE_CXX_COMPILER_LAUNCHER:-}" >>"$SAID"
mkdir -p build
[ "${0##*/}" != test ] || exit $((${#1} > 0))
trap 'rm -f "$WINDOW"; exit' TERM
touch "$WINDOW"
for i in {1..600}; do sleep 0.05; done
E2
cp "$folder/project/run" "$folder/project/test"
script "$folder/bin/Xvfb" <<'E2'
#!/usr/bin/env bash
echo 77 >&3
echo $$ >"$SAID.display"
exec sleep 600
E2
script "$folder/bin/xdotool" <<'E2'
#!/usr/bin/env bash
[ "${*: -1}" = 'Quota Control Panel' ] && [ -e "$WINDOW" ]
E2
cd "$folder/project"
git init -q .
git config user.name somebody
git config user.email somebody@example.org
git add .
git commit -qm first

table=$(PATH=$folder/bin:$PATH CMAKE_CXX_COMPILER_LAUNCHER=cache tools/first_use.sh "$folder/clone")
expect 'what was asked' "$(<"$SAID")" 'run  on ":77" 
run  on ":77" built
test  on "" 
test --quick on "" built'
expect 'the rows' "$(sed -E '1d; s/[0-9]+ s/N s/g; s/[0-9.]+ \|$/L |/; s, \(failed; see .*/first_use.log\), (failed),' <<<"$table")" \
    '| --- | --- | --- | --- |
| ./run in a fresh clone, to the first window | N s | N s | L |
| ./run again | N s | N s | L |
| ./test in a fresh clone | N s | N s | L |
| ./test --quick after it (failed) | N s | N s | L |'
expect 'the panel is closed' "$([ -e "$WINDOW" ] || echo gone)" gone
# One that has ended and that nobody has taken note of yet has no command line any more.
shown() { [ -n "$(tr -d '\0' 2>/dev/null <"/proc/$(<"$SAID.display")/cmdline")" ]; }
for i in {1..100}; do
    shown || break
    sleep 0.02
done
! shown || { echo 'the display stays'; failed=1; }
exit $failed
