#!/usr/bin/env bash
# Apply stores the folders that were changed here and no others: neither what somebody else has stored meanwhile nor
# what could not be read is lost.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One Two Three
store_rules One 30M 20M Two 50M 40M

# change_one LIMIT: changes and stores the rule of the first folder.
change_one() {
    local row
    row=$(row_of One)
    double_click_cell $row 2
    wait_focus "$panel" cell
    type_text "$1"
    press Return
    wait_unsaved
    press ctrl+s
    wait_saved
}

step 'somebody else stores a rule of the other folder while the panel is open'
host_start
wait_status '2 rules in 2 folders'
grep -q '^52428800' "$data/rules.txt" || fail 'the rule is not in the file'
sed -i 's/^52428800/62914560/; s/^checksum.*/checksum\t-\r/' "$data/rules.txt"
change_one 10M
host_close
expect_limits 'One|10485760|10485760
Two|62914560|41943040'

step 'a folder whose new rule is dropped again before it is stored: the store forgets it'
host_start
add_folder "$tree\\Three"
add_rule 30M 20M
wait_column 5 "$(printf '%s|' "$tree\\Three" "$tree\\Two" "$tree\\One" | sed 's/|$//')"
click_cell 0 0
press Delete
wait_status '2 rules in 3 folders'
change_one 12M
host_close
host_start
wait_status '2 rules in 2 folders'
host_close
