// Rows that are out of their list.
#pragma once

#include "frame/platform.h"

#include <string>
#include <string_view>
#include <vector>

/// A row without its list.
struct SavedRow {
    int image = 0;
    LPARAM data = 0;
    UINT state = 0;         ///< LVIS_...: only for a row that goes back at once
    std::size_t begin = 0;  ///< of its texts
    std::size_t length = 0; ///< of all its texts, with the terminator of each
};

/// Rows in an order. Their texts lie one behind the other: of many rows, a block of memory for each would cost more than
/// what is done with them.
class SavedRows {
public:
    const std::vector<SavedRow>& rows() const { return m_rows; }

    /// The texts of a row, that of the first column and then the others, each with its terminator.
    const wchar_t* texts(const SavedRow& row) const { return m_texts.c_str() + row.begin; }
    const wchar_t* text(const SavedRow& row, int column) const;

    void reserve(std::size_t rows, std::size_t characters);
    std::size_t characters() const { return m_texts.size(); }

    /// Adds a row without texts.
    void add(int image, LPARAM data, UINT state);
    /// Adds the next text of the row that was added last.
    void addText(std::wstring_view text);

    /// Adds a row of others.
    void add(const SavedRows& others, const SavedRow& row);
    /// Adds all rows of others, in their order.
    void add(const SavedRows& others);

    void remove(std::size_t index) { m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(index)); }
    void clear();

private:
    std::vector<SavedRow> m_rows;
    std::wstring m_texts;
};
