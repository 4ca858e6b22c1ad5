#include "fill_fixture.h"

#include "accounts/enumeration.h"
#include "tests/support/describe.h"

#include <lmcons.h>
#include <lmuse.h>

NET_API_STATUS networkStatus;

namespace {

NET_API_STATUS WINAPI useAdd(LMSTR, DWORD, LPBYTE info, LPDWORD)
{
    RecordingStore::note("NetUseAdd", describe(static_cast<const wchar_t*>(
                                          reinterpret_cast<const USE_INFO_2*>(info)->ui2_remote)));
    return networkStatus;
}

NET_API_STATUS WINAPI useDel(LMSTR, LMSTR name, DWORD)
{
    RecordingStore::note("NetUseDel", describe(static_cast<const wchar_t*>(name)));
    return 0;
}

} // namespace

OwnRegistry::OwnRegistry()
    : m_path(L"Software\\corvane tests " + std::to_wstring(GetCurrentProcessId()))
{
    EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, m_path.c_str(), &m_root), ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_root), ERROR_SUCCESS);
}

OwnRegistry::~OwnRegistry()
{
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegCloseKey(m_root);
    RegDeleteTreeW(HKEY_CURRENT_USER, m_path.c_str());
}

void OwnRegistry::set(const std::wstring& value)
{
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyW(m_root, L"SOFTWARE\\Vantrel LLC\\Vantrel", &key), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExW(key, L"NoLDAP", 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                             static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))),
              ERROR_SUCCESS);
    RegCloseKey(key);
}

FillTest::FillTest()
{
    store.names = {{1, L"NORTH\\ann"},    {2, L"NORTH\\bob"}, {3, L"PC\\carl"},
                   {11, L"NORTH\\staff"}, {12, L"PC\\crew"},  {21, L"Everyone"}};
    store.users = {{L"S1", {1, 2}}, {L"S2", {1}}, {L"", {3}}};
    store.groups = {{L"S1", {11}}, {L"S2", {}}, {L"", {12}}};
    store.domainServer = L"S1";
    store.secondServers = {{L"S1", L"S2"}};
    directory.objects = {{.name = L"dora", .className = L"User", .sid = 31},
                         {.name = L"team", .className = L"Group", .listedAs = L"Group", .sid = 41}};
    m_network.replace("NetUseAdd", useAdd);
    m_network.replace("NetUseDel", useDel);
    networkStatus = ERROR_ACCESS_DENIED; // the fill goes on all the same
}

FillTest::~FillTest()
{
    sink.reset();
}

std::vector<std::string> FillTest::steps() const
{
    std::vector<std::string> lines = store.calls();
    std::erase(lines, "alive");
    return lines;
}

bool FillTest::fill()
{
    sink.reset(new ListSink);
    context.sink = sink.get();
    context.userImage = kUser;
    context.groupImage = kGroup;
    store.takeCalls();
    try {
        fillTree(&context);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void FillTest::fillUntilRows(int rows)
{
    sink.reset(new ListSink);
    sink->dieBefore = rows;
    context.sink = sink.get();
    store.takeCalls();
    fillTree(&context);
}

void FillTest::expectNothingHeld() const
{
    int inRows = 0;
    for (const ListSink::Row& row : sink->rows) {
        inRows += reinterpret_cast<std::uintptr_t>(row.data) > 1 ? 1 : 0;
    }
    EXPECT_EQ(store.openSidLists(), 0);
    EXPECT_EQ(store.openSids(), inRows);
    EXPECT_EQ(store.strings(), 0);
    EXPECT_EQ(directory.references, 0);
    EXPECT_EQ(directory.strings, 0);
    EXPECT_EQ(directory.arrays, 0);
}

std::vector<std::string> FillTest::rows() const
{
    std::vector<std::string> texts;
    for (const ListSink::Row& row : sink->rows) {
        const std::string data = reinterpret_cast<std::uintptr_t>(row.data) > 1
                                     ? std::to_string(sidNumber(row.data))
                                     : (row.data != nullptr ? "ONE" : "null");
        texts.push_back(describe(row.account.c_str()) + "|" + describe(row.fullName.c_str()) + "|" +
                        describe(row.type.c_str()) + "|" + data);
    }
    return texts;
}
