// The Quota Settings dialog as a person sees it.
#pragma once

#include "corvane.h"
#include "tests/support/dialog_script.h"
#include "tests/support/recording_store.h"
#include "tests/support/window_text.h"

#include <string>
#include <vector>

namespace quota_settings {

constexpr int kAdd = 1;
constexpr int kEdit = 0;

inline constexpr char kInvalid[] =
    "Data you've entered is invalid.\nEnsure your quota settings are corrected properly.";
inline constexpr char kInformation[] = "Information";
inline constexpr char kCrashLine[] = "UI CRASH: qleDlg, MyDlgProc, 265\n";
inline constexpr char kTrackingLine[] = "Now keeping for future tracking...\n";

constexpr int64_t kKiB = 1024;
constexpr int64_t kMiB = kKiB * 1024;
constexpr int64_t kGiB = kMiB * 1024;

/// A rule on C:\data with nothing measured and nothing set yet.
QuotaRule* newRule(const void* sid = nullptr);

inline constexpr char kAlreadyUsed[] =
    "Limit you've specified is already used. Please change user/group or specify other folder.";

/// What the store is asked by a dialog that adds a rule for an account.
std::vector<std::string> callsForAccount(const std::string& name);

/// Whether the cursor of a person who waits is shown.
inline bool showsWaitCursor()
{
    return GetCursor() == LoadCursorW(nullptr, IDC_WAIT);
}

/// What getRealSize answers from here on.
void folderHolds(RecordingStore& store, int64_t bytes);

/// What getRealSizeByOwner answers from here on.
void accountOwns(RecordingStore& store, int64_t bytes);

/// What enumerateGroupUsers answers from here on: each call appends the members.
void groupHas(RecordingStore& store, std::vector<const void*> members);

/// The sizes that the dialog shows: "object size|in use|hard limit|soft limit".
std::string sizes(HWND dialog);

/// The radio button that is checked, 0 when none is.
int countedFiles(HWND dialog);

/// Types both limits.
void typeLimits(HWND dialog, const wchar_t* hard, const wchar_t* soft);
DialogScript::Act limits(const wchar_t* hard, const wchar_t* soft);

/// Clicks, one control after the other.
DialogScript::Act clicks(std::vector<int> ids);

void pressOk(HWND dialog);
void pressCancel(HWND dialog);

/// The dialogs and boxes that a call shows, one after the other, and what a person does in them:
///
///     Visit().ok(limits(L"2000", L"1500")).conflict()
class Visit : public DialogScript {
public:
    /// Does something, and presses OK or Cancel.
    Visit& ok(Act act = nullptr);
    Visit& cancel(Act act = nullptr);

    /// Does something, and the dialog ends by that.
    Visit& act(Act act);

    /// Presses OK, which must be refused with a box.
    Visit& refused();

    /// The box for a rule that there is already, and the one for too little memory.
    Visit& conflict();
    Visit& noResources();

    /// Opens the dialog on a rule.
    /// @return its result.
    intptr_t open(QuotaRule* rule, int mode, HWND owner = nullptr);

private:
    Visit& press(const char* what, Act act, Act button);
};

/// Opens the dialog on a rule, does something in it, and presses Cancel.
/// @return the result of the dialog.
intptr_t whileOpen(QuotaRule* rule, int mode, DialogScript::Act act = nullptr, HWND owner = nullptr);

/// Opens the dialog on a rule, does something in it, and presses OK, which must be accepted.
intptr_t untilOk(QuotaRule* rule, int mode, DialogScript::Act act = nullptr);

/// Opens the dialog on a rule, does something in it, presses OK, which must be refused, looks, and presses
/// Cancel.
intptr_t untilRefused(QuotaRule* rule, int mode, DialogScript::Act act, DialogScript::Act look);

} // namespace quota_settings
