#!/usr/bin/env bash
# The About box and the help.
. "$(dirname "$0")/story.sh"
story_begin "$1" "$2"
about='About Vantrel'
key='HKLM\Software\Vantrel LLC\Vantrel'
registry() { wine reg "$@" /f </dev/null >>"$out/registry.log" 2>&1; }

step 'the About box closes by its button, by Enter, Esc and the close box'
host_start
for end in 'click 1' 'press Return' 'press Escape' 'press alt+F4'; do
    menu h a
    wait_window "$about"
    [[ $end != click* ]] || shot about
    case $end in
    click*) click "$about" IDOK ;;
    *) $end ;;
    esac
    wait_gone "$about"
    wait_window "$panel"
done
expect 'the windows' "$panel" "$(peek windows | grep .)"

step 'help without a path of the product: nothing happens'
registry delete "$key" /v Path
press F1
wait_window "$panel"
expect 'the windows' "$panel" "$(peek windows | grep .)"

step 'help with one: the file is opened by the program for it'
mkdir -p "$out/product/doc"
echo help >"$out/product/doc/vantrel40.chm"
registry add "$key" /v Path /d 'C:\Quota\product' || fail 'the registry cannot be written'
registry add 'HKLM\Software\Classes\.chm' /ve /d corvane.test.help
registry add 'HKLM\Software\Classes\corvane.test.help\shell\open\command' /ve /d 'C:\windows\notepad.exe "%1"'
press F1
wait_window vantrel40
press alt+F4
wait_gone vantrel40
wait_window "$panel"
host_close
