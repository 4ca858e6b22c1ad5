// A text of which nothing stays behind.
#pragma once

#include "frame/platform.h"

#include <cwchar>
#include <utility>
#include <vector>

/// A text that may also be not set. Whatever it held is wiped before its memory is given back: it may be a password.
class WipedText {
public:
    WipedText() = default;
    WipedText(WipedText&& other) noexcept
        : m_text(std::move(other.m_text))
    {
    }
    WipedText& operator=(WipedText&& other) noexcept
    {
        std::swap(m_text, other.m_text);
        return *this;
    }
    ~WipedText() { wipe(); }

    /// The text, null when it is not set.
    const wchar_t* get() const { return m_text.empty() ? nullptr : m_text.data(); }

    /// @param text  copied; null: not set.
    void set(const wchar_t* text)
    {
        std::vector<wchar_t> copy; // of its final size at once: a buffer that grew would leave a copy behind
        if (text != nullptr) {
            copy.assign(text, text + std::wcslen(text) + 1);
        }
        wipe();
        m_text.swap(copy);
    }

private:
    void wipe()
    {
        if (!m_text.empty()) {
            SecureZeroMemory(m_text.data(), m_text.size() * sizeof(wchar_t));
        }
    }

    std::vector<wchar_t> m_text; ///< with its terminator; empty: not set
};
