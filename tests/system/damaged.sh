#!/usr/bin/env bash
# A damaged file of the store: the panel says so, shows the rest, and what was in the file is not thrown away.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One Two
store_rules One 30M 20M Two 50M 40M

step 'damage the rules of one folder'
file=$(grep -rl --include='*.txt' '^31457280' "$data") || fail 'no file has the rule'
sed -i 's/^31457280/3145728O/' "$file"

step 'the dump tells, and has the rest'
code=0
lines=$(dump) || code=$?
expect 'the exit code of the dump' 1 "$code"
expect 'the lines of the dump' 2 "$(wc -l <<<"$lines")"
case $lines in
*"$tree\\Two") ;;
*) fail "the rule of the other folder is not in the dump: $lines" ;;
esac

step 'the file is kept'
grep -rqF '3145728O' "$data" || fail 'what was in the damaged file is gone'

step 'damage the rules of the other folder, look at the panel'
file=$(grep -rl --include='*.txt' '^52428800' "$data")
sed -i 's/^52428800/-52428800/' "$file"
host_launch --folder "$tree\\One"
wait_store_box 'Not all rules could be read.'
shot message-damaged
answer 'Quota Store' Return
wait_window "$panel"
wait_for 'the error in the status line' error_is_shown
wait_status '0 rules in 2 folders'
wait_saved

step 'a new rule is stored, and what was there is set aside'
add_rule 60M 50M # the damage was told, and is not told again
press ctrl+s
wait_store_box 'The rules are stored. There is more to know:'
answer 'Quota Store' Return
wait_saved
host_close
expect_limits 'One|62914560|52428800'
grep -rqF -e '-52428800' "$data" || fail 'what was in the second damaged file is gone'
