#include "lornix/debug/wide_format.h"

#include <gtest/gtest.h>

namespace {

using lornix::wideFormat;

TEST(WideFormatTest, TextConversionsSayTheirSize)
{
    EXPECT_EQ(wideFormat("a %s b %S c %c d %C\n"), "a %hs b %ls c %hc d %lc\n");
    for (const char* format : {"%ls", "%S", "%ws", "%lS", "%lls", "%Ls"}) {
        EXPECT_EQ(wideFormat(format), "%ls") << format;
    }
    for (const char* format : {"%s", "%hs", "%hS", "%hhs"}) {
        EXPECT_EQ(wideFormat(format), "%hs") << format;
    }
    EXPECT_EQ(wideFormat("%-10.3ls|%*.*S|%-*s|%.5s"), "%-10.3ls|%*.*ls|%-*hs|%.5hs");
}

TEST(WideFormatTest, EverythingElseStaysAsItIs)
{
    for (const char* format : {"", "plain text\n", "%d", "%lu", "%I64d", "%I32x", "%Iu", "%p", "%08X", "%.2f",
                               "%llu", "%+d", "%#x", "% d", "%e", "%%", "100%%|%5d%%", "caf\xE9 %d"})
    {
        EXPECT_EQ(wideFormat(format), format);
    }
    EXPECT_EQ(wideFormat("%-5%|"), "%%|");
}

TEST(WideFormatTest, UnfinishedConversionsAreText)
{
    EXPECT_EQ(wideFormat("%"), "%%");
    for (const char* rest : {"-", "5", ".", "l", "I64", "*", "-*.*ll"}) {
        EXPECT_EQ(wideFormat(std::string("%d %") + rest), std::string("%d %%") + rest);
    }
}

TEST(WideFormatTest, AWidthHasAnEnd)
{
    EXPECT_EQ(wideFormat("%99999999999ls %.123456789d"), "%99999ls %.12345d");
}

} // namespace
