// What the recording store forwards to: a function of the test program for each function of the store.
#pragma once

#include "corvane_types.h"
#include "tests/support/store_functions.h"

/// What a function gives that has no answer: 0 of its result's type, or nothing.
template <class Result>
Result noAnswer()
{
    return Result();
}

struct StoreTable {
#define STORE_MEMBER(result, name, parameters, arguments) result(*name) parameters;
    STORE_FUNCTIONS(STORE_MEMBER)
#undef STORE_MEMBER
    void (*ODS)(const char* line); ///< formatted
};

/// A table whose functions give 0, to put others into.
inline StoreTable emptyTable()
{
    StoreTable table{};
#define STORE_NOTHING(result, name, parameters, arguments)                                                   \
    table.name = [](auto...) {                                                                               \
        return noAnswer<result>();                                                                           \
    };
    STORE_FUNCTIONS(STORE_NOTHING)
#undef STORE_NOTHING
    table.ODS = [](const char*) {
    };
    return table;
}

#ifdef LORNIX_BUILDING
#define STORE_TABLE_API __declspec(dllexport)
#else
#define STORE_TABLE_API __declspec(dllimport)
#endif

/// Directs the recording store to a table, or with null to nowhere: then each function gives 0.
/// @param table  borrowed until the next call.
extern "C" STORE_TABLE_API void installStore(const StoreTable* table);
