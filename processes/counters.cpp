#include "processes/enumerators.h"
#include "processes/loaded_library.h"
#include "processes/process_heap.h"

#include <cwchar>
#include <pdh.h>
#include <pdhmsg.h>

namespace {

constexpr DWORD kProcessObject = 230; ///< the platform's number of the object "Process", in every language
constexpr DWORD kProcessIdCounter = 784;
constexpr DWORD kNameRoom = 160;
constexpr DWORD kPathRoom = 1024;

struct CounterApi {
    decltype(PdhOpenQueryW)* openQuery = nullptr;
    decltype(PdhAddCounterW)* addCounter = nullptr;
    decltype(PdhGetRawCounterArrayW)* getArray = nullptr;
    decltype(PdhCollectQueryData)* collect = nullptr;
    decltype(PdhCloseQuery)* closeQuery = nullptr;
    decltype(PdhMakeCounterPathW)* makePath = nullptr;
    decltype(PdhLookupPerfNameByIndexW)* lookUpName = nullptr;

    bool find(HMODULE pdh)
    {
        return lookUp(pdh, "PdhOpenQueryW", openQuery) && lookUp(pdh, "PdhAddCounterW", addCounter) &&
               lookUp(pdh, "PdhGetRawCounterArrayW", getArray) &&
               lookUp(pdh, "PdhCollectQueryData", collect) && lookUp(pdh, "PdhCloseQuery", closeQuery) &&
               lookUp(pdh, "PdhMakeCounterPathW", makePath) &&
               lookUp(pdh, "PdhLookupPerfNameByIndexW", lookUpName);
    }
};

/// An open query, closed once.
class Query {
public:
    explicit Query(const CounterApi& api)
        : m_api(api)
    {
    }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;
    ~Query() { close(); }

    DWORD open() { return status(m_api.openQuery(nullptr, 0, &m_query)); }
    DWORD add(const wchar_t* path) { return status(m_api.addCounter(m_query, path, 0, &m_counter)); }
    DWORD collect() { return status(m_api.collect(m_query)); }
    DWORD array(DWORD& bytes, DWORD& count, void* items)
    {
        return status(m_api.getArray(m_counter, &bytes, &count, static_cast<PDH_RAW_COUNTER_ITEM_W*>(items)));
    }
    void close()
    {
        if (m_query != nullptr) {
            m_api.closeQuery(m_query);
            m_query = nullptr;
        }
    }

private:
    static DWORD status(PDH_STATUS result) { return static_cast<DWORD>(result); }

    const CounterApi& m_api;
    PDH_HQUERY m_query = nullptr;
    PDH_HCOUNTER m_counter = nullptr;
};

// The name of an object or a counter in the machine's language.
DWORD localName(const CounterApi& api, const wchar_t* machine, DWORD index, wchar_t (&name)[kNameRoom])
{
    DWORD room = kNameRoom;
    const auto status = static_cast<DWORD>(api.lookUpName(machine, index, name, &room));
    return status == PDH_ACCESS_DENIED ? ERROR_ACCESS_DENIED : status;
}

DWORD counterPath(const CounterApi& api, const wchar_t* machine, wchar_t (&path)[kPathRoom])
{
    wchar_t object[kNameRoom] = {};
    wchar_t counter[kNameRoom] = {};
    if (const DWORD status = localName(api, machine, kProcessObject, object)) {
        return status;
    }
    if (const DWORD status = localName(api, machine, kProcessIdCounter, counter)) {
        return status;
    }
    wchar_t allInstances[] = L"*";
    PDH_COUNTER_PATH_ELEMENTS_W elements{};
    elements.szMachineName = const_cast<wchar_t*>(machine);
    elements.szObjectName = object;
    elements.szInstanceName = allInstances;
    elements.szCounterName = counter;
    DWORD room = kPathRoom;
    return static_cast<DWORD>(api.makePath(&elements, path, &room, 0));
}

/// One raw value per process.
struct ProcessCounters {
    ProcessHeapBlock items;
    DWORD count = 0;
};

// @return the status, 0 for success. The query is closed in every case.
DWORD readCounters(const CounterApi& api, const wchar_t* machine, ProcessCounters& counters)
{
    wchar_t path[kPathRoom] = {};
    if (const DWORD status = counterPath(api, machine, path)) {
        return status;
    }
    Query query(api);
    if (const DWORD status = query.open()) {
        return status;
    }
    if (const DWORD status = query.add(path)) {
        return status;
    }
    if (const DWORD status = query.collect()) {
        return status;
    }
    DWORD bytes = 0;
    DWORD count = 0;
    const DWORD asked = query.array(bytes, count, nullptr);
    if (asked != ERROR_SUCCESS && asked != PDH_MORE_DATA) {
        return asked;
    }
    counters.items = allocateFromProcessHeap(bytes);
    if (!counters.items) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    const DWORD status = query.array(bytes, counters.count, counters.items.get());
    query.close();
    return status;
}

} // namespace

int enumerateProcessCounters(const wchar_t* machine, ProcessCallback callback, void* context)
{
    const LoadedLibrary pdh(LoadLibraryW(L"pdh.dll"));
    CounterApi api;
    if (!api.find(pdh.get())) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return 0;
    }
    ProcessCounters counters;
    if (const DWORD status = readCounters(api, machine, counters)) {
        SetLastError(status);
        return 0;
    }
    const auto* items = static_cast<const PDH_RAW_COUNTER_ITEM_W*>(counters.items.get());
    for (DWORD i = 0; i < counters.count; ++i) {
        const auto id = static_cast<DWORD>(items[i].RawValue.FirstValue);
        const wchar_t* name = items[i].szName;
        if (id == 0 && name != nullptr && std::wcscmp(name, L"_Total") == 0) {
            continue; // the sum over all processes
        }
        if (callback(id, name, context) == 0) {
            break;
        }
    }
    return 1;
}
