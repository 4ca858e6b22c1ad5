# Counts the tests of a run from ctest's own log: those that a test program tells of, one for any other entry, and one
# failure for a program that came to no end.
# Usage: awk -f tools/count_tests.awk BUILD_FOLDER/Testing/Temporary/LastTest.log    prints "PASSED FAILED"
{ sub(/\r$/, "") }
/^[0-9]+\/[0-9]+ Testing: / { ran = good = skipped = 0; program = 0 }
/^\[==========\] [0-9]+ tests? from .* ran\./ { ran = $2; program = 1 }
/^\[  PASSED  \] [0-9]+ tests?\./ { good = $4 }
/^\[  SKIPPED \] [0-9]+ tests?, listed below/ { skipped = $4 }
/^Test (Passed|Failed|Timeout|Not Run|Exception|Skipped)/ {
    ended = ($2 == "Passed.")
    if (program) {
        passed += good
        bad = ran - good - skipped
        failed += bad + (!ended && bad == 0)
    } else if (ended) {
        passed++
    } else {
        failed++
    }
}
END { print passed + 0, failed + 0 }
