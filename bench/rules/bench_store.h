// The thin quota store of the bench: it serves rules made up by the number.
#pragma once

#include "store/lornix.h"

#ifdef LORNIX_BUILDING
#define BENCH_STORE_API extern "C" __declspec(dllexport)
#else
#define BENCH_STORE_API extern "C" __declspec(dllimport)
#endif

/// What getQuotaList serves from now on.
/// @param rules      all rules together; at most 1,000,000.
/// @param folders    they are spread over this many folders evenly, each for another account.
/// @param sameLimit  whether all rules have one and the same limit.
BENCH_STORE_API void benchStoreServe(int rules, int folders, bool sameLimit);

/// How many members every group has from now on.
BENCH_STORE_API void benchStoreServeMembers(int members);

/// Releases every record that getQuotaList gave so far.
BENCH_STORE_API void benchStoreReleaseAll();

/// How many folders have rules.
BENCH_STORE_API int benchStoreFolders();
