#include "tests/quota/quota_settings.h"
#include "res/resource.h"

#include <gtest/gtest.h>

#include <utility>

namespace quota_settings {

QuotaRule* newRule(const void* sid)
{
    return RecordingStore::makeRule(L"C:\\data", sid, -1, -1, QUOTA_IN_USE_UNKNOWN);
}

void folderHolds(RecordingStore& store, int64_t bytes)
{
    store.answer.getRealSize = [bytes](const wchar_t*) {
        return bytes;
    };
}

void accountOwns(RecordingStore& store, int64_t bytes)
{
    store.answer.getRealSizeByOwner = [bytes](const wchar_t*, const SidList*) {
        return bytes;
    };
}

void groupHas(RecordingStore& store, std::vector<const void*> members)
{
    store.answer.enumerateGroupUsers = [members = std::move(members)](const wchar_t*, const wchar_t*,
                                                                      SidList* list) {
        EXPECT_EQ(list, nullptr) << "only one server is known";
        return RecordingStore::makeSidList(members);
    };
}

void typeLimits(HWND dialog, const wchar_t* hard, const wchar_t* soft)
{
    type(dialog, IDC_QUOTA_HARD_LIMIT, hard);
    type(dialog, IDC_QUOTA_SOFT_LIMIT, soft);
}

void pressOk(HWND dialog)
{
    clickLater(dialog, IDOK);
}

void pressCancel(HWND dialog)
{
    clickLater(dialog, IDCANCEL);
}

intptr_t whileOpen(QuotaRule* rule, int mode, DialogScript::Act act, HWND owner)
{
    DialogScript script;
    script.onDialog("look", std::move(act)).onDialog("Cancel", pressCancel);
    return script.run([=] { return editQuotaListEntry(owner, rule, mode); });
}

intptr_t untilOk(QuotaRule* rule, int mode, DialogScript::Act act, HWND owner)
{
    DialogScript script;
    script.onDialog("type", std::move(act)).onDialog("OK", pressOk);
    return script.run([=] { return editQuotaListEntry(owner, rule, mode); });
}

intptr_t untilRefused(QuotaRule* rule, int mode, DialogScript::Act act, DialogScript::Act look)
{
    DialogScript script;
    HWND dialog = nullptr;
    script.onDialog("type", std::move(act))
        .onDialog("OK",
                  [&dialog](HWND front) {
                      dialog = front;
                      pressOk(front);
                  })
        .answerBox(kInvalid, kInformation)
        .onDialog("look", std::move(look))
        .onDialog("Cancel", pressCancel);
    const intptr_t result = script.run([=] { return editQuotaListEntry(nullptr, rule, mode); });
    EXPECT_EQ(script.boxOwner(), dialog);
    return result;
}

} // namespace quota_settings
