#include "list_sink.h"

#include "account_store.h"
#include "tests/support/describe.h"

#include <cstdint>

ListSink::~ListSink()
{
    for (const Row& row : rows) {
        if (reinterpret_cast<std::uintptr_t>(row.data) > 1) {
            RecordingStore::release(row.data);
        }
    }
}

bool ListSink::alive()
{
    RecordingStore::note("alive", {});
    return !gone();
}

int ListSink::rowCount()
{
    RecordingStore::note("rowCount", {});
    return static_cast<int>(rows.size()) - (removed ? 1 : 0);
}

void ListSink::insert(int index, int image, const wchar_t* account, const wchar_t* fullName,
                      const wchar_t* type, void* data)
{
    std::string dataText = reinterpret_cast<std::uintptr_t>(data) > 1 ? std::to_string(sidNumber(data))
                                                                      : (data != nullptr ? "ONE" : "null");
    RecordingStore::note("insert", std::to_string(index) + ", " + std::to_string(image) + ", " +
                                       describe(account) + ", " + describe(fullName) + ", " + describe(type) +
                                       ", " + dataText);
    if (gone()) {
        ++insertedAfterDeath;
        if (reinterpret_cast<std::uintptr_t>(data) > 1) {
            RecordingStore::release(data);
        }
        return;
    }
    rows.push_back({index, image, account, fullName, type, data});
}

void ListSink::removeFirstInserted()
{
    RecordingStore::note("removeFirstInserted", {});
    removed = !gone();
}

void ListSink::waitForTurn()
{
    RecordingStore::note("waitForTurn", {});
}

void ListSink::nameServers(const wchar_t* server, const wchar_t* server2)
{
    RecordingStore::note("nameServers", describe(server) + ", " + describe(server2));
}

bool ListSink::gone() const
{
    return windowGone || (dieBefore >= 0 && static_cast<int>(rows.size()) >= dieBefore);
}
