#include "lornix/debug/format_spec.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using lornix::FormatSpec;
using Kind = FormatSpec::Kind;

std::vector<FormatSpec> specsOf(std::string_view format)
{
    std::vector<FormatSpec> specs;
    while (!format.empty()) {
        specs.push_back(lornix::takeSpec(format));
    }
    return specs;
}

FormatSpec only(std::string_view format)
{
    const auto specs = specsOf(format);
    EXPECT_EQ(specs.size(), 1u) << format;
    EXPECT_EQ(specs.front().text, format);
    return specs.front();
}

TEST(FormatSpecTest, TextAndConversionsTakeTurns)
{
    const auto specs = specsOf("a %ls=%5d%% b\n");
    ASSERT_EQ(specs.size(), 6u);
    EXPECT_EQ(specs[0].text, "a ");
    EXPECT_EQ(specs[1].text, "%ls");
    EXPECT_EQ(specs[2].text, "=");
    EXPECT_EQ(specs[3].text, "%5d");
    EXPECT_EQ(specs[4].kind, Kind::kPercent);
    EXPECT_EQ(specs[5].text, " b\n");
}

TEST(FormatSpecTest, WhichOnesAreWide)
{
    for (const char* format : {"%ls", "%S", "%ws", "%lS", "%-10ls", "%.3ls", "%*.*S"}) {
        EXPECT_EQ(only(format).kind, Kind::kWideText) << format;
    }
    for (const char* format : {"%lc", "%C", "%wc"}) {
        EXPECT_EQ(only(format).kind, Kind::kWideUnit) << format;
    }
    for (const char* format : {"%s", "%hs", "%hS", "%c", "%hc", "%d", "%lu", "%I64d", "%I32x", "%Iu", "%p",
                               "%08X", "%.2f", "%llu", "%+d", "%#x", "% d", "%e"})
    {
        EXPECT_EQ(only(format).kind, Kind::kOther) << format;
    }
}

TEST(FormatSpecTest, WidthAndLimit)
{
    const FormatSpec fixed = only("%-12.5ls");
    EXPECT_TRUE(fixed.leftAligned);
    EXPECT_EQ(fixed.width, 12);
    EXPECT_EQ(fixed.limit, 5);
    EXPECT_EQ(fixed.stars, 0);

    const FormatSpec given = only("%*.*ls");
    EXPECT_TRUE(given.widthGiven);
    EXPECT_TRUE(given.limitGiven);
    EXPECT_EQ(given.stars, 2);

    EXPECT_EQ(only("%ls").limit, -1);
    EXPECT_EQ(only("%.ls").limit, 0);
    EXPECT_EQ(only("%99999999999ls").width, 100000);
}

TEST(FormatSpecTest, UnfinishedConversionsAreText)
{
    for (const char* format : {"%", "%-", "%5", "%.", "%l", "%I64", "%*"}) {
        EXPECT_EQ(only(format).kind, Kind::kText) << format;
    }
}

} // namespace
