#include "tests/quota/quota_settings.h"
#include "res/resource.h"

#include <gtest/gtest.h>

#include <utility>

namespace quota_settings {

std::vector<std::string> callsForAccount(const std::string& name)
{
    return {"getAccountBySidW " + name + " 128",
            "getRealSize C:\\data",
            "createEmptySidList",
            "sidDup " + name,
            "appendToSidList [] " + name,
            "getRealSizeByOwner C:\\data [" + name + "]",
            "freeSidList [" + name + "]",
            "getAccountBySidW " + name + " 128",
            "enumerateGroupUsers null " + name + " null"};
}

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

std::string sizes(HWND dialog)
{
    return controlText(dialog, IDC_QUOTA_OBJECT_SIZE) + '|' + controlText(dialog, IDC_QUOTA_IN_USE) + '|' +
           controlText(dialog, IDC_QUOTA_HARD_LIMIT) + '|' + controlText(dialog, IDC_QUOTA_SOFT_LIMIT);
}

int countedFiles(HWND dialog)
{
    return checkedOf(dialog, {IDC_QUOTA_NO_FILES, IDC_QUOTA_OWNED_FILES, IDC_QUOTA_ALL_FILES});
}

DialogScript::Act limits(const wchar_t* hard, const wchar_t* soft)
{
    return [=](HWND dialog) {
        typeLimits(dialog, hard, soft);
    };
}

DialogScript::Act clicks(std::vector<int> ids)
{
    return [ids = std::move(ids)](HWND dialog) {
        for (const int id : ids) {
            click(dialog, id);
        }
    };
}

void pressOk(HWND dialog)
{
    clickLater(dialog, IDOK);
}

void pressCancel(HWND dialog)
{
    clickLater(dialog, IDCANCEL);
}

Visit& Visit::press(const char* what, Act act, Act button)
{
    if (act) {
        onDialog("before " + std::string(what), std::move(act));
    }
    onDialog(what, std::move(button));
    return *this;
}

Visit& Visit::ok(Act act)
{
    return press("OK", std::move(act), pressOk);
}

Visit& Visit::cancel(Act act)
{
    return press("Cancel", std::move(act), pressCancel);
}

Visit& Visit::act(Act act)
{
    onDialog("the end", std::move(act));
    return *this;
}

Visit& Visit::refused()
{
    onDialog("OK", pressOk).answerBox(kInvalid, kInformation);
    return *this;
}

Visit& Visit::conflict()
{
    answerBox(kAlreadyUsed, kInformation);
    return *this;
}

Visit& Visit::noResources()
{
    answerBox(
        "Not enough resources. Please try to re-run Vantrel Control Panel, and close unnecessary programs.",
        kInformation);
    return *this;
}

intptr_t Visit::open(QuotaRule* rule, int mode, HWND owner)
{
    return run([=] { return editQuotaListEntry(owner, rule, mode); });
}

intptr_t whileOpen(QuotaRule* rule, int mode, DialogScript::Act act, HWND owner)
{
    return Visit().cancel(std::move(act)).open(rule, mode, owner);
}

intptr_t untilOk(QuotaRule* rule, int mode, DialogScript::Act act)
{
    return Visit().ok(std::move(act)).open(rule, mode);
}

intptr_t untilRefused(QuotaRule* rule, int mode, DialogScript::Act act, DialogScript::Act look)
{
    HWND dialog = nullptr;
    Visit visit;
    visit.onDialog("type", std::move(act)).onDialog("remember", [&dialog](HWND front) { dialog = front; });
    const intptr_t result = visit.refused().cancel(std::move(look)).open(rule, mode);
    EXPECT_EQ(visit.boxOwner(), dialog);
    return result;
}

} // namespace quota_settings
