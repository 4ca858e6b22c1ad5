// The policy lists as a store keeps them, behind the recording store.
#pragma once

#include "store/owned.h"
#include "tests/support/recording_store.h"

#include <array>
#include <string>
#include <vector>

/// Texts that go by stable indexes. They take over the malloc blocks that are handed in, and release them.
class StoredTexts {
public:
    std::uint32_t add(const wchar_t* text);
    void update(std::uint32_t index, const wchar_t* text);
    void remove(std::uint32_t index);

    /// Null for an entry that was removed or never there.
    const wchar_t* get(std::uint32_t index) const;

    /// What is there, in the order of the indexes.
    std::vector<std::wstring> present() const;
    std::uint32_t count() const { return static_cast<std::uint32_t>(m_texts.size()); }

private:
    std::vector<CBlock<wchar_t>> m_texts;
};

/// A recording store whose policy lists hold what the test puts in and what the editors make of it.
class PolicyStore : public RecordingStore {
public:
    PolicyStore();

    StoredTexts scripts;
    StoredTexts excludes;
    StoredTexts masks;
    StoredTexts accounts;
    StoredTexts tools;

    static constexpr const wchar_t* kNotSet = nullptr;

    /// A notification with its attributes 0 to 5.
    std::uint32_t putNotification(const wchar_t* script, const std::array<const wchar_t*, 6>& attributes);
    void putExclude(const wchar_t* path);
    void putMask(const wchar_t* mask, const void* sid);
    void putAccount(const wchar_t* name);
    void putTool(const wchar_t* name);

    /// An attribute of a notification, null when it is not set.
    const wchar_t* attribute(std::uint32_t index, std::uint32_t attribute) const;

    /// The account of a mask, null for all.
    const void* maskAccount(std::uint32_t index) const;

private:
    void answerForNotifications();
    void answerForTexts();
    void answerForMasks();

    std::vector<std::array<CBlock<wchar_t>, 6>> m_attributes;
    std::vector<std::vector<unsigned char>> m_maskAccounts;
};
