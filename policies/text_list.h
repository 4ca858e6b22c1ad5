// Adding and editing for the lists whose entries are a text and nothing else.
#pragma once

#include "policies/list_editor.h"

/// @tparam List  has the static functions
///     wchar_t* ask(HWND owner, const wchar_t* current)      the text to take, null for none; `current` itself is
///                                                           a possible answer
///     const wchar_t* get(std::uint32_t index)               see the store
///     std::uint32_t add(const wchar_t* text)
///     void update(std::uint32_t index, const wchar_t* text)
template <class List>
struct TextList {
    static std::optional<ListEntry> add(HWND dialog)
    {
        const wchar_t* text = List::ask(dialog, nullptr);
        if (text == nullptr) {
            return std::nullopt;
        }
        ListEntry added{0, text}; // the store owns the text once it has it
        unwinding([&] { added.index = List::add(text); });
        return added;
    }

    static std::optional<std::wstring> edit(HWND dialog, std::uint32_t index)
    {
        const wchar_t* text = List::ask(dialog, List::get(index));
        if (text == nullptr) {
            return std::nullopt;
        }
        std::wstring shown = text;
        unwinding([&] { List::update(index, text); });
        return shown;
    }
};
