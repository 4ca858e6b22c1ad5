// Stands in for lornix.dll. Nothing is decided here: each call goes on to the test program.
#define LORNIX_BUILDING
#include "store/lornix.h"

#include "tests/support/store_table.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>

namespace {
std::atomic<const StoreTable*> installed{nullptr};
}

extern "C" void installStore(const StoreTable* table)
{
    installed = table;
}

extern "C" {

#define STORE_FORWARD(result, name, parameters, arguments)                                                   \
    result name parameters                                                                                   \
    {                                                                                                        \
        const StoreTable* const table = installed;                                                           \
        return table != nullptr ? table->name arguments : noAnswer<result>();                                \
    }
STORE_FUNCTIONS(STORE_FORWARD)
#undef STORE_FORWARD

void ODS(const char* format, ...)
{
    const StoreTable* const table = installed;
    if (table == nullptr) {
        return;
    }
    // The platform's own formatter, since %ls and %S must mean what they mean to the product's store.
    char line[4096] = "";
    va_list arguments;
    va_start(arguments, format);
    _vsnprintf(line, sizeof line - 1, format, arguments);
    va_end(arguments);
    table->ODS(line);
}

} // extern "C"
