# The tables of the benches, one by one on the command line, named like the benches: NAME.txt.
#   -v what=list                       their ratios, a line each: bench | measure | size | ratio
#   -v what=check -v ratios=FILE       what is slower by a tenth than in the file, new, or missing; 1 when there is anything
#   -v what=page -v page=FILE          the page, with each table between <!-- NAME --> and <!-- end --> made anew
BEGIN {
    FS = " *[|] *"
}
FNR == 1 {
    bench = FILENAME
    sub(".*/", "", bench)
    sub("[.]txt$", "", bench)
    sizeCount = 0
}
# | measure | size | ratio | low - high | row by row |
$3 ~ /^[0-9]+$/ && $4 ~ /^[0-9.]+$/ {
    key = bench " | " $2 " | " $3
    order[++count] = key
    found[key] = $4
    spread[key] = $5
    slow[key] = $6
    if (!((bench, $2) in seen)) {
        seen[bench, $2]
        measures[bench] = measures[bench] (measures[bench] == "" ? "" : "\n") $2
    }
    if (index(sizes[bench] " ", " " $3 " ") == 0) {
        sizes[bench] = sizes[bench] " " $3
    }
}
function inThousands(number) {
    while (number ~ /[0-9][0-9][0-9][0-9]/) {
        sub(/[0-9][0-9][0-9](,|$)/, ",&", number)
    }
    return number
}
# One table of a bench, sizes side by side.
function printTable(bench, heading, isSlow,   i, j, n, m, size, measure, line, key, any) {
    n = split(sizes[bench], size, " ")
    for (i = 1; i <= n; i++) {        # by size
        for (j = i + 1; j <= n; j++) {
            if (size[j] + 0 < size[i] + 0) {
                key = size[i]
                size[i] = size[j]
                size[j] = key
            }
        }
    }
    m = split(measures[bench], measure, "\n")
    line = "| " heading " |"
    any = "| --- |"
    for (i = 1; i <= n; i++) {
        line = line " " inThousands(size[i]) " |"
        any = any " ---: |"
    }
    print line
    print any
    for (j = 1; j <= m; j++) {
        line = "| " measure[j] " |"
        any = !isSlow
        for (i = 1; i <= n; i++) {
            key = bench " | " measure[j] " | " size[i]
            if (!(key in found)) {
                line = line " |"
            } else if (isSlow) {
                line = line " " slow[key] (slow[key] == "" ? "" : " ") "|"
                any = any || slow[key] != ""
            } else {
                line = line " " found[key] " (" spread[key] ") |"
            }
        }
        if (any) {
            print line
        }
    }
}
function hasSlow(bench,   key) {
    for (key in slow) {
        if (index(key, bench " | ") == 1 && slow[key] != "") {
            return 1
        }
    }
    return 0
}
function list(   i) {
    for (i = 1; i <= count; i++) {
        print order[i] " | " found[order[i]]
    }
}
function check(   line, cells, key, i, benches, failed) {
    for (i = 1; i <= count; i++) {
        split(order[i], cells, " [|] ")
        benches[cells[1]]
    }
    while ((getline line < ratios) > 0) {
        if (line ~ /^#/ || split(line, cells, " [|] ") != 4) {
            continue
        }
        key = cells[1] " | " cells[2] " | " cells[3]
        known[key]
        if (!(cells[1] in benches)) {
            continue
        }
        if (!(key in found)) {
            print "not measured: " key
            failed = 1
        } else if (found[key] > cells[4] * 1.1) {
            print "slower: " key ": " found[key] " (" spread[key] ") instead of " cells[4]
            failed = 1
        }
    }
    for (i = 1; i <= count; i++) {
        if (!(order[i] in known)) {
            print "not among the ratios: " order[i] ": " found[order[i]]
            failed = 1
        }
    }
    if (!failed) {
        print count " ratios, none of them exceeded by a tenth"
    }
    return failed
}
function rewrite(   line, bench, skipping) {
    while ((getline line < page) > 0) {
        if (skipping && line ~ /^<!-- end -->/) {
            skipping = 0
        }
        if (!skipping) {
            print line
        }
        if (line ~ /^<!-- [a-z]+ -->$/ && line !~ /<!-- end -->/) {
            bench = line
            gsub(/<!-- | -->/, "", bench)
            if (bench in sizes) {
                skipping = 1
                print ""
                printTable(bench, "corvane : bare", 0)
                if (hasSlow(bench)) {
                    print ""
                    printTable(bench, "row by row : corvane", 1)
                }
                print ""
            }
        }
    }
}
END {
    if (what == "list") {
        list()
    } else if (what == "check") {
        exit check()
    } else if (what == "page") {
        rewrite()
    }
}
