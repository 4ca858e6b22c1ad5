// A header's filter bar where the runtime has none.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <map>
#include <string>

/// Makes a header take filters as the platform's does: it keeps a text for each column, gives it back when asked,
/// and tells its parent of a change. What is not about filters goes on to the header.
class FilterBar {
public:
    explicit FilterBar(HWND list);
    ~FilterBar();
    FilterBar(const FilterBar&) = delete;
    FilterBar& operator=(const FilterBar&) = delete;

    /// What a person types in a column's filter, told of after the header's delay.
    void type(int column, const wchar_t* text);

    /// What a person does with the button beside a column's filter.
    void clickButton(int column);

    /// The field of a column's filter, a child of the header, with the keyboard; gone with the header.
    HWND openField(int column);
    /// The column whose field the list opened itself; -1 for none.
    int opened() const { return m_opened; }

    /// Whether a column shows the prompt of a filter that has no value.
    bool showsPrompt(int column) const { return m_texts.count(column) == 0; }

    /// The filter's own text, as the header was told to take it.
    bool takesText(int column) const { return m_taken.count(column) != 0; }
    LPARAM delay() const { return m_delay; }

private:
    static LRESULT CALLBACK procedure(HWND, UINT, WPARAM, LPARAM);
    LRESULT notify(UINT code, int column) const;
    LRESULT set(WPARAM column, HDITEMW item);
    LRESULT get(WPARAM column, HDITEMW& item);

    HWND m_header;
    WNDPROC m_before = nullptr;
    std::map<int, std::wstring> m_texts;
    std::map<int, int> m_taken;
    LPARAM m_delay = 0;
    int m_opened = -1;
};
