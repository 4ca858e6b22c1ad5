// How much memory reading a file takes, told by a heap that counts.
#include "lornix/rules/rule_book.h"
#include "lornix/rules/rule_lines.h"
#include "lornix/text/folder_key.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <vector>

namespace {

std::size_t held = 0;
std::size_t most = 0;

constexpr std::size_t kHead = alignof(std::max_align_t); // where the size of a block is noted, in front of it

} // namespace

void* operator new(std::size_t size)
{
    auto* block = static_cast<std::byte*>(std::malloc(kHead + size));
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    ::new (block) std::size_t(size);
    held += size;
    most = std::max(most, held);
    return block + kHead;
}

// Sorting asks for its room this way, and gives it back the usual one.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
try {
    return operator new(size);
} catch (const std::bad_alloc&) {
    return nullptr;
}

void operator delete(void* what) noexcept
{
    if (what != nullptr) {
        std::byte* block = static_cast<std::byte*>(what) - kHead;
        held -= *reinterpret_cast<std::size_t*>(block);
        std::free(block);
    }
}

void operator delete(void* what, const std::nothrow_t&) noexcept
{
    operator delete(what);
}

void operator delete(void* what, std::size_t) noexcept
{
    operator delete(what);
}

namespace {

using namespace lornix;

/// A file whose lines are those that a function appends, each with its number, until there are enough.
std::string fileOf(std::size_t size, const std::function<void(std::string&, unsigned)>& append)
{
    std::string text = "lornix rules 1\n";
    for (unsigned number = 0; text.size() < size; ++number) {
        append(text, number);
    }
    return text + "checksum -\nend\n";
}

/// The most memory that is held while a file is read, its bytes among it, in times its size.
double costOf(const std::string& file)
{
    const std::size_t before = held;
    most = held;
    const std::string bytes(file);
    const RuleBook book(kRules, bytes);
    return static_cast<double>(most - before) / static_cast<double>(file.size());
}

/// The shortest names, each another one.
void appendName(std::string& text, unsigned number)
{
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789!$&'()+,-.;=@[]^_`{}~";
    for (unsigned rest = number + 1; rest != 0; rest /= kLetters.size()) {
        text += kLetters[rest % kLetters.size()];
    }
    text += '\n';
}

TEST(ReadingMemoryTest, RulesTakeLessThanEightTimesTheirFile)
{
    struct Kind {
        const char* what;
        std::function<void(std::string&, unsigned)> append;
    };
    const Kind kinds[] = {
        {"rules as the store writes them, twenty to a folder",
         [](std::string& text, unsigned number) {
             text += "524288000\t419430400\t28540096\tS-1-5-21-1004336348-1177238915-682003330-1105\t"
                     "D:\\Shares\\Department " +
                     std::to_string(number / 20) + "\r\n";
         }},
        {"one folder",
         [](std::string& text, unsigned) {
             text += "1 1 1 anyone D\n";
         }},
        {"a folder a line",
         [](std::string& text, unsigned number) {
             appendName(text += "folder ", number);
         }},
        {"a rule a folder",
         [](std::string& text, unsigned number) {
             appendName(text += "1 1 1 anyone ", number);
         }},
        {"two folders by turns",
         [](std::string& text, unsigned number) {
             text += number % 2 == 0 ? "1 1 1 anyone A\n" : "1 1 1 anyone B\n";
         }},
        {"nothing that can be used",
         [](std::string& text, unsigned) {
             text += "?\n";
         }},
    };
    for (const Kind& kind : kinds) {
        // Tables grow by leaps: of several sizes one lies just behind a leap.
        double worst = 0;
        for (std::size_t size = 1 << 20; size < (2 << 20); size += 1 << 18) {
            worst = std::max(worst, costOf(fileOf(size, kind.append)));
        }
        std::printf("%s: %.1f times the file\n", kind.what, worst);
        EXPECT_LT(worst, 8) << kind.what;
        EXPECT_GT(worst, 1) << "is the heap counted at all?";
    }
}

TEST(ReadingMemoryTest, ChangingRulesTakesNoSecondText)
{
    constexpr unsigned kFolders = 1000;
    std::vector<std::u16string> folders;
    std::vector<std::string> rules;
    for (unsigned i = 0; i < kFolders; ++i) {
        const std::string name = "D:\\Shares\\Department " + std::to_string(i);
        folders.emplace_back(name.begin(), name.end());
        RuleLines lines;
        lines.startFolder(folders.back());
        for (unsigned rule = 0; rule < 20; ++rule) {
            lines.append(524288000, 419430400, rule, {});
        }
        rules.emplace_back(lines.text());
    }
    RuleBook book;
    for (int round = 0; round < 2; ++round) { // those of the second replace those of the first
        std::vector<RuleBook::Change> changes;
        for (unsigned i = 0; i < kFolders; ++i) {
            changes.push_back({book.entryOf(folderKey(folders[i])), folders[i], true, rules[i]});
        }
        const std::size_t before = held;
        most = held;
        book.change(changes);
        const double cost = static_cast<double>(most - before) / static_cast<double>(book.text().size());
        std::printf("%.2f times the text\n", cost);
        EXPECT_LT(cost, round == 0 ? 1.5 : 0.2);
    }
}

} // namespace
