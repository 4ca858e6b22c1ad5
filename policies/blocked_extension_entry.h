// The entry dialog of the blocked extensions: a path mask and the account that it is blocked for.
#pragma once

#include "frame/platform.h"
#include "quota/rule_row.h"

#include <cstddef>
#include <cstdint>

/// The account of the entry at hand: a length, then that many bytes of a SID; length 0 means all accounts.
struct AccountBuffer {
    /// The longest SID that its one byte for the number of sub-authorities allows: none is too long.
    static constexpr std::uint32_t kCapacity = 8 + 255 * 4;

    std::uint32_t length = 0;
    std::uint8_t bytes[kCapacity] = {};

    void set(const void* account); ///< copies the account, null for all accounts
    const void* sid() const { return length != 0 ? bytes : nullptr; }
    AccountName name() const; ///< as it is shown, "(All)" for all accounts
};
static_assert(offsetof(AccountBuffer, bytes) == 4, "a SID needs no more than this alignment");

/// Asks for an entry.
/// @param mask     path mask to start with, null for none.
/// @param account  the account to start with; has the chosen one afterwards, also when cancelled.
/// @return the mask, a malloc block that passes to the caller; null when cancelled.
wchar_t* askBlockedExtension(HWND owner, const wchar_t* mask, AccountBuffer& account);
