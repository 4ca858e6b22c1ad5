#include "host/window/first_lines.h"

#include <gtest/gtest.h>

using host::firstLines;

TEST(FirstLines, OfAShortTextAreAll)
{
    EXPECT_EQ(firstLines(L"", 2), L"");
    EXPECT_EQ(firstLines(L"one", 2), L"one");
    EXPECT_EQ(firstLines(L"one\ntwo", 2), L"one\ntwo");
}

TEST(FirstLines, TellHowManyAreLeftOut)
{
    EXPECT_EQ(firstLines(L"one\ntwo\nthree", 2), L"one\ntwo\n(and 1 more line)");
    EXPECT_EQ(firstLines(L"one\ntwo\nthree\nfour", 1), L"one\n(and 3 more lines)");
}
