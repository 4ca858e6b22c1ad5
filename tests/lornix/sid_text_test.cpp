#include "lornix/text/sid_text.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using lornix::parseSid;
using lornix::Sid;

std::string textOf(const Sid& sid)
{
    std::string text;
    lornix::appendSidText(text, sid.bytes());
    return text;
}

TEST(SidTextTest, ReadsAndWritesIdentifiers)
{
    for (const char* text : {"S-1-1-0", "S-1-5", "S-1-5-18", "S-1-5-32-544", "S-1-16-12288",
                             "S-1-5-21-1004336348-1177238915-682003330-1105", "S-1-4294967295-4294967295",
                             "S-1-0x123456789abc-7", "S-1-5-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15"})
    {
        const auto sid = parseSid(text);
        ASSERT_TRUE(sid) << text;
        EXPECT_EQ(textOf(*sid), text);
    }
}

TEST(SidTextTest, BytesAreThoseOfThePlatform)
{
    const auto sid = parseSid("S-1-5-32-544");
    ASSERT_TRUE(sid);
    const std::vector<std::uint8_t> expected{1, 2, 0, 0, 0, 0, 0, 5, 32, 0, 0, 0, 0x20, 2, 0, 0};
    EXPECT_EQ(std::vector<std::uint8_t>(sid->bytes().begin(), sid->bytes().end()), expected);
}

TEST(SidTextTest, AnythingElseIsRefused)
{
    for (const char* text : {"",
                             "S",
                             "S-",
                             "S-1",
                             "S-1-",
                             "S-2-5-18",
                             "s-1-5-18",
                             "S-1-5-",
                             "S-1-5--18",
                             "S-1-5-18-",
                             "S-1-5-+18",
                             "S-1-5- 18",
                             "S-1-5-4294967296",
                             "S-1-0x1000000000000-1",
                             "S-1-281474976710656",
                             "S-1-5-1x",
                             "BA",
                             "Anyone",
                             "S-1-0x-1",
                             "S-1-5-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15-16",
                             "S-1-99999999999999999999-1"})
    {
        EXPECT_FALSE(parseSid(text)) << text;
    }
}

TEST(SidTextTest, RandomIdentifiersMakeTheRoundTrip)
{
    std::mt19937 random(7);
    for (int run = 0; run < 20000; ++run) {
        std::vector<std::uint8_t> bytes{1, static_cast<std::uint8_t>(random() % 16)};
        while (bytes.size() < 8u + 4u * bytes[1]) {
            bytes.push_back(static_cast<std::uint8_t>(random() % 3 == 0 ? random() : 0));
        }
        const Sid sid(bytes);
        const auto again = parseSid(textOf(sid));
        ASSERT_TRUE(again) << textOf(sid);
        ASSERT_TRUE(std::ranges::equal(again->bytes(), bytes)) << textOf(sid);
    }
}

TEST(SidTextTest, ManyInARowAreWrittenAsEachByItself)
{
    lornix::SidSpeller speller;
    for (const char* text : {"S-1-5-21-1-2-3-1001", "S-1-5-21-1-2-3-1002", "S-1-5-21-1-2-4-1002",
                             "S-1-5-21-1-2-3", "S-1-5-21-1-2-3-1002", "S-1-5", "S-1-1", "S-1-1-0", "S-1-5-18",
                             "S-1-5-19", "S-1-0x123456789abc-19", "S-1-5-19"})
    {
        char line[lornix::kMaxSidText];
        const char* end = speller.put(line, parseSid(text)->bytes());
        EXPECT_EQ(std::string_view(line, static_cast<std::size_t>(end - line)), text);
    }
}

} // namespace
