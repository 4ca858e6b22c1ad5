// The bare control doing what the account list does, with everything else ready beforehand.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

/// The rows of a fill, and the messages alone that put them into a list and take them out.
class BareList {
public:
    /// @param users  that the store serves.
    explicit BareList(int users);

    /// Inserts all rows.
    void fill(HWND list) const;

    /// Rows of a fill whose accounts begin with a text, or do not, in any case.
    std::vector<int> rows(std::wstring_view start, bool beginning) const;

    /// Two ways to take rows out of a list that was just filled. Which ones is known.
    void removeOneByOne(HWND list, const std::vector<int>& going) const;
    void rebuild(HWND list, const std::vector<int>& staying) const;

    /// Puts rows back and sorts all by account.
    void putBack(HWND list, const std::vector<int>& comingBack, bool fromZ) const;

    void sort(HWND list, bool fromZ) const;

private:
    struct Row {
        wchar_t* account; ///< the other texts stand behind it
        wchar_t* fullName;
        wchar_t* type;
        int image;
    };
    void add(const wchar_t* account, const wchar_t* fullName, const wchar_t* type, int image);
    void insert(HWND list, const Row& row) const;

    std::vector<wchar_t> m_texts;
    std::vector<Row> m_rows;
};
