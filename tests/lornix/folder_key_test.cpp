#include "lornix/text/folder_key.h"
#include "lornix/text/lower_case.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using lornix::folderKey;
using lornix::lowerCase;

TEST(LowerCaseTest, LettersWithAPartner)
{
    EXPECT_EQ(lowerCase(u'A'), u'a');
    EXPECT_EQ(lowerCase(u'Z'), u'z');
    EXPECT_EQ(lowerCase(u'\u00C0'), u'\u00E0');
    EXPECT_EQ(lowerCase(u'\u00DE'), u'\u00FE');
    EXPECT_EQ(lowerCase(u'\u0100'), u'\u0101');
    EXPECT_EQ(lowerCase(u'\u0178'), u'\u00FF');
    EXPECT_EQ(lowerCase(u'\u03A9'), u'\u03C9');
    EXPECT_EQ(lowerCase(u'\u0401'), u'\u0451');
    EXPECT_EQ(lowerCase(u'\u042F'), u'\u044F');
    EXPECT_EQ(lowerCase(u'\uFF21'), u'\uFF41');
}

TEST(LowerCaseTest, EverythingElseStays)
{
    for (const char16_t unit :
         {u'@', u'[', u'a', u'1', u'\u00D7', u'\u00DF', u'\u0101', u'\u0130', u'\u0131', u'\u00B5', u'\u0138',
          u'\u4E2D', static_cast<char16_t>(0xD800), static_cast<char16_t>(0xFFFF)})
    {
        EXPECT_EQ(lowerCase(unit), unit) << static_cast<unsigned>(unit);
    }
}

TEST(LowerCaseTest, OnceIsEnoughAndNoTwoCapitalsShareALetter)
{
    std::array<char16_t, 0x10000> capitalOf{};
    int pairs = 0;
    for (unsigned i = 0; i <= 0xFFFF; ++i) {
        const auto unit = static_cast<char16_t>(i);
        const char16_t lower = lowerCase(unit);
        ASSERT_EQ(lowerCase(lower), lower) << i;
        if (lower != unit) {
            ASSERT_EQ(capitalOf[lower], 0) << i;
            capitalOf[lower] = unit;
            ++pairs;
        }
    }
    EXPECT_EQ(pairs, 26 + 649); // stored files are found by it: it must never change
}

TEST(FolderKeyTest, CaseSlashesAndSlashesAtTheEndDoNotCount)
{
    EXPECT_EQ(folderKey(u"D:/Projects\\ALPHA/"), u"d:\\projects\\alpha");
    EXPECT_EQ(folderKey(u"\\\\Server\\Share\\\\"), u"\\\\server\\share");
    EXPECT_EQ(folderKey(u"C:\\"), u"c:");
    EXPECT_EQ(folderKey(u"/"), u"\\");
    EXPECT_EQ(folderKey(u"//"), u"\\");
    EXPECT_EQ(folderKey(u""), u"");
    EXPECT_NE(folderKey(u"D:\\A B"), folderKey(u"D:\\A  B"));
}

TEST(FolderKeyTest, PlainSpellingsAreComparedWithoutMakingTheirKeys)
{
    for (const std::string spelling : {"D:\\A", "d:/a/", "D:\\A\\\\", "/", "\\", "//", "a", "A b/C", "[z]"}) {
        const std::u16string key = folderKey(std::u16string(spelling.begin(), spelling.end()));
        EXPECT_TRUE(lornix::hasFolderKey(spelling, key)) << spelling;
        EXPECT_FALSE(lornix::hasFolderKey(spelling + "x", key)) << spelling;
        EXPECT_FALSE(lornix::hasFolderKey(spelling, key + u"x")) << spelling;
    }
}

} // namespace
