// One answer to many notifications.
#include "host/window/one_answer.h"

#include <gtest/gtest.h>

using host::OneAnswer;

namespace {

constexpr UINT kMessage = WM_APP + 7;

class OneAnswerTest : public testing::Test {
protected:
    ~OneAnswerTest() override { DestroyWindow(m_window); }

    void change(UINT from, UINT to, UINT what = LVIF_STATE)
    {
        NMLISTVIEW notification{};
        notification.uChanged = what;
        notification.uOldState = from;
        notification.uNewState = to;
        m_answer.heard(notification);
    }

    /// Messages that have been posted; they are taken away.
    int posted() const
    {
        int count = 0;
        for (MSG message{}; PeekMessageW(&message, m_window, kMessage, kMessage, PM_REMOVE) != FALSE;) {
            ++count;
        }
        return count;
    }

    HWND m_window =
        CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    OneAnswer m_answer{m_window, kMessage};
};

} // namespace

TEST_F(OneAnswerTest, ManyRowsHaveOne)
{
    for (int i = 0; i < 1000; ++i) {
        change(0, LVIS_SELECTED);
        change(LVIS_SELECTED, 0);
    }
    EXPECT_EQ(posted(), 1);
}

TEST_F(OneAnswerTest, TheNextHasItsOwn)
{
    change(0, LVIS_SELECTED | LVIS_FOCUSED);
    EXPECT_EQ(posted(), 1);
    m_answer.arrived();
    change(LVIS_SELECTED, 0);
    EXPECT_EQ(posted(), 1);
}

TEST_F(OneAnswerTest, WhatLeavesTheSelectionAsItIsHasNone)
{
    change(0, LVIS_FOCUSED);
    change(LVIS_SELECTED, LVIS_SELECTED | LVIS_FOCUSED);
    change(0, 0, LVIF_TEXT);
    change(0, LVIS_SELECTED, LVIF_TEXT);
    EXPECT_EQ(posted(), 0);
}
