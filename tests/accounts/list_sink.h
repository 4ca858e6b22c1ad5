// The account list of a test.
#pragma once

#include "accounts/account_sink.h"

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

    ~ListSink() override;

    bool alive() override;
    int rowCount() override;
    void insert(int index, int image, const wchar_t* account, const wchar_t* fullName, const wchar_t* type,
                void* data) override;
    void removeFirstInserted() override;
    void waitForTurn() override;
    void nameServers(const wchar_t* server, const wchar_t* server2) override;

    std::vector<Row> rows;   ///< in the order of insertion
    int dieBefore = -1;      ///< the window is gone when this many rows have been inserted
    bool windowGone = false; ///< from now on
    bool removed = false;    ///< the first row is gone again
    int insertedAfterDeath = 0;

private:
    bool gone() const;
};
