// What a panel asks of a store beside what corvane does.
#define LORNIX_BUILDING
#include "lornix_host.h"

#include "bench/rules/bench_store.h"

#include <cstdint>
#include <cstdlib>
#include <cwchar>
#include <iterator>

namespace {

volatile std::int64_t stored = 0;

} // namespace

int lornixSetDataFolder(const wchar_t*)
{
    return 1;
}

const wchar_t* lornixDataFolder()
{
    return L"";
}

PathList* lornixKnownFolders()
{
    const int count = benchStoreFolders();
    auto* list = static_cast<PathList*>(
        std::malloc(sizeof(PathList) + static_cast<std::size_t>(count) * sizeof(wchar_t*)));
    list->count = count;
    for (int i = 0; i < count; ++i) {
        wchar_t path[64];
        swprintf(path, std::size(path), L"D:\\Departments\\Group %05d", i);
        list->paths[i] = _wcsdup(path);
    }
    return list;
}

void lornixFreeFolders(PathList* folders)
{
    for (int i = 0; folders != nullptr && i < folders->count; ++i) {
        std::free(folders->paths[i]);
    }
    std::free(folders);
}

QuotaRule* lornixLoadRules(const wchar_t* folder)
{
    return benchStoreRules(folder);
}

// Each rule is read, as a store must.
int lornixStoreRules(const PathList*, const QuotaRule* chain)
{
    std::int64_t sum = 0;
    for (const QuotaRule* rule = chain; rule != nullptr; rule = rule->next) {
        sum += rule->hardLimit + rule->path[0];
    }
    stored = sum;
    return 1;
}

// The records are released all together, by benchStoreReleaseAll.
void lornixFreeRules(QuotaRule*) {}

const wchar_t* lornixLastError()
{
    return L"";
}

const wchar_t* lornixTakeErrors()
{
    return L"";
}
