// The administrator check, and what else the library imports for the accounts, from outside.
#include "corvane.h"
#include "tests/support/import_patch.h"
#include "tests/support/pe_image.h"
#include "tests/support/recording_store.h"

#include <gmock/gmock.h>

#include <set>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

BOOL WINAPI grant(PSECURITY_DESCRIPTOR, HANDLE, DWORD, PGENERIC_MAPPING, PPRIVILEGE_SET, LPDWORD, LPDWORD,
                  LPBOOL status)
{
    *status = 1;
    return TRUE;
}

BOOL WINAPI fail(PSECURITY_DESCRIPTOR, HANDLE, DWORD, PGENERIC_MAPPING, PPRIVILEGE_SET, LPDWORD, LPDWORD,
                 LPBOOL)
{
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

TEST(AdminExport, GivesWhatTheAccessCheckGives)
{
    RecordingStore store;
    ImportPatch check(ImportPatch::corvane(), "AccessCheck", &grant);
    ASSERT_EQ(check.count(), 1);
    EXPECT_EQ(isAdmin(), 1);
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST(AdminExport, AFailureIsNoRights)
{
    RecordingStore store;
    ImportPatch check(ImportPatch::corvane(), "AccessCheck", &fail);
    ASSERT_EQ(check.count(), 1);
    EXPECT_EQ(isAdmin(), 0);
    EXPECT_THAT(store.lines(), ElementsAre("AccessCheck() failed with error 5\n",
                                           "*** isAdmin() check failed, assuming no rights: 5\n"));
    RevertToSelf();
}

TEST(AccountImports, StandInTheOrdinaryTable)
{
    std::set<std::string> names;
    for (const ImportedFunction& import : PeImage(ImportPatch::corvane()).imports()) {
        names.insert(import.name);
    }
    EXPECT_THAT(names, IsSupersetOf({"ADsGetObject", "ADsBuildEnumerator", "ADsEnumerateNext",
                                     "ADsFreeEnumerator", "ADsBuildVarArrayStr", "NetUseAdd", "NetUseDel",
                                     "CoInitialize", "AccessCheck"}));
}

} // namespace
