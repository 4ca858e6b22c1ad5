// The Quota Settings dialog as a person sees it.
#pragma once

#include "corvane.h"
#include "tests/support/dialog_script.h"
#include "tests/support/recording_store.h"
#include "tests/support/window_text.h"

#include <string>

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

/// What getRealSize answers from here on.
void folderHolds(RecordingStore& store, int64_t bytes);

/// What getRealSizeByOwner answers from here on.
void accountOwns(RecordingStore& store, int64_t bytes);

/// What enumerateGroupUsers answers from here on: each call appends the members.
void groupHas(RecordingStore& store, std::vector<const void*> members);

/// Types both limits.
void typeLimits(HWND dialog, const wchar_t* hard, const wchar_t* soft);

void pressOk(HWND dialog);
void pressCancel(HWND dialog);

/// Opens the dialog on a rule, does something in it, and presses Cancel.
/// @return the result of the dialog.
intptr_t whileOpen(QuotaRule* rule, int mode, DialogScript::Act act, HWND owner = nullptr);

/// Opens the dialog on a rule, does something in it, and presses OK, which must be accepted.
intptr_t untilOk(QuotaRule* rule, int mode, DialogScript::Act act, HWND owner = nullptr);

/// Opens the dialog on a rule, does something in it, presses OK, which must be refused, looks, and presses
/// Cancel.
intptr_t untilRefused(QuotaRule* rule, int mode, DialogScript::Act act, DialogScript::Act look);

} // namespace quota_settings
