// The way of the rows from the fill thread to the list.
#pragma once

#include "accounts/account_data.h"
#include "accounts/account_sink.h"
#include "frame/lock.h"

#include <optional>
#include <string>
#include <vector>

/// Rows on their way, in the order in which they were handed over.
struct RowBatch {
    struct Entry {
        bool removesFirst = false; ///< no row: the row that was inserted first is to go
        int index = 0;
        int image = 0;
        std::size_t texts = 0; ///< where the three texts begin, one behind the other
        AccountData data;
    };
    /// Names of the servers that the accounts come from.
    struct Servers {
        std::wstring first;
        std::wstring second;
    };
    std::vector<Entry> entries;
    std::wstring texts;
    std::optional<Servers> servers; ///< with the first rows after they became known
};

/// Rows wait here until the list's thread takes them. The fill thread never waits for the list to answer: it
/// leaves a notice in the list's message queue, and waits only while too much lies here, which ends at once when
/// the window goes. So neither thread can hold up the end of the other.
///
/// The list's own thread calls what stands under "list"; the rest is for the fill thread.
class RowQueue final : public AccountSink {
public:
    /// @param notice  message that is posted to the list when rows begin to wait, and at the end.
    RowQueue(HWND list, UINT notice)
        : m_list(list)
        , m_notice(notice)
    {
    }

    bool alive() override;
    int rowCount() override;
    void insert(int index, int image, const wchar_t* account, const wchar_t* fullName, const wchar_t* type,
                void* data) override;
    void removeFirstInserted() override;
    void waitForTurn() override;
    void nameServers(const wchar_t* server, const wchar_t* server2) override;

    /// Tells that no row comes any more: the last call of the fill thread. Returns when the list has closed the queue; up
    /// to then it posts another notice whenever the list could not come back to the rows that wait.
    void end();

    // ---- list ----

    /// Takes all that waits.
    RowBatch take();

    /// Whether nothing will come any more, beyond what waits.
    bool ended();

    /// Whether the fill waits for another one.
    bool waitsForTurn();

    /// The list cannot come back by itself: it gets another notice.
    void remind();

    /// Tells how many rows the list has now, with those that were taken and do not show yet.
    void setRowCount(int rows);

    /// The window is going: what waits and what still comes is dropped.
    void close();

private:
    void append(RowBatch::Entry entry, const std::wstring& texts);
    void notify();
    void waitForList();

    std::wstring m_texts; ///< of the row at hand; the fill thread's own

    Lock m_lock;
    CONDITION_VARIABLE m_taken = CONDITION_VARIABLE_INIT;
    HWND m_list; ///< null when the window is gone
    const UINT m_notice;
    bool m_noticed = false;
    bool m_owesNotice = false; ///< one could not be posted, or was of no use
    bool m_ended = false;
    bool m_waitsForTurn = false;
    std::optional<RowBatch::Servers> m_servers;
    int m_rowCount = 0;
    RowBatch m_waiting;
};
