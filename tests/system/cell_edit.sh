#!/usr/bin/env bash
# Editing in the cell: what is refused and why, how it ends, and what it sets.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2" One Two
store_rules One 30M 20M Two 50M 40M

host_start
one=$(row_of One)
two=$((1 - one))
cell() { rules | sed -n "$(($1 + 1))p" | cut -f $(($2 + 1)); }
cell_is() { [ "$(cell "$1" "$2")" = "$3" ]; }
open_cell() {
    double_click_cell "$1" 2
    wait_focus "$panel" cell
}

step 'texts that are no limit'
open_cell "$one"
shot editing-in-place
while IFS='|' read -r typed because; do
    press Home shift+End
    type_text "$typed"
    press Return
    wait_window 'Soft Quota Limit'
    [ "$typed" != 3G ] || shot message-too-large-for-the-cell
    expect 'the message' "$because" "$(peek text 'Soft Quota Limit' IDC_BOX_TEXT | head -n 1)"
    answer 'Soft Quota Limit' Return
    wait_focus "$panel" cell
done <<'TEXTS'
3G|3G is too large to be typed into the list.
2048M|2048M is too large to be typed into the list.
1T|"1T" is not a limit.
12 M|"12 M" is not a limit.
-1|"-1" is not a limit.
much|"much" is not a limit.
5|5 is too small for a limit.
TEXTS
press Escape
wait_focus "$panel" IDC_RULES
wait_saved

step 'the largest one, with Tab'
open_cell "$one"
type_text 2047M
press Tab
wait_focus "$panel" IDC_RULES
wait_for 'the new soft limit' cell_is "$one" 2 2047M
wait_for 'the new limit' cell_is "$one" 1 2047M
wait_for 'the new percentage' cell_is "$one" 4 00%
wait_unsaved

step 'leave the cell by a click elsewhere: it is taken'
open_cell "$two"
type_text 2m
click "$panel" IDC_FOLDER_EDIT
wait_for 'the new soft limit' cell_is "$two" 2 2048K
wait_for 'the new limit' cell_is "$two" 1 2048K

step 'leave it by the Apply button: it is taken and stored'
open_cell "$two"
type_text 3M
click "$panel" IDC_APPLY
wait_saved
expect_limits 'One|2146435072|2146435072
Two|3145728|3145728'

step 'leave it by Apply with a wrong text: explained, nothing stored'
open_cell "$two"
type_text 1X
press ctrl+s
wait_window 'Soft Quota Limit'
answer 'Soft Quota Limit' Return
wait_focus "$panel" cell
press Escape
wait_saved

step 'a check box does not change over a wrong text'
click_folder 0
wait_shows yes enabled "$panel" IDC_OWNERS_FIRST
open_cell "$two"
type_text 1X
press alt+w
wait_window 'Soft Quota Limit'
answer 'Soft Quota Limit' Return
wait_focus "$panel" cell
press Escape
expect 'the check box' no "$(peek checked "$panel" IDC_OWNERS_FIRST)"
press alt+w
wait_shows yes checked "$panel" IDC_OWNERS_FIRST

step 'Apply can be pressed while a cell is open, though nothing has changed yet'
expect 'Apply with the cell closed' no "$(peek enabled "$panel" IDC_APPLY)"
open_cell "$two"
expect 'Apply with the cell open' yes "$(peek enabled "$panel" IDC_APPLY)"
press Escape
wait_shows no enabled "$panel" IDC_APPLY
open_cell "$two"
type_text 6M
click "$panel" IDC_APPLY
wait_for 'the new soft limit' cell_is "$two" 2 6144K
wait_saved
expect_limits 'One|2146435072|2146435072
Two|6291456|6291456'

step 'a heading takes what was typed before it sorts'
open_cell "$two"
type_text 4M
click_header 1
wait_column 1 '4096K|2047M'
wait_unsaved
press ctrl+s
wait_saved
host_close
expect_limits 'One|2146435072|2146435072
Two|4194304|4194304'

step 'F2 on a row that is out of sight: it comes into sight, and its cell is open'
two_folder=$(tr -d '\r' <"$data/rules.txt" | grep '^4194304' | cut -f 5) || fail 'no rule with that limit'
{
    grep -v -e '^checksum' -e '^end' "$data/rules.txt"
    for ((i = 1; i <= 60; i++)); do
        printf '4194304\t4194304\t1\tS-1-5-21-1-2-3-%d\t%s\r\n' "$i" "$two_folder"
    done
    printf 'checksum\t-\r\nend\r\n'
} >"$data/more"
mv "$data/more" "$data/rules.txt"
host_start
wait_status '62 rules in 2 folders'
press alt+u Home space
wait_shows 0 chosen "$panel" IDC_RULES
at point "$panel" IDC_RULES
wheel 30
height_of() { peek "$@" | cut -d ' ' -f 2; }
row_0_is_above() { [ "$(height_of cell "$panel" IDC_RULES 0 1)" -lt "$(height_of header "$panel" IDC_RULES 1)" ]; }
wait_for 'the first row out of sight' row_0_is_above
press F2
wait_focus "$panel" cell
type_text 7M
press Return
wait_unsaved
expect 'the new soft limit' 7168K "$(cell 0 2)"
press ctrl+s
wait_saved
host_close
