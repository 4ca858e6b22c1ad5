// What a dialog looks like: its controls in words, and whether they are laid out as a careful person would.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

/// The controls of a dialog, in their order.
std::vector<HWND> controlsOf(HWND dialog);

/// "label", "picture", "edit", "password", "list", "group", "radio", "check", "button", "default button"; the class of others.
std::string kindOf(HWND control);

/// What a control is: "edit 1002 read-only", "label \"In Use:\"", "button 2 \"Cancel\" disabled".
std::string inWords(HWND control);
std::vector<std::string> inWords(const std::vector<HWND>& controls);

/// Where a control stands in its dialog's client area.
RECT placeOf(HWND control);

/// What is free between the controls and the edges of the client area.
struct Margins {
    LONG left, top, right, bottom;
};
Margins marginsOf(HWND dialog);

/// Dialog units as pixels.
SIZE unitsAsPixels(HWND dialog, int width, int height);

/// What a text needs in the control's own font.
SIZE textSize(HWND control, const std::wstring& text);

bool isWithin(const RECT& inner, const RECT& outer);

// What each dialog must keep to. A failure names the controls.

/// Only a group box may lie over others, and then over the whole of each.
void expectNoOverlap(HWND dialog);
void expectNothingCutOff(HWND dialog);
/// MS Sans Serif of 8 points, in each control as well.
void expectUsualFont(HWND dialog);
/// A window of its own with a caption, a close box and the frame of modal dialogs.
void expectModalFrame(HWND dialog);
