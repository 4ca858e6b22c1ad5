// How much memory a policy list takes in the library, from its file to its release.
#include "store_test.h"

#include "tests/support/import_patch.h"

#include <malloc.h>

#include <cstdio>
#include <set>

namespace {

using namespace store_test;

constexpr std::size_t kHead = 16; // what the heap needs beside each block
std::size_t held = 0;
std::size_t most = 0;

template <class Type>
Type* counted(Type* block)
{
    held += block == nullptr ? 0 : _msize(block) + kHead;
    most = std::max(most, held);
    return block;
}

void* countedMalloc(std::size_t size)
{
    return counted(std::malloc(size));
}

wchar_t* countedCopy(const wchar_t* text)
{
    return counted(_wcsdup(text));
}

void countedFree(void* block)
{
    held -= block == nullptr ? 0 : std::min(held, _msize(block) + kHead);
    std::free(block);
}

struct Kind {
    const char* what;
    const wchar_t* file;
    std::string head; ///< of the file
    std::string line; ///< of an entry, with its number in the place of a #
    int (*load)();
    void (*release)();
};

std::ostream& operator<<(std::ostream& out, const Kind& kind)
{
    return out << kind.what;
}

class PolicyMemoryTest : public StoreTest, public testing::WithParamInterface<Kind> {};

TEST_P(PolicyMemoryTest, AFullListTakesLessThanEightTimesItsFile)
{
    constexpr unsigned kEntries = 100000;
    const Kind& kind = GetParam();
    const std::size_t mark = kind.line.find('#');
    std::string text = kind.head;
    for (unsigned number = 0; number < kEntries; ++number) {
        std::string line = kind.line;
        if (mark != std::string::npos) {
            line.replace(mark, 1, std::to_string(number));
        }
        text += line;
    }
    text += "checksum -\nend\n";
    writeBytes(data() / kind.file, text);
    const ImportPatch patches[] = {
        {storeModule(), "malloc", &countedMalloc},
        {storeModule(), "_wcsdup", &countedCopy},
        {storeModule(), "free", &countedFree},
    };
    held = most = 0;
    ASSERT_EQ(kind.load(), 1);
    const double size = static_cast<double>(text.size());
    std::printf("%.1f times the file of %zu bytes, %.1f at most\n", static_cast<double>(held) / size,
                text.size(), static_cast<double>(most) / size);
    EXPECT_LT(static_cast<double>(most) / size, 8);
    EXPECT_GT(static_cast<double>(most) / size, 1) << "is the heap counted at all?";
    kind.release();
    EXPECT_LT(held, 2000u);
}

INSTANTIATE_TEST_SUITE_P(
    Lists, PolicyMemoryTest,
    testing::Values(
        Kind{"NamelessTools", L"backup-tools.txt", "lornix backup-tools 1\n", "tool\n", loadBackupTools,
             freeBackupTools},
        Kind{"ShortestExceptions", L"excludes.txt", "lornix excludes 1\n", "exclude a\n", loadExcludes,
             freeExcludes},
        Kind{"Exceptions", L"excludes.txt", "lornix excludes 1\n",
             "exclude\tD:\\Shares\\Department 17\\pagefile #\r\n", loadExcludes, freeExcludes},
        Kind{"Accounts", L"administrative-accounts.txt", "lornix administrative-accounts 1\n", "account a#\n",
             loadMgrAccounts, freeMgrAccounts},
        Kind{"MasksForAnyone", L"blocked-extensions.txt", "lornix blocked-extensions 1\n", "mask anyone a\n",
             loadExcludeExts, freeExcludeExts},
        Kind{"MasksOfOneAccountEach", L"blocked-extensions.txt", "lornix blocked-extensions 1\n",
             "mask S-1-# a\n", loadExcludeExts, freeExcludeExts},
        Kind{"MasksOfLongAccounts", L"blocked-extensions.txt", "lornix blocked-extensions 1\n",
             "mask\tS-1-5-21-1004336348-1177238915-682003330-#\t*.a\r\n", loadExcludeExts, freeExcludeExts},
        Kind{"ShortestNotifications", L"notifications.txt", "lornix notifications 1\n", "notification a\n",
             loadNotifications, freeNotifications},
        Kind{"NotificationsWithARate", L"notifications.txt", "lornix notifications 1\n",
             "notification a\nrate 1\n", loadNotifications, freeNotifications},
        Kind{"WholeNotifications", L"notifications.txt", "lornix notifications 1\n",
             "notification\tC:\\Program Files\\Scripts\\warn.cmd "
             "#\r\nfor-account\tEXAMPLE\\alice\r\nfor-whom\t1\r\nrate\t300\r\nrun-as\tEXAMPLE\\runner\r\n",
             loadNotifications, freeNotifications}),
    [](const testing::TestParamInfo<Kind>& info) { return info.param.what; });

int blocksBefore = 0; // the one that there is no memory for

void* scarceMalloc(std::size_t size)
{
    return blocksBefore-- == 0 ? nullptr : std::malloc(size);
}

/// Calls again and again, without memory for a later block each time, until there is enough for all.
/// @param call  says whether it did all.
/// @param then  looks at what there is otherwise.
template <class Call, class Then>
void withoutMemory(Call call, Then then)
{
    for (int blocks = 0;; blocks += 1 + blocks / 10) {
        bool isDone = false;
        {
            const ImportPatch patch(storeModule(), "malloc", &scarceMalloc);
            ASSERT_EQ(patch.count(), 1);
            blocksBefore = blocks;
            isDone = call();
        }
        if (blocksBefore >= 0) {
            EXPECT_TRUE(isDone);
            return;
        }
        if (!isDone) {
            then();
        }
    }
}

using ScarceMemoryTest = StoreTest;

TEST_F(ScarceMemoryTest, AListThatCannotBeReadWholeIsEmpty)
{
    std::string text = "lornix notifications 1\n";
    for (int i = 0; i < 1000; ++i) {
        text += "notification a long name so that it needs a block " + std::to_string(i) + "\nrate 1\n";
    }
    writeBytes(data() / L"notifications.txt", text + "checksum -\nend\n");
    withoutMemory([] { return loadNotifications() != 0; },
                  [] {
                      EXPECT_EQ(getNotifications(0), nullptr);
                      EXPECT_EQ(getNotificationsCount(), 0u);
                      EXPECT_EQ(getNAttr(0, NOTIFICATION_RATE), nullptr);
                  });
    EXPECT_EQ(getNotificationsCount(), 1000u);
    freeNotifications();
}

TEST_F(ScarceMemoryTest, WhatFindsNoPlaceIsNotAdded)
{
    ASSERT_EQ(loadNotifications(), 1);
    for (std::uint32_t count = 0; count < 100; ++count) {
        withoutMemory([&] { return addToNotifications(_wcsdup(L"a")) == count; },
                      [&] { EXPECT_EQ(getNotificationsCount(), count); });
    }
    freeNotifications();
}

TEST_F(ScarceMemoryTest, AnEntryIsChangedWholeOrNotAtAll)
{
    const Block<void> alice = sidOf(L"S-1-5-21-1-2-3-1001");
    const Block<void> bob = sidOf(L"S-1-5-21-1-2-3-1002");
    ASSERT_EQ(loadExcludeExts(), 1);
    for (int i = 0; i < 2000; ++i) { // so that accounts need a new block too
        const auto index = addToExcludeExts(_wcsdup(L"*.a"), alice.get());
        const auto mask = [&] {
            return std::wstring(getExcludeExtsPath(index));
        };
        withoutMemory(
            [&] {
                updateExcludeExts(index, _wcsdup(L"*.b"), bob.get());
                return mask() == L"*.b";
            },
            [&] {
                EXPECT_EQ(mask(), L"*.a");
                EXPECT_EQ(textOf(getExcludeExtsSid(index)), textOf(alice.get()));
            });
        EXPECT_EQ(textOf(getExcludeExtsSid(index)), textOf(bob.get()));
    }
    freeExcludeExts();
}

std::set<const void*> released;

void noteFree(void* block)
{
    released.insert(block);
    std::free(block);
}

/// Hands a text over again and again, without memory for a later block each time.
/// @param call  takes the text; says whether it did all.
template <class Call>
void handOverWithoutMemory(Call call)
{
    const ImportPatch freeing(storeModule(), "free", &noteFree);
    ASSERT_EQ(freeing.count(), 1);
    const wchar_t* text = nullptr;
    int failures = 0;
    withoutMemory(
        [&] {
            text = _wcsdup(L"b");
            released.clear();
            return call(text);
        },
        [&] {
            EXPECT_TRUE(released.contains(text)) << "nobody has it any more";
            ++failures;
        });
    EXPECT_GT(failures, 0);
    EXPECT_FALSE(released.contains(text)) << "the list has it";
}

TEST_F(ScarceMemoryTest, ATextThatFindsNoPlaceIsReleased)
{
    ASSERT_EQ(loadNotifications(), 1);
    handOverWithoutMemory([](const wchar_t* text) { return addToNotifications(text) == 0; });
    handOverWithoutMemory([](const wchar_t* text) {
        setNAttr(0, NOTIFICATION_RATE, text);
        return getNAttr(0, NOTIFICATION_RATE) == text;
    });
    freeNotifications();
    ASSERT_EQ(loadExcludeExts(), 1);
    const Block<void> alice = sidOf(L"S-1-5-21-1-2-3-1001");
    addToExcludeExts(_wcsdup(L"a"), nullptr);
    handOverWithoutMemory([&](const wchar_t* text) {
        updateExcludeExts(0, text, alice.get());
        return getExcludeExtsPath(0) == text;
    });
    freeExcludeExts();
}

} // namespace
