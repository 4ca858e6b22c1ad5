#include "tests/accounts/chooser_fixture.h"

#include "store/lornix.h"
#include "store/owned.h"
#include "tests/support/text.h"

#include <commctrl.h>

#include <process.h>

#include <cstdint>
#include <cstdio>

namespace {

std::vector<HANDLE> startedThreads;

std::uintptr_t __cdecl startAndRemember(void(__cdecl* start)(void*), unsigned stack, void* argument)
{
    const std::uintptr_t thread = _beginthread(start, stack, argument);
    HANDLE copy = nullptr; // the thread closes the other one
    DuplicateHandle(GetCurrentProcess(), reinterpret_cast<HANDLE>(thread), GetCurrentProcess(), &copy, 0,
                    FALSE, DUPLICATE_SAME_ACCESS);
    startedThreads.push_back(copy);
    return thread;
}

} // namespace

FillThreads::FillThreads()
    : m_start(ImportPatch::corvane(), "_beginthread", &startAndRemember)
{
    startedThreads.clear();
    EXPECT_EQ(m_start.count(), 1);
}

FillThreads::~FillThreads()
{
    forget();
}

void FillThreads::forget()
{
    waitForAll();
    for (const HANDLE thread : startedThreads) {
        CloseHandle(thread);
    }
    startedThreads.clear();
}

int FillThreads::started() const
{
    return static_cast<int>(startedThreads.size());
}

void FillThreads::waitFor(int thread)
{
    EXPECT_EQ(WaitForSingleObject(startedThreads.at(static_cast<std::size_t>(thread)), 20000), WAIT_OBJECT_0)
        << "a fill thread does not end";
}

void FillThreads::waitForAll()
{
    for (int thread = 0; thread < started(); ++thread) {
        waitFor(thread);
    }
}

std::string pointerText(const void* pointer)
{
    char text[32];
    std::snprintf(text, sizeof text, "%016llX", reinterpret_cast<unsigned long long>(pointer));
    return text;
}

ChooserFixture::ChooserFixture()
{
    store.answer.enumerateUsers = [this](const wchar_t* server, SidList* list) {
        gate.pass();
        return server == nullptr ? append(list, m_users) : list;
    };
    store.answer.enumerateGroups = [this](const wchar_t* server, SidList* list) {
        return server == nullptr ? append(list, m_groups) : list;
    };
}

ChooserFixture::~ChooserFixture()
{
    gate.open();
    threads.waitForAll(); // before the store goes
}

void ChooserFixture::giveUsers(const std::vector<std::string>& names)
{
    for (const std::string& name : names) {
        m_users.push_back(store.account(name));
    }
}

void ChooserFixture::giveGroups(const std::vector<std::string>& names)
{
    for (const std::string& name : names) {
        m_groups.push_back(store.account(name));
    }
}

// By the store's own answers: what it does among itself is no call.
SidList* ChooserFixture::append(SidList* list, const std::vector<const void*>& sids)
{
    for (const void* const sid : sids) {
        list = store.answer.appendToSidList(list, store.answer.sidDup(sid));
    }
    return list;
}

void ChooserFixture::startSearch()
{
    script.onDialog("search on the server", [this](HWND dialog) {
        filterBar = std::make_unique<FilterBar>(list(dialog));
        click(dialog, IDC_CHOOSER_CUSTOM_BASE);
        type(dialog, IDC_CHOOSER_BASE, kServer);
        click(dialog, IDOK);
    });
}

void ChooserFixture::waitForFill()
{
    script.step("the fill's end", [](HWND dialog) { return isEnabled(dialog, IDCANCEL); });
}

void ChooserFixture::cancel()
{
    then("cancel", [](HWND dialog) { click(dialog, IDCANCEL); });
}

void ChooserFixture::searchServer()
{
    startSearch();
    waitForFill();
}

void* ChooserFixture::choose(SidList* owners)
{
    return script.run([&] {
        return owners != nullptr ? chooseSidFromUserInput2(nullptr, owners) : chooseSidFromUserInput(nullptr);
    });
}

std::string ChooserFixture::chosenName(SidList* owners)
{
    const CBlock<void> chosen(choose(owners));
    return RecordingStore::nameOf(chosen.get());
}

void ChooserFixture::lookAndCancel(std::function<void(HWND)> act, SidList* owners)
{
    then("look", std::move(act));
    cancel();
    EXPECT_EQ(choose(owners), nullptr);
}

void ChooserFixture::select(HWND dialog, int row)
{
    constexpr UINT kPicked = LVIS_SELECTED | LVIS_FOCUSED;
    ListView_SetItemState(list(dialog), row, kPicked, kPicked);
}

std::vector<std::string> ChooserFixture::dialogLines() const
{
    std::vector<std::string> lines;
    for (const std::string& line : store.lines()) {
        for (const char* start : {"got R", "Domain sid=", "onOk", "\treturn", "SID DLG"}) {
            if (line.starts_with(start)) {
                lines.push_back(line);
            }
        }
    }
    return lines;
}
