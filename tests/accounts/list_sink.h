// The account list of a test: each call is written down among those of the store.
#pragma once

#include "account_store.h"
#include "accounts/account_sink.h"
#include "tests/support/describe.h"

#include <cstdint>
#include <string>
#include <vector>

class ListSink final : public AccountSink {
public:
    struct Row {
        int index = 0;
        int image = 0;
        std::wstring account;
        std::wstring fullName;
        std::wstring type;
        void* data = nullptr; ///< released with the sink
    };

    std::vector<Row> rows;   ///< in the order of insertion
    int dieBefore = -1;      ///< the window is gone when this many rows have been inserted
    bool windowGone = false; ///< from now on
    bool removed = false;    ///< the first row is gone again
    int insertedAfterDeath = 0;

    ListSink() = default;
    ListSink(const ListSink&) = delete;
    ListSink& operator=(const ListSink&) = delete;
    ~ListSink() override
    {
        for (const Row& row : rows) {
            release(row.data);
        }
    }

    bool alive() override
    {
        RecordingStore::note("alive", {});
        return !gone();
    }

    int rowCount() override
    {
        RecordingStore::note("rowCount", {});
        return static_cast<int>(rows.size()) - (removed ? 1 : 0);
    }

    void insert(int index, int image, const wchar_t* account, const wchar_t* fullName, const wchar_t* type,
                void* data) override
    {
        const std::string dataText =
            isSid(data) ? std::to_string(sidNumber(data)) : (data != nullptr ? "ONE" : "null");
        RecordingStore::note("insert", std::to_string(index) + ", " + std::to_string(image) + ", " +
                                           describe(account) + ", " + describe(fullName) + ", " +
                                           describe(type) + ", " + dataText);
        if (gone()) {
            ++insertedAfterDeath;
            release(data);
        } else {
            rows.push_back({index, image, account, fullName, type, data});
        }
    }

    void removeFirstInserted() override
    {
        RecordingStore::note("removeFirstInserted", {});
        removed = !gone();
    }

    void waitForTurn() override { RecordingStore::note("waitForTurn", {}); }

    void nameServers(const wchar_t* server, const wchar_t* server2) override
    {
        RecordingStore::note("nameServers", describe(server) + ", " + describe(server2));
    }

private:
    static bool isSid(const void* data) { return reinterpret_cast<std::uintptr_t>(data) > 1; }

    static void release(void* data)
    {
        if (isSid(data)) {
            RecordingStore::release(data);
        }
    }

    bool gone() const { return windowGone || (dieBefore >= 0 && static_cast<int>(rows.size()) >= dieBefore); }
};
