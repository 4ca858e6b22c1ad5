#include "lornix/rules/rule_file.h"

#include <gtest/gtest.h>

namespace {

using namespace lornix;

const std::string kHead = "lornix rules 1\r\nfolder\tD:\\A\r\n";

std::vector<std::size_t> linesOf(const std::vector<Flaw>& flaws)
{
    std::vector<std::size_t> lines;
    for (const Flaw& flaw : flaws) {
        lines.push_back(flaw.line);
    }
    return lines;
}

void expectRule(const StoredRule& rule, std::int64_t hard, std::int64_t soft, std::int64_t inUse,
                std::u16string_view folder, bool hasAccount = false)
{
    EXPECT_EQ(rule.hardLimit, hard);
    EXPECT_EQ(rule.softLimit, soft);
    EXPECT_EQ(rule.inUse, inUse);
    EXPECT_EQ(rule.folder, folder);
    EXPECT_EQ(!rule.sid.isEmpty(), hasAccount);
}

TEST(RuleFileTest, WhatIsWrittenReadsBack)
{
    StoredRule first{5, 4, 3, *parseSid("S-1-5-32-544"), u"D:\\A"};
    StoredRule second{INT64_MAX, INT64_MIN, -1, {}, u"d:/a/"};
    const std::string text = writeFolderRules(u"D:\\A", {first, second});
    const FolderRules rules = readFolderRules(text);
    EXPECT_EQ(rules.condition, Condition::kGood);
    EXPECT_EQ(rules.folder, u"D:\\A");
    ASSERT_EQ(rules.rules.size(), 2u);
    expectRule(rules.rules[0], 5, 4, 3, u"D:\\A", true);
    expectRule(rules.rules[1], INT64_MAX, INT64_MIN, -1, u"d:/a/");
    EXPECT_EQ(writeFolderRules(rules.folder, rules.rules), text);
}

TEST(RuleFileTest, WhatAnEditorDoesToItIsTaken)
{
    const FolderRules rules =
        readFolderRules("\xEF\xBB\xBFlornix rules 1\n\n   folder   D:\\A B  \n# a remark\n"
                        " 5  4\t\t3  anyone \n6 5 4 anyone d:/a b\n  end  \n\n\n");
    EXPECT_EQ(rules.condition, Condition::kGood);
    EXPECT_EQ(rules.folder, u"D:\\A B");
    ASSERT_EQ(rules.rules.size(), 2u);
    expectRule(rules.rules[0], 5, 4, 3, u"D:\\A B");
    expectRule(rules.rules[1], 6, 5, 4, u"d:/a b");
}

TEST(RuleFileTest, ForeignFiles)
{
    for (const std::string text :
         {"", "\n", "lornix", "lornix rules 2\nfolder D:\\A\nend\n", "lornix rules 1",
          "lornix rules 1\nend\n", "lornix rules 1\n5 4 3 anyone\nend\n", "lornix rules 1\nfolder\nend\n",
          "lornix rules 1\nfolder D:\\%zz\nend\n", "lornix rules 1\nfolder D:\\%u0000\nend\n",
          "lornix rules 1\nfolder D:\\\xFF\nend\n", "lornix known-folders 1\nfolder D:\\A\nend\n",
          "PK\x03\x04", "Lornix rules 1\nfolder D:\\A\nend\n"})
    {
        const FolderRules rules = readFolderRules(text);
        EXPECT_EQ(rules.condition, Condition::kForeign) << text;
        EXPECT_TRUE(rules.rules.empty());
    }
}

TEST(RuleFileTest, DamagedLinesAreLeftOutAndNamed)
{
    const FolderRules rules = readFolderRules(kHead + "5 4 3 anyone\n" // line 3
                                                      "nonsense\n"
                                                      "5 4 anyone\n"
                                                      "5 4 3 S-1-x\n"
                                                      "0 4 3 anyone\n"
                                                      "-1 4 3 anyone\n"
                                                      "5 4 3 anyone D:\\Other\n" // line 9
                                                      "5 4 3 anyone D:\\%\n"
                                                      "9223372036854775808 4 3 anyone\n"
                                                      "5.0 4 3 anyone\n"
                                                      "5 4 3 anyone \xC3\n" // line 13
                                                      "5 4 3\n"
                                                      "6 5 4 anyone\n"
                                                      "end\n");
    EXPECT_EQ(rules.condition, Condition::kDamaged);
    ASSERT_EQ(rules.rules.size(), 2u);
    expectRule(rules.rules[0], 5, 4, 3, u"D:\\A");
    expectRule(rules.rules[1], 6, 5, 4, u"D:\\A");
    EXPECT_EQ(linesOf(rules.flaws), (std::vector<std::size_t>{4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}));
    EXPECT_STREQ(rules.flaws[3].reason, "its hard limit is 0 or less");
}

TEST(RuleFileTest, FileWithoutItsEndIsDamagedAtEveryLength)
{
    const std::string whole = writeFolderRules(u"D:\\A", std::vector<StoredRule>(3, {5, 4, 3, {}, u"D:\\A"}));
    const std::size_t head = whole.find("D:\\A") + 4; // up to there nobody can tell whose rules they are
    const std::size_t body = whole.rfind("end") + 3;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const FolderRules rules = readFolderRules(whole.substr(0, length));
        if (length < head) {
            EXPECT_NE(rules.condition, Condition::kGood) << length;
        } else {
            EXPECT_EQ(rules.condition, length < body ? Condition::kDamaged : Condition::kGood) << length;
        }
    }
}

TEST(RuleFileTest, LinesBehindTheEndAreDamage)
{
    const FolderRules rules = readFolderRules(kHead + "end\n5 4 3 anyone\nend\n");
    EXPECT_EQ(rules.condition, Condition::kDamaged);
    EXPECT_TRUE(rules.rules.empty());
    EXPECT_EQ(linesOf(rules.flaws), (std::vector<std::size_t>{4, 5}));
}

TEST(RuleFileTest, ZeroBytesAreDamageAndNotTheEnd)
{
    const FolderRules rules = readFolderRules(kHead + "5 4 3 anyone\n" + std::string(4096, '\0'));
    EXPECT_EQ(rules.condition, Condition::kDamaged);
    EXPECT_EQ(rules.rules.size(), 1u);
}

TEST(RuleFileTest, KnownFolders)
{
    const std::vector<std::u16string> folders{u"D:\\A", u" end ", u"end", u"# D:\\B", u"\t"};
    const std::string text = writeKnownFolders(folders);
    EXPECT_EQ(text, "lornix known-folders 1\r\nfolder\tD:\\A\r\nfolder\t%u0020end%u0020\r\nfolder\tend\r\n"
                    "folder\t# D:\\B\r\nfolder\t%u0009\r\nend\r\n");
    const KnownFolders known = readKnownFolders(text);
    EXPECT_EQ(known.condition, Condition::kGood);
    EXPECT_EQ(known.folders, folders);

    const KnownFolders damaged =
        readKnownFolders("lornix known-folders 1\nfolder D:\\A\nD:\\B\nfolder %\nfolder\n");
    EXPECT_EQ(damaged.condition, Condition::kDamaged);
    EXPECT_EQ(damaged.folders, std::vector<std::u16string>{u"D:\\A"});
    EXPECT_EQ(linesOf(damaged.flaws), (std::vector<std::size_t>{3, 4, 5, 6}));
    EXPECT_EQ(readKnownFolders("lornix rules 1\nend\n").condition, Condition::kForeign);
}

TEST(RuleFileTest, TrackedRules)
{
    const StoredRule rule{5, 4, 3, *parseSid("S-1-5-32-545"), u"D:\\A"};
    const std::string text = writeTrackedRules({rule});
    EXPECT_EQ(
        text,
        "lornix tracked-rules 1\r\n# hard limit, soft limit, in use (bytes); account of the group; folder\r\n"
        "5\t4\t3\tS-1-5-32-545\tD:\\A\r\nend\r\n");
    const TrackedRules tracked = readTrackedRules(text);
    EXPECT_EQ(tracked.condition, Condition::kGood);
    ASSERT_EQ(tracked.rules.size(), 1u);
    expectRule(tracked.rules[0], 5, 4, 3, u"D:\\A", true);

    const TrackedRules damaged = readTrackedRules("lornix tracked-rules 1\n5 4 3 S-1-5-32-545\nend\n");
    EXPECT_EQ(damaged.condition, Condition::kDamaged);
    EXPECT_TRUE(damaged.rules.empty());
    EXPECT_EQ(readTrackedRules("").condition, Condition::kForeign);
}

} // namespace
