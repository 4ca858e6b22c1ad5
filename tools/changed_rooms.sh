# shellcheck shell=bash
# Which rooms' tests look at a change. Sourced.

# changed_files: what differs from the last commit, new files too; where nothing does, what that commit changed.
changed_files() {
    local files
    files=$(git diff --name-only HEAD && git ls-files --others --exclude-standard) || return
    [ -n "$files" ] || files=$(git diff-tree -r --root --no-commit-id --name-only -m --first-parent HEAD) || return
    printf '%s\n' "$files" | sort -u
}

# rooms_of_files: the names of test folders, one a line, for the files that are read. A room's tests are in the folder of
# its name; what all rooms stand on is looked at by the tests of the library as a whole, in frame.
rooms_of_files() {
    local file room
    while IFS= read -r file; do
        room=${file#tests/}
        room=${room%%/*}
        case $file in
        *.md | tests/docs/* | tests/tools/* | tools/*) ;;    # what is always run looks at them
        tests/system/* | tests/stress/* | tests/package/* | tests/compile/* | tests/fuzz/*) ;;    # only ./test runs them
        compiler/* | tests/compiler/*) printf '%s\n' compiler frame ;;
        include/* | *.def | CMakeLists.txt | cmake/*) printf '%s\n' frame lornix ;;
        res/*) echo templates ;;
        tests/*/* | frame/* | quota/* | accounts/* | files/* | processes/* | policies/* | shell/* | store/* | lornix/* | host/*)
            echo "$room"
            ;;
        esac
    done | sort -u
}
