// The way of the rows from one thread to the other.
#include "accounts/row_queue.h"

#include "tests/support/import_patch.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

constexpr UINT kNotice = WM_APP + 7;

/// A message queue that takes nothing for a while.
class FailingPosts {
public:
    FailingPosts()
        : m_patch(GetModuleHandleW(nullptr), "PostMessageW", &post)
    {
        EXPECT_EQ(m_patch.count(), 1);
        before = m_patch.original<BOOL WINAPI(HWND, UINT, WPARAM, LPARAM)>();
        failing = true;
        tries = 0;
    }

    static inline std::atomic<bool> failing;
    static inline std::atomic<int> tries;

private:
    static BOOL WINAPI post(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        ++tries;
        return failing ? FALSE : before(window, message, wParam, lParam);
    }
    static inline BOOL(WINAPI* before)(HWND, UINT, WPARAM, LPARAM);
    ImportPatch m_patch;
};

struct RowQueueTest : testing::Test {
    RowQueueTest()
        : window(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 1, 1, HWND_MESSAGE, nullptr, nullptr, nullptr))
        , queue(window, kNotice)
    {
    }
    ~RowQueueTest() override { DestroyWindow(window); }

    void insert(int index) { queue.insert(index, index % 2, L"bob", L"DOM\\bob", L"User", nullptr); }
    int notices() const
    {
        int count = 0;
        MSG message;
        while (PeekMessageW(&message, window, kNotice, kNotice, PM_REMOVE)) {
            ++count;
        }
        return count;
    }
    /// Hands rows over on another thread until the queue takes no more or all are handed over.
    void insertMany(int rows)
    {
        handedOver = 0;
        worker = std::thread([this, rows] {
            for (int i = 0; i < rows; ++i) {
                insert(i);
                ++handedOver;
            }
        });
    }

    /// Ends the fill on another thread.
    void end()
    {
        worker = std::thread([this] { queue.end(); });
    }
    void waitForNotices(int count) const
    {
        for (const ULONGLONG deadline = GetTickCount64() + 20000; count > 0 && GetTickCount64() < deadline;
             Sleep(1))
        {
            count -= notices();
        }
        EXPECT_EQ(count, 0);
    }

    HWND window;
    RowQueue queue;
    std::atomic<int> handedOver = 0;
    std::thread worker;
};

} // namespace

TEST_F(RowQueueTest, GivesRowsInTheirOrderWithTheirTexts)
{
    queue.insert(4, 1, L"bob", L"DOM\\bob", L"User", reinterpret_cast<void*>(1));
    queue.insert(5, 0, nullptr, L"x", L"", nullptr);
    queue.removeFirstInserted();
    RowBatch batch = queue.take();
    ASSERT_EQ(batch.entries.size(), 3u);
    EXPECT_EQ(batch.entries[0].index, 4);
    EXPECT_EQ(batch.entries[0].image, 1);
    EXPECT_EQ(batch.texts.substr(batch.entries[0].texts, 17), std::wstring(L"bob\0DOM\\bob\0User\0", 17));
    EXPECT_EQ(batch.entries[0].data.get(), reinterpret_cast<void*>(1));
    EXPECT_EQ(batch.texts.substr(batch.entries[1].texts), std::wstring(L"\0x\0\0", 4));
    EXPECT_FALSE(batch.entries[1].removesFirst);
    EXPECT_TRUE(batch.entries[2].removesFirst);
    EXPECT_TRUE(queue.take().entries.empty());
}

TEST_F(RowQueueTest, OneNoticeIsEnoughUntilRowsAreTaken)
{
    insert(0);
    insert(1);
    EXPECT_EQ(notices(), 1);
    queue.take();
    EXPECT_EQ(notices(), 0);
    insert(2);
    EXPECT_EQ(notices(), 1);
}

TEST_F(RowQueueTest, CountsRowsThatDoNotShowYet)
{
    insert(0);
    insert(1);
    EXPECT_EQ(queue.rowCount(), 2);
    queue.take();
    EXPECT_EQ(queue.rowCount(), 2) << "taken is not lost";
    insert(2);
    queue.setRowCount(1); // a filter has hidden one
    EXPECT_EQ(queue.rowCount(), 2);
    queue.removeFirstInserted();
    EXPECT_EQ(queue.rowCount(), 1);
}

TEST_F(RowQueueTest, TheEndComesAfterTheLastRow)
{
    insert(0);
    EXPECT_FALSE(queue.ended());
    end();
    waitForNotices(2);
    EXPECT_FALSE(queue.ended()) << "a row waits";
    queue.take();
    EXPECT_TRUE(queue.ended());
    queue.close();
    worker.join();
    EXPECT_EQ(notices(), 0) << "one for the row, one for the end";
}

TEST_F(RowQueueTest, TheServersComeWithTheRowsThatFollowThem)
{
    insert(0);
    queue.take();
    queue.nameServers(L"S1", nullptr);
    EXPECT_FALSE(queue.take().servers) << "nothing of theirs is there yet";
    insert(1);
    const RowBatch batch = queue.take();
    ASSERT_TRUE(batch.servers);
    EXPECT_EQ(batch.servers->first, L"S1");
    EXPECT_EQ(batch.servers->second, L"");
    insert(2);
    EXPECT_FALSE(queue.take().servers);
}

TEST_F(RowQueueTest, AFillThatWaitsForItsTurnTellsSo)
{
    EXPECT_FALSE(queue.waitsForTurn());
    queue.waitForTurn();
    EXPECT_TRUE(queue.waitsForTurn());
    EXPECT_EQ(notices(), 1);
}

// ---- a list that cannot be told ----

TEST_F(RowQueueTest, ALaterNoticeMakesUpForThoseThatCouldNotBePosted)
{
    FailingPosts posts;
    insertMany(20000);
    while (handedOver < 16384) {
        Sleep(1);
    }
    posts.failing = false;
    waitForNotices(1);
    queue.take();
    worker.join();
    EXPECT_EQ(handedOver, 20000);
}

TEST_F(RowQueueTest, TheEndIsToldWhenItCanBe)
{
    FailingPosts posts;
    end();
    while (posts.tries < 2) {
        Sleep(1);
    }
    EXPECT_EQ(notices(), 0);
    posts.failing = false;
    waitForNotices(1);
    queue.close();
    worker.join();
}

TEST_F(RowQueueTest, AListThatCouldDoNothingWithItsNoticeGetsAnother)
{
    insert(0);
    EXPECT_EQ(notices(), 1);
    queue.remind();
    insert(1);
    EXPECT_EQ(notices(), 1) << "with the next row";
    queue.remind();
    end();
    waitForNotices(1);
    EXPECT_EQ(notices(), 0);
    queue.remind();
    waitForNotices(1);
    queue.close();
    worker.join();
}

TEST_F(RowQueueTest, AListThatTakesNothingIsNotFlooded)
{
    insertMany(40000);
    while (handedOver < 16384) {
        Sleep(1);
    }
    EXPECT_EQ(queue.take().entries.size(), 16384u);
    queue.close();
    worker.join();
    EXPECT_EQ(handedOver, 40000) << "a closed queue drops what comes and holds nobody up";
    EXPECT_TRUE(queue.take().entries.empty());
}

TEST_F(RowQueueTest, AThreadThatWaitsForRoomNoticesThatTheWindowIsGone)
{
    insertMany(20000);
    while (handedOver < 16384) {
        Sleep(1);
    }
    DestroyWindow(window);
    worker.join();
    EXPECT_FALSE(queue.alive());
}

TEST_F(RowQueueTest, AClosedQueueIsNotAlive)
{
    EXPECT_TRUE(queue.alive());
    insert(0);
    queue.close();
    EXPECT_FALSE(queue.alive());
    queue.end(); // holds nobody up
    EXPECT_EQ(notices(), 1) << "none after the closing";
}
