// The account list beside the bare control, and beside a fill thread that sends each row by itself, in one process.
//   accounts_bench [--sizes=1000,10000,100000] [--rounds=N] [--no-row-by-row] [--times] [--memory]
// Exit code 1 when the sides did not show the same.
#include "measure.h"
#include "parts.h"

#include <cstdio>

int main(int count, char** arguments)
{
    Options options{.sizes = {1000, 10000, 100000}};
    if (!readOptions(count, arguments, 1000, 1000000, options)) {
        return 2;
    }
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    LoadLibraryW(L"corvane"); // the rows' images are looked for there
    replacePlatform();

    std::vector<Comparison> comparisons;
    bool allSame = true;
    int fewer = 0;
    std::optional<double> rowByRow;
    for (const int users : options.sizes) {
        if (options.memory) {
            printMemory(users);
        }
        Measure measure(users, options);
        allSame = measure.run(fewer, rowByRow) && allSame;
        rowByRow = measure.rowByRow();
        fewer = users;
        for (const Comparison& comparison : measure.comparisons()) {
            comparisons.push_back(comparison);
        }
    }
    printComparisons("accounts", comparisons, options.times);
    if (!allSame) {
        std::fprintf(stderr, "The sides did not show the same rows\n");
        return 1;
    }
    return 0;
}
