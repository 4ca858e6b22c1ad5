// Reading and working windows the way a person does.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

std::string windowText(HWND window);
std::string controlText(HWND dialog, int id);
std::string className(HWND window);

bool isEnabled(HWND dialog, int id);
bool isChecked(HWND dialog, int id);

/// Fails the test for each of these controls that is not enabled, or is.
void expectEnabled(HWND dialog, const std::vector<int>& ids, bool enabled = true);

/// The one of these buttons that is checked, 0 for none; fails the test when there are more.
int checkedOf(HWND dialog, const std::vector<int>& buttons);

/// The control of a dialog that has the keyboard. Test programs run side by side on one desktop, and one that opens a
/// window takes the keyboard from the others: the dialog is then brought to the front again first.
HWND focusOf(HWND dialog);

/// Lets the windows of this thread work: so many looks for a message, and a pause of so many milliseconds at every 16th.
void pump(unsigned looks, unsigned pause);

/// Replaces the text of a field.
void type(HWND dialog, int id, const wchar_t* text);

/// Clicks a button and waits until the click has been dealt with, with a dialog that it opens as well.
void click(HWND dialog, int id);

/// Clicks a button that ends a dialog or opens another one.
void clickLater(HWND dialog, int id);
