#include "files/sort_string_array.h"
#include "tests/support/import_patch.h"
#include "tests/support/recording_store.h"
#include "tests/support/text.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <cwctype>
#include <random>
#include <stdexcept>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

CSortStringArray arrayOf(const std::vector<std::wstring>& texts)
{
    CSortStringArray array;
    for (const std::wstring& text : texts) {
        array.add(text);
    }
    return array;
}

std::vector<std::wstring> sorted(const std::vector<std::wstring>& texts)
{
    CSortStringArray array = arrayOf(texts);
    array.sort();
    return {array.begin(), array.end()};
}

std::vector<std::string> sorted(const std::vector<std::string>& texts)
{
    std::vector<std::wstring> given;
    for (const std::string& text : texts) {
        given.push_back(wide(text));
    }
    std::vector<std::string> result;
    for (const std::wstring& text : sorted(given)) {
        result.push_back(utf8(text));
    }
    return result;
}

/// The required sort as it is told: passes over neighbours, never the last element, until a pass swaps nothing.
/// @param compare  may throw: the pair then stands, and a line is written.
template <class Compare>
std::vector<std::wstring> bubbleSorted(std::vector<std::wstring> texts, Compare compare,
                                       std::vector<std::string>* lines = nullptr)
{
    const int last = static_cast<int>(texts.size()) - 2;
    bool swapped = true;
    while (swapped) {
        swapped = false;
        for (int i = 0; i < last; ++i) {
            try {
                auto& first = texts[static_cast<size_t>(i)];
                auto& second = texts[static_cast<size_t>(i) + 1];
                if (compare(first.c_str(), second.c_str()) > 0) {
                    first.swap(second);
                    swapped = true;
                }
            } catch (...) {
                lines->push_back("*** SIGSEGV ***: " + std::to_string(i) + " of " + std::to_string(last) +
                                 "\n");
            }
        }
    }
    return texts;
}

std::vector<std::wstring> bubbleSorted(std::vector<std::wstring> texts)
{
    return bubbleSorted(std::move(texts), [](const wchar_t* a, const wchar_t* b) { return _wcsicmp(a, b); });
}

std::vector<std::wstring> randomTexts(std::mt19937& random, size_t count, unsigned letters, unsigned length)
{
    std::vector<std::wstring> texts;
    for (size_t i = 0; i < count; ++i) {
        std::wstring text(1 + random() % length, L' ');
        for (wchar_t& letter : text) {
            const unsigned which = random() % letters;
            letter = static_cast<wchar_t>((random() % 2 != 0 ? L'a' : L'A') + which);
        }
        texts.push_back(text);
    }
    return texts;
}

// A comparison that raises at a text, in either of its ways.
enum class Raising : std::uint8_t { kNo, kThrows, kFaults };
Raising raising = Raising::kNo;
int comparisons = 0;
int* volatile nowhere = nullptr;

int compareRaising(const wchar_t* a, const wchar_t* b)
{
    ++comparisons;
    for (const wchar_t* text : {a, b}) {
        if (*text == L'!' && raising == Raising::kThrows) {
            throw std::runtime_error("a damaged text");
        }
        if (*text == L'!' && raising == Raising::kFaults) {
            *nowhere = 1;
        }
    }
    // Not the function that is replaced.
    for (;; ++a, ++b) {
        const int difference = std::towlower(*a) - std::towlower(*b);
        if (difference != 0 || *a == L'\0') {
            return difference;
        }
    }
}

int compareThrowing(const wchar_t* a, const wchar_t* b)
{
    const Raising before = std::exchange(raising, Raising::kThrows);
    try {
        const int result = compareRaising(a, b);
        raising = before;
        return result;
    } catch (...) {
        raising = before;
        throw;
    }
}

} // namespace

TEST(SortStringArrayTest, LeavesTheLastElementWhereItIs)
{
    EXPECT_THAT(sorted(std::vector<std::string>{"b", "c", "a"}), ElementsAre("b", "c", "a"));
    EXPECT_THAT(sorted(std::vector<std::string>{"c", "b", "a"}), ElementsAre("b", "c", "a"));
    EXPECT_THAT(sorted(std::vector<std::string>{"d", "c", "b", "a"}), ElementsAre("b", "c", "d", "a"));
}

TEST(SortStringArrayTest, SortsListsWithNothingToCompare)
{
    EXPECT_THAT(sorted(std::vector<std::string>{}), IsEmpty());
    EXPECT_THAT(sorted(std::vector<std::string>{"a"}), ElementsAre("a"));
    EXPECT_THAT(sorted(std::vector<std::string>{"b", "a"}), ElementsAre("b", "a"));
}

TEST(SortStringArrayTest, IgnoresCaseAndKeepsTheOrderOfEqualNames)
{
    EXPECT_THAT(sorted(std::vector<std::string>{"b", "B", "a", "A", "Ab", "aB", "z"}),
                ElementsAre("a", "A", "Ab", "aB", "b", "B", "z"));
}

TEST(SortStringArrayTest, GivesWhatThePlainBubbleSortGives)
{
    std::mt19937 random(20240611);
    for (int round = 0; round < 400; ++round) {
        // Few letters and short names: many of them equal but for case.
        const auto texts = randomTexts(random, random() % 60, 1 + random() % 6, 1 + random() % 4);
        ASSERT_EQ(sorted(texts), bubbleSorted(texts)) << "round " << round;
    }
    for (const unsigned letters : {2u, 26u}) {
        const auto texts = randomTexts(random, 2500, letters, letters == 2 ? 5 : 200);
        ASSERT_EQ(sorted(texts), bubbleSorted(texts)) << letters << " letters";
    }
}

TEST(SortStringArrayTest, SortsAFolderOfManyFiles)
{
    std::mt19937 random(7);
    std::vector<std::wstring> texts;
    for (int i = 0; i < 100000; ++i) {
        texts.push_back(std::to_wstring(random()) + L"-" + std::to_wstring(i));
    }
    const std::wstring last = texts.back();
    const auto result = sorted(texts);
    ASSERT_EQ(result.size(), texts.size());
    EXPECT_EQ(result.back(), last);
    texts.pop_back();
    // Each name once, so that any sort gives the one order.
    std::sort(texts.begin(), texts.end(), [](const std::wstring& first, const std::wstring& second) {
        return _wcsicmp(first.c_str(), second.c_str()) < 0;
    });
    EXPECT_TRUE(std::equal(texts.begin(), texts.end(), result.begin()));
}

TEST(SortStringArrayTest, ComparesASortedListOnce)
{
    RecordingStore store;
    const ImportPatch compare(GetModuleHandleW(nullptr), "_wcsicmp", &compareRaising);
    ASSERT_EQ(compare.count(), 1);
    comparisons = 0;
    EXPECT_THAT(sorted(std::vector<std::string>{"a", "b", "c", "d", "e"}),
                ElementsAre("a", "b", "c", "d", "e"));
    EXPECT_EQ(comparisons, 3);
}

TEST(SortStringArrayTest, SurvivesAComparisonThatRaises)
{
    const ImportPatch compare(GetModuleHandleW(nullptr), "_wcsicmp", &compareRaising);
    ASSERT_EQ(compare.count(), 1);
    const std::vector<std::string> texts{"c", "a", "!", "d", "b", "z"};
    for (const Raising kind : {Raising::kThrows, Raising::kFaults}) {
        RecordingStore store;
        raising = kind;
        EXPECT_THAT(sorted(texts), ElementsAre("a", "c", "!", "b", "d", "z"));
        // Two passes: the second one swaps nothing.
        EXPECT_THAT(store.lines(), ElementsAre("*** SIGSEGV ***: 1 of 4\n", "*** SIGSEGV ***: 2 of 4\n",
                                               "*** SIGSEGV ***: 1 of 4\n", "*** SIGSEGV ***: 2 of 4\n"));
        raising = Raising::kNo;
    }
}

TEST(SortStringArrayTest, RaisesLikeThePlainBubbleSort)
{
    const ImportPatch compare(GetModuleHandleW(nullptr), "_wcsicmp", &compareRaising);
    ASSERT_EQ(compare.count(), 1);
    std::mt19937 random(99);
    for (int round = 0; round < 100; ++round) {
        auto texts = randomTexts(random, 3 + random() % 20, 4, 3);
        for (unsigned damaged = random() % 3; damaged > 0; --damaged) {
            texts[random() % texts.size()] = L"!";
        }
        std::vector<std::string> lines;
        const auto expected = bubbleSorted(texts, compareThrowing, &lines);
        RecordingStore store;
        raising = Raising::kFaults;
        const auto result = sorted(texts);
        raising = Raising::kNo;
        ASSERT_EQ(result, expected) << "round " << round;
        ASSERT_EQ(store.lines(), lines) << "round " << round;
    }
}

TEST(SortStringArrayTest, SurvivesADebugChannelThatFaults)
{
    const ImportPatch compare(GetModuleHandleW(nullptr), "_wcsicmp", &compareRaising);
    RecordingStore store;
    store.raise("ODS", Fault::kAccessViolation);
    raising = Raising::kFaults;
    EXPECT_THAT(sorted(std::vector<std::string>{"b", "!", "c", "a", "z"}),
                ElementsAre("b", "!", "a", "c", "z"));
    raising = Raising::kNo;
}
