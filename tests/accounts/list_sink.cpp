#include "list_sink.h"

#include "account_store.h"
#include "journal.h"

#include <cstdint>

ListSink::~ListSink()
{
    for (const Row& row : rows) {
        if (reinterpret_cast<std::uintptr_t>(row.data) > 1) {
            releaseSid(row.data);
        }
    }
}

bool ListSink::alive()
{
    journal.call("alive", "");
    return !gone();
}

int ListSink::rowCount()
{
    journal.call("rowCount", "");
    return static_cast<int>(rows.size()) - (removed ? 1 : 0);
}

void ListSink::insert(int index, int image, const wchar_t* account, const wchar_t* fullName,
                      const wchar_t* type, void* data)
{
    std::string dataText = reinterpret_cast<std::uintptr_t>(data) > 1 ? std::to_string(sidNumber(data))
                                                                      : (data != nullptr ? "ONE" : "null");
    journal.call("insert", std::to_string(index) + ", " + std::to_string(image) + ", " + narrow(account) +
                               ", " + narrow(fullName) + ", " + narrow(type) + ", " + dataText);
    if (gone()) {
        ++insertedAfterDeath;
        if (reinterpret_cast<std::uintptr_t>(data) > 1) {
            releaseSid(data);
        }
        return;
    }
    rows.push_back({index, image, account, fullName, type, data});
}

void ListSink::removeFirstInserted()
{
    journal.call("removeFirstInserted", "");
    removed = !gone();
}

void ListSink::waitForTurn()
{
    journal.call("waitForTurn", "");
}

void ListSink::nameServers(const wchar_t* server, const wchar_t* server2)
{
    journal.call("nameServers", narrow(server) + ", " + narrow(server2));
}

bool ListSink::gone() const
{
    return journal.windowGone || (dieBefore >= 0 && static_cast<int>(rows.size()) >= dieBefore);
}
