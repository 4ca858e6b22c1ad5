// Of a notification's password nothing stays behind, however its dialog ends.
#include "corvane.h"
#include "res/resource.h"
#include "tests/policies/editor_visit.h"
#include "tests/policies/notification_case.h"
#include "tests/support/import_patch.h"

#include <gmock/gmock.h>

#include <malloc.h>

#include <set>
#include <string>

namespace {

/// A password that stands nowhere as such: it is put together when it is needed.
std::wstring password(size_t length, wchar_t kind)
{
    std::wstring text(length, L' '); // of its size at once
    for (size_t i = 0; i < length; ++i) {
        text[i] = static_cast<wchar_t>(kind + (i * 7 + length) % 26);
    }
    return text;
}

void wipe(std::wstring& text)
{
    SecureZeroMemory(text.data(), text.size() * sizeof(wchar_t));
}

/// How many times a part of a text that was made by the key stands in memory. The part itself is compared character by
/// character with what the key gives, so that the search does not find itself.
template <class Expected>
int occurrences(const BYTE* start, size_t bytes, size_t length, Expected expected)
{
    const auto* const text = reinterpret_cast<const wchar_t*>(start);
    const size_t characters = bytes / sizeof(wchar_t);
    int found = 0;
    for (size_t at = 0; at + length <= characters; ++at) {
        size_t same = 0;
        while (same < length && text[at + same] == expected(same)) {
            ++same;
        }
        found += same == length ? 1 : 0;
    }
    return found;
}

struct Search {
    int found = 0;
    size_t searched = 0; ///< bytes
};

/// How many times the end of a password stands in what is writable of an allocation.
Search leftIn(const void* allocation, size_t length, wchar_t kind)
{
    const auto tail = [=](size_t i) {
        const size_t at = i + 2; // the first characters of a freed block are the heap's
        return static_cast<wchar_t>(kind + (at * 7 + length) % 26);
    };
    Search search;
    MEMORY_BASIC_INFORMATION region{};
    for (const auto* at = static_cast<const BYTE*>(allocation);
         VirtualQuery(at, &region, sizeof region) != 0 && region.AllocationBase == allocation;
         at = static_cast<const BYTE*>(region.BaseAddress) + region.RegionSize)
    {
        if (region.State == MEM_COMMIT && (region.Protect & (PAGE_READWRITE | PAGE_WRITECOPY)) != 0) {
            search.searched += region.RegionSize;
            search.found += occurrences(static_cast<const BYTE*>(region.BaseAddress), region.RegionSize,
                                        length - 2, tail);
        }
    }
    return search;
}

/// The same in the whole heap of the C runtime, where blocks that were freed stand as they were, and in the library's
/// own data.
int left(size_t length, wchar_t kind)
{
    std::set<const void*> allocations = {GetModuleHandleW(L"corvane")};
    const auto heap = reinterpret_cast<HANDLE>(_get_heap_handle());
    PROCESS_HEAP_ENTRY entry{};
    HeapLock(heap);
    while (HeapWalk(heap, &entry)) {
        MEMORY_BASIC_INFORMATION region{};
        if (VirtualQuery(entry.lpData, &region, sizeof region) != 0 && region.State == MEM_COMMIT) {
            allocations.insert(region.AllocationBase);
        }
    }
    HeapUnlock(heap);
    Search all;
    for (const void* allocation : allocations) {
        const Search one = leftIn(allocation, length, kind);
        all.found += one.found;
        all.searched += one.searched;
    }
    EXPECT_GT(all.searched, size_t{1} << 16);
    return all.found;
}

/// Whether a text stands in the writable data of the library.
bool corvaneHolds(std::wstring_view text)
{
    const auto* const module = reinterpret_cast<const BYTE*>(ImportPatch::corvane());
    MEMORY_BASIC_INFORMATION region{};
    bool found = false;
    size_t searched = 0;
    for (const BYTE* at = module;
         VirtualQuery(at, &region, sizeof region) != 0 && region.AllocationBase == module;
         at = static_cast<const BYTE*>(region.BaseAddress) + region.RegionSize)
    {
        if (region.State == MEM_COMMIT && (region.Protect & (PAGE_READWRITE | PAGE_WRITECOPY)) != 0) {
            const std::wstring_view data(static_cast<const wchar_t*>(region.BaseAddress),
                                         region.RegionSize / sizeof(wchar_t));
            searched += data.size();
            found = found || data.find(text) != std::wstring_view::npos;
        }
    }
    EXPECT_GT(searched, 0u);
    return found;
}

/// Short ones stood in other memory than long ones.
struct PasswordTest : testing::TestWithParam<size_t> {
    /// Opens the notification that has the stored password, if any, types another one and ends the entry dialog.
    void visitEntry(bool stored, int button)
    {
        std::wstring old = password(length, storedKind);
        store.putNotification(L"script",
                              {nullptr, L"0", L"0", L"runner", stored ? old.c_str() : nullptr, L"0"});
        wipe(old);
        EditorVisit visit(store, editNotifications, kNotificationEntry, IDC_NOTIFICATIONS_LIST);
        visit.edit(0)
            .entry([&](HWND entry) {
                std::wstring typed = password(length, typedKind);
                type(entry, IDC_NOTIFY_PASSWORD, typed.c_str());
                wipe(typed);
                PostMessageW(entry, WM_COMMAND, static_cast<WPARAM>(button), 0);
            })
            .cancel();
    }

    /// Passwords that no test before has left anything of.
    static wchar_t fresh()
    {
        static wchar_t next = L'\x4e00';
        return next += 32;
    }
    const wchar_t storedKind = fresh();
    const wchar_t typedKind = fresh();
    const size_t length = GetParam();
    PolicyStore store;
};

} // namespace

TEST_P(PasswordTest, OkLeavesTheStoresCopyAlone)
{
    visitEntry(true, IDOK);
    EXPECT_EQ(left(length, storedKind), 0);
    EXPECT_EQ(left(length, typedKind), 1);
}

TEST_P(PasswordTest, CancelLeavesTheStoresCopyAlone)
{
    visitEntry(true, IDCANCEL);
    EXPECT_EQ(left(length, typedKind), 0);
    EXPECT_EQ(left(length, storedKind), 1);
}

TEST_P(PasswordTest, AFaultOfTheStoreLeavesNoCopyEither)
{
    store.raise("setNAttr", Fault::kAccessViolation);
    visitEntry(true, IDOK);
    EXPECT_EQ(left(length, typedKind), 0);
    EXPECT_EQ(left(length, storedKind), 1);
}

TEST(PasswordOfNotificationTest, DoesNotStayInTheLibrarysBuffer)
{
    const wchar_t password[] = L"a very rare password";
    PolicyStore store;
    store.putNotification(L"script", {nullptr, L"0", L"0", L"runner", password, L"0"});
    EditorVisit visit(store, editNotifications, kNotificationEntry, IDC_NOTIFICATIONS_LIST);
    visit.edit(0).entry([](HWND entry) { clickLater(entry, IDOK); }).cancel();
    EXPECT_STREQ(store.attribute(0, 4), password);
    EXPECT_FALSE(corvaneHolds(password + 7)); // its beginning gives way to the next field's text anyhow
}

INSTANTIATE_TEST_SUITE_P(Lengths, PasswordTest, testing::Values(6u, 7u, 40u, 259u),
                         [](const auto& tested) { return std::to_string(tested.param); });
