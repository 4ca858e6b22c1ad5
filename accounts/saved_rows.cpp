#include "accounts/saved_rows.h"

#include <cwchar>

const wchar_t* SavedRows::text(const SavedRow& row, int column) const
{
    const wchar_t* text = texts(row);
    for (; column > 0; --column) {
        text += std::wcslen(text) + 1;
    }
    return text;
}

void SavedRows::reserve(std::size_t rows, std::size_t characters)
{
    m_rows.reserve(rows);
    m_texts.reserve(characters);
}

void SavedRows::add(int image, LPARAM data, UINT state)
{
    m_rows.push_back({image, data, state, m_texts.size(), 0});
}

void SavedRows::addText(std::wstring_view text)
{
    m_texts += text;
    m_texts += L'\0';
    m_rows.back().length = m_texts.size() - m_rows.back().begin;
}

void SavedRows::add(const SavedRows& others, const SavedRow& row)
{
    SavedRow own = row;
    own.begin = m_texts.size();
    m_texts.append(others.m_texts, row.begin, row.length);
    m_rows.push_back(own);
}

void SavedRows::add(const SavedRows& others)
{
    for (SavedRow row : others.m_rows) {
        row.begin += m_texts.size();
        m_rows.push_back(row);
    }
    m_texts += others.m_texts;
}

void SavedRows::clear()
{
    m_rows.clear();
    m_texts.clear();
}
