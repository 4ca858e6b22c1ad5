// The text of the files that the policy lists are kept in: an entry a line, and the attributes of a notification
// in lines below it.
#pragma once

#include "lornix/text/framed_text.h"
#include "lornix/text/sid_text.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace lornix {

inline constexpr std::size_t kAttributeCount = 6;
inline constexpr std::size_t kPasswordAttribute = 4;

/// What the entries of a list are.
struct PolicyFormat {
    FileKind kind;
    std::string_view word;      ///< first word of an entry's line
    bool hasAccount = false;    ///< an account, or "anyone", stands before the text
    bool hasAttributes = false; ///< six attributes, one of them a password
};

/// An entry as a file keeps it.
struct PolicyRecord {
    std::u16string text;
    Sid account;                                                           ///< empty: all accounts
    std::array<std::optional<std::u16string>, kAttributeCount> attributes; ///< without the password
    std::string sealedPassword;                                            ///< bytes; empty: none
};

/// An editor shows them all at once, and memory is to stay in proportion to the file.
inline constexpr std::size_t kMostEntries = 100000;

/// Entries in the lines that the store writes.
struct PolicyLines : Finding {
    std::string lines;
    std::uint64_t mark = 0; ///< of all that were appended, also when their lines were not kept

    void append(const PolicyFormat& format, const PolicyRecord& entry);
};

/// Reads a file.
/// @param take  gets each entry that can be used; their lines are not kept then.
PolicyLines readPolicy(const PolicyFormat& format, std::string_view text,
                       const std::function<void(const PolicyRecord&)>& take = {});

/// A number with an optional unit letter K, M, G or T, cut to 32 bits.
/// @return 0 when the text does not begin with a number.
std::int32_t attributeNumber(std::u16string_view text);

} // namespace lornix
