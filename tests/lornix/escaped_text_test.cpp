#include "lornix/text/escaped_text.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using lornix::unescape;

std::string escaped(std::u16string_view text)
{
    std::string line;
    lornix::appendEscaped(line, text);
    return line;
}

TEST(EscapedTextTest, PlainTextStaysAsItIs)
{
    EXPECT_EQ(escaped(u"D:\\Projects/Alpha (1) #2"), "D:\\Projects/Alpha (1) #2");
    EXPECT_EQ(escaped(u"B\u00FCro \u0416 \u20AC \U0001F4BE"),
              "B\xC3\xBCro \xD0\x96 \xE2\x82\xAC \xF0\x9F\x92\xBE");
    EXPECT_EQ(escaped(u""), "");
}

TEST(EscapedTextTest, WhatCannotStandInALineIsEscaped)
{
    EXPECT_EQ(escaped(u"a\tb\nc\r"), "a%u0009b%u000Ac%u000D");
    EXPECT_EQ(escaped(u"100%"), "100%u0025");
    EXPECT_EQ(escaped(u" a b "), "%u0020a b%u0020");
    EXPECT_EQ(escaped(u" "), "%u0020");
    EXPECT_EQ(escaped(u"\u2028\uFEFF\u007F\u0085"), "%u2028%uFEFF%u007F%u0085");
    EXPECT_EQ(escaped(std::u16string{0xD83D}), "%uD83D");
    EXPECT_EQ(escaped(std::u16string{0xDCBE, 0xD83D}), "%uDCBE%uD83D");
    EXPECT_EQ(escaped(std::u16string{0xD83D, 0xD83D, 0xDCBE}), "%uD83D\xF0\x9F\x92\xBE");
}

TEST(EscapedTextTest, EscapesAreReadInEitherCase)
{
    EXPECT_EQ(unescape("%u00fc%u00FC"), u"\u00FC\u00FC");
    EXPECT_EQ(unescape("%u0000"), std::u16string(1, u'\0'));
}

TEST(EscapedTextTest, HalvesWrittenOneByOneMakeAPair)
{
    EXPECT_EQ(unescape("%uD83D%uDCBE"), u"\U0001F4BE");
}

TEST(EscapedTextTest, WhatIsNoEscapeIsRefused)
{
    for (const char* text :
         {"%", "100%", "%u", "%u123", "%u12G4", "%U1234", "%x1234", "%%", "%u 123", "%u-123"})
    {
        EXPECT_EQ(unescape(text), std::nullopt) << text;
    }
}

TEST(EscapedTextTest, WhatIsNoUtf8IsRefused)
{
    for (const char* text : {"\x80", "\xC3", "\xC3(", "\xC0\xAF", "\xC1\xBF", "\xE0\x80\xAF", "\xE2\x82",
                             "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x80\x80\xAF", "\xF0\x9F\x92",
                             "\xF4\x90\x80\x80", "\xF8\x88\x80\x80", "\xFF", "\xFE"})
    {
        EXPECT_EQ(unescape(text), std::nullopt) << testing::PrintToString(std::string(text));
    }
}

TEST(EscapedTextTest, EveryUnitAloneMakesTheRoundTrip)
{
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const std::u16string text(1, static_cast<char16_t>(unit));
        ASSERT_EQ(unescape(escaped(text)), text) << unit;
    }
}

TEST(EscapedTextTest, RandomTextMakesTheRoundTrip)
{
    std::mt19937 random(20);
    constexpr char16_t kUnits[] = {u' ',   u'\t',  u'%',   u'u',  u'0',   0xD800,
                                   0xDBFF, 0xDC00, 0xDFFF, u'\n', 0xFEFF, 0xE000};
    for (int run = 0; run < 20000; ++run) {
        std::u16string text;
        for (unsigned length = random() % 12; text.size() < length;) {
            text += kUnits[random() % std::size(kUnits)];
        }
        const std::string line = escaped(text);
        ASSERT_EQ(unescape(line), text);
        ASSERT_EQ(line.find_first_of("\t\r\n"), std::string::npos);
        ASSERT_FALSE(line.starts_with(' ') || line.ends_with(' '));
    }
}

TEST(EscapedTextTest, PlainUtf8ReplacesHalves)
{
    std::string bytes = "a";
    lornix::appendUtf8(bytes, std::u16string{u'\t', u'%', 0xD83D, 0xDCBE, 0xDC00});
    EXPECT_EQ(bytes, "a\t%\xF0\x9F\x92\xBE\xEF\xBF\xBD");
}

} // namespace
