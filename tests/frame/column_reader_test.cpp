// Reading the rows of a real list view, also of one that keeps to itself what the common one gives.
#include "frame/column_reader.h"

#include "tests/support/list_host.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace {

/// Sees a window's messages before the window does.
class Listener {
public:
    using Answer = std::function<bool(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result)>;

    Listener(HWND window, Answer answer)
        : m_window(window)
        , m_answer(std::move(answer))
    {
        SetWindowSubclass(window, procedure, reinterpret_cast<UINT_PTR>(this),
                          reinterpret_cast<DWORD_PTR>(this));
    }
    ~Listener() { RemoveWindowSubclass(m_window, procedure, reinterpret_cast<UINT_PTR>(this)); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                      DWORD_PTR self)
    {
        LRESULT result = 0;
        if (reinterpret_cast<const Listener*>(self)->m_answer(message, wParam, lParam, result)) {
            return result;
        }
        return DefSubclassProc(window, message, wParam, lParam);
    }

    HWND m_window;
    Answer m_answer;
};

struct ColumnReaderTest : testing::Test {
    ListHost host;
    CListCtrl list{host.list()};

    void SetUp() override
    {
        initializeListCtrl2(host.object(), nullptr);
        host.addRow(0x1000, {L"zero", L"10K", L"", L"7 "});
        host.addRow(0x2000, {L"one", L"20K", L"", L"8 "});
        host.addRow(-1, {L"", L"30K"});
    }

    void expectRow(ColumnReader& reader, int row, LPARAM expectedData, const std::wstring& expectedText)
    {
        LPARAM data = 4711;
        const wchar_t* text = reader.read(row, data);
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(text, expectedText);
        EXPECT_EQ(data, expectedData);
    }

    void expectSecondColumn()
    {
        ColumnReader reader(list, 1);
        expectRow(reader, 0, host.data(0), L"10K");
        expectRow(reader, 1, 0x2000, L"20K");
        expectRow(reader, 2, -1, L"30K");
    }
};

TEST_F(ColumnReaderTest, GivesDataAndText)
{
    expectSecondColumn();
    ColumnReader first(list, 0);
    expectRow(first, 0, 0x1000, L"zero");
    expectRow(first, 2, -1, L"");
    ColumnReader fourth(list, 3);
    expectRow(fourth, 1, 0x2000, L"8 ");
    expectRow(fourth, 2, -1, L""); // a cell that was never written
}

TEST_F(ColumnReaderTest, TextsStayWhileOthersAreRead)
{
    ColumnReader reader(list, 1);
    LPARAM data = 0;
    const wchar_t* first = reader.read(0, data);
    const std::wstring before = first;
    for (int round = 0; round < 30000; ++round) {
        reader.read(1, data);
    }
    EXPECT_EQ(first, before);
}

TEST_F(ColumnReaderTest, LongTextsComeWhole)
{
    for (const std::size_t length : {257u, 258u, 259u, 260u, 261u, 1024u, 5000u}) {
        const std::wstring text = std::wstring(length - 1, L'x') + L'!';
        host.setCell(1, 1, text.c_str());
        ColumnReader reader(list, 1);
        expectRow(reader, 1, 0x2000, text);
        expectRow(reader, 2, -1, L"30K");
    }
}

TEST_F(ColumnReaderTest, FirstRowWithoutData)
{
    list.setData(0, 0);
    expectSecondColumn();
}

TEST_F(ColumnReaderTest, ControlThatGivesDataWithTheFirstColumnOnly)
{
    int kept = 0;
    Listener shy(host.list(), [&](UINT message, WPARAM, LPARAM lParam, LRESULT&) {
        auto* item = reinterpret_cast<LVITEMW*>(lParam);
        if (message == LVM_GETITEMW && item->iSubItem != 0 && (item->mask & LVIF_PARAM) != 0) {
            item->mask &= ~static_cast<UINT>(LVIF_PARAM);
            ++kept;
        }
        return false;
    });
    expectSecondColumn();
    EXPECT_EQ(kept, 1); // tried once, and not for every row
}

TEST_F(ColumnReaderTest, ControlThatPointsToItsOwnText)
{
    static wchar_t own[] = L"20K";
    Listener pointing(host.list(), [&](UINT message, WPARAM, LPARAM lParam, LRESULT& result) {
        auto* item = reinterpret_cast<LVITEMW*>(lParam);
        if (message != LVM_GETITEMW || item->iItem != 1 || (item->mask & LVIF_TEXT) == 0) {
            return false;
        }
        item->pszText = own;
        item->lParam = 0x2000;
        result = TRUE;
        return true;
    });
    expectSecondColumn();
}

TEST_F(ColumnReaderTest, FaultWhileATextIsFetched)
{
    host.setCell(1, 1, LPSTR_TEXTCALLBACKW);
    const Listener parent(host.window(), [](UINT message, WPARAM, LPARAM lParam, LRESULT&) -> bool {
        if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lParam)->code == LVN_GETDISPINFOW) {
            throw 1;
        }
        return false;
    });
    ColumnReader reader(list, 1);
    LPARAM data = 0;
    EXPECT_EQ(reader.read(1, data), nullptr);
    EXPECT_EQ(data, 0x2000);
    expectRow(reader, 2, -1, L"30K");
}

TEST_F(ColumnReaderTest, EmptyList)
{
    list.deleteAllRows();
    ColumnReader reader(list, 1);
}

TEST_F(ColumnReaderTest, SortingWithAndWithoutTheFirstRowsData)
{
    sortListCtrl2(host.object(), 0); // leaves the column behind that other tests may have sorted by
    sortListCtrl2(host.object(), 1);
    EXPECT_EQ(host.column(1), (std::vector<std::string>{"10K", "20K", "30K"}));
    list.setData(0, 0);
    sortListCtrl2(host.object(), 1);
    EXPECT_EQ(host.column(1), (std::vector<std::string>{"30K", "20K", "10K"}));
}

} // namespace
