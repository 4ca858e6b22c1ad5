#include "lornix/rules/rule_book.h"
#include "lornix/rules/rule_lines.h"
#include "lornix/text/folder_key.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <utility>

namespace {

using namespace lornix;

const std::string kFirstLine = "lornix rules 1\r\n";
const std::string kComment = "# hard limit, soft limit, in use (bytes); account; folder\r\n";

std::string checked(const std::string& lines)
{
    std::string text = lines + "checksum\t";
    appendHex(text, checksumOf(lines));
    return text + "\r\nend\r\n";
}

RuleBook read(std::string_view text)
{
    return RuleBook(kRules, text);
}

/// What somebody wrote by hand.
RuleBook readLines(const std::string& lines)
{
    return read(kFirstLine + lines + "checksum -\nend\n");
}

std::vector<StoredRule> rulesOf(const RuleBook& book, std::u16string_view folder)
{
    return book.rulesOf(folderKey(folder));
}

/// A change of a folder's rules.
RuleBook::Change changeOf(const RuleBook& book, std::u16string_view folder, bool isKnown,
                          std::string_view rules)
{
    return {book.entryOf(folderKey(folder)), folder, isKnown, rules};
}

/// A book with the rules of one folder.
RuleBook bookOf(std::u16string_view folder, const std::function<void(RuleLines&)>& write)
{
    RuleLines lines;
    lines.startFolder(folder);
    write(lines);
    RuleBook book;
    const RuleBook::Change change = changeOf(book, folder, true, lines.text());
    book.change({&change, 1});
    return book;
}

std::vector<std::size_t> linesOf(const RuleBook& book)
{
    std::vector<std::size_t> lines;
    for (const Flaw& flaw : book.flaws.first) {
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

TEST(RuleBookTest, AnEmptyOneIsAFileToo)
{
    const std::string text = RuleBook().text();
    EXPECT_EQ(text, checked(kFirstLine + kComment));
    EXPECT_EQ(read(text).condition, Condition::kGood);
    EXPECT_TRUE(rulesOf(read(text), u"D:\\A").empty());
}

TEST(RuleBookTest, WhatIsWrittenReadsBack)
{
    const RuleBook written = bookOf(u"D:\\A", [](RuleLines& lines) {
        lines.append(5, 4, 3, parseSid("S-1-5-32-544")->bytes());
        lines.startFolder(u"d:/a/");
        lines.append(INT64_MAX, INT64_MIN, -1, {});
    });
    const std::string& text = written.text();
    EXPECT_EQ(text, checked(kFirstLine + kComment +
                            "folder\tD:\\A\r\n5\t4\t3\tS-1-5-32-544\tD:\\A\r\n"
                            "9223372036854775807\t-9223372036854775808\t-1\tanyone\td:/a/\r\n"));
    const RuleBook book = read(text);
    EXPECT_EQ(book.condition, Condition::kGood);
    EXPECT_EQ(book.knownFolders(), std::vector<std::u16string>{u"D:\\A"});
    const auto rules = rulesOf(book, u"D:/a");
    ASSERT_EQ(rules.size(), 2u);
    expectRule(rules[0], 5, 4, 3, u"D:\\A", true);
    expectRule(rules[1], INT64_MAX, INT64_MIN, -1, u"d:/a/");
    EXPECT_EQ(book.text(), text);
}

TEST(RuleBookTest, WhatAnEditorDoesToItIsTaken)
{
    const RuleBook book =
        read("\xEF\xBB\xBFlornix rules 1\n\n 5  4\t\t3  anyone D:\\A B  \n   folder   D:\\A B  \n# a remark\n"
             "7 6 5 anyone D:\\C\n 6 5 4 S-1-5-32-544 d:/a b\nfolder d:/a b\n  checksum  - \n  end  \n\n\n");
    EXPECT_EQ(book.condition, Condition::kGood);
    EXPECT_EQ(book.knownFolders(), std::vector<std::u16string>{u"D:\\A B"});
    const auto rules = rulesOf(book, u"d:\\A b");
    ASSERT_EQ(rules.size(), 2u);
    expectRule(rules[0], 5, 4, 3, u"D:\\A B");
    expectRule(rules[1], 6, 5, 4, u"d:/a b", true);
    EXPECT_EQ(rulesOf(book, u"D:\\C").size(), 1u);
    const RuleBook again = read(book.text());
    EXPECT_EQ(again.condition, Condition::kGood);
    EXPECT_EQ(again.text(), book.text());
}

TEST(RuleBookTest, ForeignFiles)
{
    for (const std::string text :
         {"", "\n", "lornix", "PK\x03\x04", "Lornix rules 1\nchecksum -\nend\n", "lornix rules",
          "lornix rules x", "lornix rules 0\nend\n", "lornix rules 1 \x01\n"})
    {
        EXPECT_EQ(read(text).condition, Condition::kForeign) << text;
    }
    for (const std::string text : {"lornix rules 2\nend\n", "lornix known-folders 1\nfolder D:\\A\nend\n",
                                   "lornix rules 12", "lornix tracked-rules 1"})
    {
        EXPECT_EQ(read(text).condition, Condition::kOther) << text;
        EXPECT_TRUE(read(text).knownFolders().empty());
    }
}

TEST(RuleBookTest, DamagedLinesAreLeftOutAndNamed)
{
    const RuleBook book = readLines("folder D:\\A\n"       // line 2
                                    "5 4 3 anyone D:\\A\n" // line 3
                                    "nonsense\n"
                                    "5 4 anyone D:\\A\n"
                                    "5 4 3 S-1-x D:\\A\n"
                                    "0 -4 3 anyone D:\\A\n"
                                    "-1 -4 3 anyone D:\\A\n" // line 8
                                    "5 6 3 anyone D:\\A\n"
                                    "5 4 3 anyone D:\\%\n"
                                    "9223372036854775808 4 3 anyone D:\\A\n"
                                    "5.0 4 3 anyone D:\\A\n"
                                    "5 4 3 anyone \xC3\n" // line 13
                                    "5 4 3\n"
                                    "5 4 3 anyone\n"
                                    "folder\n"
                                    "folder D:\\%u0000\n" // line 17
                                    "6 5 4 S-1-5-32-544 D:\\A\n");
    EXPECT_EQ(book.condition, Condition::kDamaged);
    const auto rules = rulesOf(book, u"D:\\A");
    ASSERT_EQ(rules.size(), 2u);
    expectRule(rules[0], 5, 4, 3, u"D:\\A");
    expectRule(rules[1], 6, 5, 4, u"D:\\A", true);
    EXPECT_EQ(linesOf(book), (std::vector<std::size_t>{4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17}));
    EXPECT_STREQ(book.flaws.first[3].reason, "its hard limit is 0 or less");
    EXPECT_STREQ(book.flaws.first[5].reason, "its soft limit is above the hard one");
}

TEST(RuleBookTest, ManyFlawsAreCountedAndNotKept)
{
    std::string lines;
    for (int i = 0; i < 100000; ++i) {
        lines += "?\n";
    }
    const RuleBook book = readLines(lines);
    EXPECT_EQ(book.flaws.count, 100000u);
    EXPECT_EQ(book.flaws.first.size(), Flaws::kMost);
}

TEST(RuleBookTest, FileWithoutItsEndIsDamagedAtEveryLength)
{
    const RuleBook written = bookOf(u"D:\\A\\B", [](RuleLines& lines) {
        for (int i = 0; i < 3; ++i) {
            lines.append(5, 4, 3, {});
        }
    });
    const std::string& whole = written.text();
    const std::size_t body = whole.rfind("end") + 3;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const RuleBook book = read(std::string_view(whole).substr(0, length));
        EXPECT_EQ(book.condition == Condition::kGood, length >= body) << length;
        EXPECT_TRUE(rulesOf(book, u"D:\\A").empty()) << "half a folder is another one";
        EXPECT_LE(rulesOf(book, u"D:\\A\\B").size(), 3u);
    }
}

TEST(RuleBookTest, AnyChangeOfOneByteIsNoticed)
{
    const RuleBook written = bookOf(u"D:\\A", [](RuleLines& lines) { lines.append(500, 400, 300, {}); });
    const std::string& whole = written.text();
    for (std::size_t i = 0; i < whole.rfind("end"); ++i) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string changed = whole;
            changed[i] = static_cast<char>(changed[i] ^ 1 << bit);
            const bool isBlank = whole[i] == '\r' || whole[i] == '\t'; // of the last two lines
            EXPECT_TRUE(read(changed).condition != Condition::kGood ||
                        (i > whole.find("checksum") && isBlank))
                << i << ' ' << bit;
        }
    }
}

TEST(RuleBookTest, NeitherBytesThatTradePlacesNorLengthsKeepTheChecksum)
{
    std::string text;
    for (int i = 0; i < 200; ++i) {
        EXPECT_NE(checksumOf(text), checksumOf(text + '\0')) << i;
        text += static_cast<char>(i);
    }
    for (std::size_t distance : {1u, 7u, 8u, 16u, 24u, 32u, 64u}) {
        std::string changed = text;
        std::swap(changed[40], changed[40 + distance]);
        EXPECT_NE(checksumOf(changed), checksumOf(text)) << distance;
    }
}

TEST(RuleBookTest, LinesBehindTheEndAreDamage)
{
    const RuleBook book = read(kFirstLine + "checksum -\n5 4 3 anyone D:\\A\nend\n5 4 3 anyone D:\\A\nend\n");
    EXPECT_EQ(book.condition, Condition::kDamaged);
    EXPECT_TRUE(rulesOf(book, u"D:\\A").empty());
    EXPECT_EQ(linesOf(book), (std::vector<std::size_t>{3, 5, 6}));
}

TEST(RuleBookTest, ZeroBytesAreDamageAndNotTheEnd)
{
    const RuleBook book = read(kFirstLine + "5 4 3 anyone D:\\A\n" + std::string(4096, '\0'));
    EXPECT_EQ(book.condition, Condition::kDamaged);
    EXPECT_EQ(rulesOf(book, u"D:\\A").size(), 1u);
}

TEST(RuleBookTest, OneFolderIsReplacedAndTheOthersStayAsTheyStand)
{
    RuleBook book = readLines("folder D:\\B\nfolder D:\\A\n5  4 3 anyone D:\\A\n7 6 5 anyone D:\\B\n");
    const RuleBook::Change changes[] = {changeOf(book, u"d:/b", true, "8\t8\t8\tanyone\td:/b\r\n"),
                                        changeOf(book, u"D:\\C", true, "9\t8\t7\tanyone\tD:\\C\r\n")};
    book.change(changes);
    EXPECT_EQ(book.text(), checked(kFirstLine + kComment +
                                   "folder D:\\B\n8\t8\t8\tanyone\td:/b\r\n"
                                   "folder D:\\A\n5  4 3 anyone D:\\A\n"
                                   "folder\tD:\\C\r\n9\t8\t7\tanyone\tD:\\C\r\n"));
    const RuleBook::Change none = changeOf(book, u"D:\\A", false, {});
    book.change({&none, 1});
    EXPECT_EQ(book.knownFolders(), (std::vector<std::u16string>{u"D:\\B", u"D:\\C"}));
    EXPECT_TRUE(rulesOf(book, u"D:\\A").empty());
    EXPECT_EQ(rulesOf(book, u"D:\\C").size(), 1u);
}

/// The book stands in one text, in which everything is moved when something gets longer or shorter.
TEST(RuleBookTest, FoldersGrowAndShrinkWithoutTouchingTheOthers)
{
    std::mt19937 random(1);
    std::vector<std::string> expected(40); // the rules of each folder
    RuleBook book;
    for (int round = 0; round < 500; ++round) {
        std::vector<std::size_t> chosen;
        std::vector<std::u16string> names;
        for (std::size_t folder = 0; folder < expected.size(); ++folder) {
            if (random() % 4 == 0) {
                const std::string name = std::to_string(folder);
                chosen.push_back(folder);
                names.emplace_back(name.begin(), name.end());
                expected[folder].clear();
                for (std::size_t rules = random() % 5; rules != 0; --rules) {
                    const std::string limit = std::to_string(random() >> random() % 32);
                    expected[folder] += limit + "1\t0\t0\tanyone\t" + name + "\r\n";
                }
            }
        }
        std::vector<RuleBook::Change> changes;
        for (std::size_t i = 0; i < chosen.size(); ++i) {
            const std::string& rules = expected[chosen[i]];
            changes.push_back(changeOf(book, names[i], !rules.empty() && random() % 2 == 0, rules));
        }
        book.change(changes);
        for (std::size_t folder = 0; folder < expected.size(); ++folder) {
            const std::string name = std::to_string(folder);
            ASSERT_EQ(book.entryOf(std::u16string(name.begin(), name.end())).lines, expected[folder])
                << round;
        }
        ASSERT_EQ(read(book.text()).text(), book.text()) << round;
    }
}

TEST(RuleBookTest, KnownFolders)
{
    const std::vector<std::u16string> folders{u"D:\\A", u" end ", u"end", u"# D:\\B", u"\t"};
    RuleBook book = readLines("5 4 3 anyone D:\\C\n6 5 4 anyone d:/a\n");
    book.changeKnown(folders);
    EXPECT_EQ(book.text(),
              checked(kFirstLine + kComment +
                      "folder\tD:\\A\r\n6 5 4 anyone d:/a\nfolder\t%u0020end%u0020\r\n"
                      "folder\tend\r\nfolder\t# D:\\B\r\nfolder\t%u0009\r\n5 4 3 anyone D:\\C\n"));
    EXPECT_EQ(read(book.text()).knownFolders(), folders);
}

TEST(RuleBookTest, AFolderThatEndsInALineEndIsOneFolder)
{
    const RuleBook book =
        readLines("folder\tD:\\A\r\r\nfolder\tD:\\B\r\nfolder\tD:\\A\r\r\n5 4 3 anyone D:\\A\r\r\n");
    const std::vector<std::u16string> folders{u"D:\\A\r", u"D:\\B"};
    EXPECT_EQ(book.condition, Condition::kGood);
    EXPECT_EQ(book.knownFolders(), folders);
    EXPECT_EQ(rulesOf(book, u"D:\\A\r").size(), 1u);
    EXPECT_TRUE(rulesOf(book, u"D:\\A").empty());
    const RuleBook again = read(book.text());
    EXPECT_EQ(again.knownFolders(), folders);
    EXPECT_EQ(again.text(), book.text());
}

TEST(RuleBookTest, ManyFoldersAndTheirRulesInAnyOrder)
{
    constexpr int kCount = 20000;
    std::string lines;
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < kCount; ++i) {
            lines += std::to_string(i + 1) + " 1 " + std::to_string(round) + " anyone D:\\" +
                     std::to_string(i) + "\n";
        }
    }
    const RuleBook book = readLines(lines);
    EXPECT_EQ(book.condition, Condition::kGood);
    for (int i = 0; i < kCount; i += 777) {
        const std::string name = "D:\\" + std::to_string(i);
        const auto rules = rulesOf(book, std::u16string(name.begin(), name.end()));
        ASSERT_EQ(rules.size(), 3u);
        for (int round = 0; round < 3; ++round) {
            expectRule(rules[static_cast<std::size_t>(round)], i + 1, 1, round,
                       std::u16string(name.begin(), name.end()));
        }
    }
}

} // namespace
