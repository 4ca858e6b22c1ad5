#!/usr/bin/env bash
# Holds what ships against what is promised of it: debug information in the PDB alone, no path of this machine, the same
# version, product and copyright in all of it, and nothing needed but the system.
. "$(dirname "$0")/lib.sh"

version=$(sed -nE 's/^project\(corvane VERSION ([0-9.]+) .*/\1/p' "$source/CMakeLists.txt")
[ -n "$version" ] || wrong 'no version in CMakeLists.txt'
for binary in corvane.dll lornix.dll corvane_host.exe; do
    file=$build/bin/$binary
    pdb=${binary%.*}.pdb
    sections=$(llvm-readobj-19 --sections "$file" | sed -nE 's/^ *Name: ([^ ]+).*/\1/p')
    grep -qx .text <<<"$sections" || wrong "$binary: its sections cannot be read"
    ! grep '^\.debug' <<<"$sections" || wrong "$binary: debug information inside"
    named=$(llvm-readobj-19 --coff-debug-directory "$file" | sed -nE 's/^ *PDBFileName: (.*)/\1/p')
    [ "$named" = "$pdb" ] || wrong "$binary: names \"$named\" as its PDB"
    # Every room has its lines in it.
    units=$(llvm-pdbutil-19 dump -files "$build/bin/$pdb" | sed -nE 's,.* /corvane/([a-z_/]+\.cpp)$,\1,p' | sort -u)
    case $binary in
    corvane.dll) rooms='compiler frame quota accounts files processes policies shell' ;;
    lornix.dll) rooms='compiler lornix' ;;
    *) rooms='host' ;;
    esac
    for room in $rooms; do
        for unit in $(cd "$source" && find "$room" -name '*.cpp'); do
            # Data alone has no lines, nor has what another compiler is given instead.
            [[ $unit == *_gcc.cpp ]] || ! grep -q '{' "$source/$unit" || grep -qxF "$unit" <<<"$units" || wrong "$pdb: no lines of $unit"
        done
    done
    for place in "$source" "$build" "$HOME/"; do
        for one in "$file" "$build/bin/$pdb"; do
            ! grep -qaF -- "$place" "$one" || wrong "${one##*/}: has the path $place in it"
        done
    done
    texts=$(strings -a -el "$file")
    for text in FileVersion "$version.0" ProductVersion ProductName Vantrel CompanyName 'Vantrel LLC' LegalCopyright \
        'Copyright (C) Vantrel LLC'; do
        grep -qxF "$text" <<<"$texts" || wrong "$binary: no $text"
    done
    for needed in $(llvm-readobj-19 --coff-imports "$file" | sed -nE 's/^ *Name: ([^ ]+\.dll)$/\1/ip' | sort -u); do
        case ${needed,,} in
        lornix.dll | corvane.dll) ;;
        lib*) wrong "$binary: needs $needed" ;;
        esac
    done
done
texts=$(strings -a "$build/bin/corvane_host.exe")
grep -qF "name=\"corvane.host\" version=\"$version.0\"" <<<"$texts" ||
    wrong 'corvane_host.exe: another version in its manifest'
exit $failed
