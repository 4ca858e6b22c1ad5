// A policy list in memory, from its loading to its release.
#pragma once

#include "lornix/disk/kept_file.h"
#include "lornix/policies/list_strings.h"
#include "lornix/policies/policy_file.h"

#include <array>
#include <deque>

namespace lornix {

/// The attributes of an entry.
struct PolicyAttributes {
    std::array<const wchar_t*, kAttributeCount> texts{};
    std::string_view sealedPassword; ///< what the password was read from, until it is set anew
};

/// An entry. Its place in the list is its index and stays so until the list is released.
struct PolicyEntry {
    const wchar_t* text = nullptr;          ///< null once it is removed
    const void* account = nullptr;          ///< null: all accounts
    PolicyAttributes* attributes = nullptr; ///< null: none
};

/// A list of entries that is loaded, changed, and made persistent and active.
///
/// Active is what stands in the file "active-NAME.txt" of the data folder, for whoever enforces the list. Making a
/// list active writes what its file holds at that moment there, whoever stored it: what could not be stored changes
/// nothing, and what others stored meanwhile is not undone.
class PolicyList {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    /// @param title  starts a sentence: "The list of ...".
    PolicyList(const PolicyFormat& format, const wchar_t* title)
        : m_format(format)
        , m_title(title)
    {
    }
    PolicyList(const PolicyList&) = delete;
    PolicyList& operator=(const PolicyList&) = delete;

    /// @return false, with a report and an empty list, when it could not be read.
    bool load();

    /// Number of entries that are not removed.
    std::uint32_t count() const;

    /// @return null when there is no entry with that index.
    PolicyEntry* at(std::uint32_t index);

    /// @param text  see taken. Null adds nothing.
    /// @return the index; kNone when nothing was added.
    std::uint32_t add(const wchar_t* text, std::span<const std::uint8_t> account = {});

    /// @param text  see taken. Null changes nothing.
    void update(std::uint32_t index, const wchar_t* text, std::span<const std::uint8_t> account = {});
    void setAttribute(std::uint32_t index, std::uint32_t attribute, const wchar_t* text);
    void remove(std::uint32_t index);

    /// Releases a string that was handed over and finds no place.
    void refuse(const wchar_t* text);

    bool store();
    bool apply();
    void release();

    /// What is active. @return nothing, with a report, when it cannot be read.
    std::optional<PolicyLines> active(const DataFolder& data, Patience& patience) const
    {
        return read(activeFile(data), patience);
    }

private:
    /// @param text  a malloc block that passes to the list, or one of the list's own strings, which stays what it is.
    ///              Null is none.
    OwnedText taken(const wchar_t* text);

    /// Puts a string into an entry, in the place of another.
    void place(const wchar_t*& slot, OwnedText text);
    PolicyAttributes& attributesOf(PolicyEntry& entry);
    void setAccount(PolicyEntry& entry, std::span<const std::uint8_t> account);

    /// Of the persistent file.
    std::wstring fileName() const;
    KeptFile file(const DataFolder& data) const;
    KeptFile activeFile(const DataFolder& data) const;
    using Take = std::function<void(const PolicyRecord&)>;
    std::optional<PolicyLines> read(const KeptFile& file, Patience& patience, const Take& take = {}) const;

    /// @return false when its password cannot be read.
    bool take(const PolicyRecord& record);
    /// @return false, with a report, when a password cannot be protected.
    bool write(PolicyLines& lines);
    bool seal(PolicyAttributes& attributes);

    PolicyFormat m_format;
    std::wstring m_title;
    bool m_isLoaded = false;
    std::deque<PolicyEntry> m_entries; ///< none of them moves
    std::deque<PolicyAttributes> m_attributes;
    std::uint32_t m_removed = 0; ///< how many entries are removed: editors count before each row
    ListStrings m_strings;
    std::uint64_t m_seen = 0; ///< mark of the entries in the file as loaded or last stored
};

} // namespace lornix
