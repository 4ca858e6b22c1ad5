// What tests of the policy lists share: the five lists by their functions.
#pragma once

#include "store_test.h"

namespace store_test {

inline constexpr std::uint32_t kNone = 0xFFFFFFFF;

/// A text that passes to the store.
inline wchar_t* copy(const wchar_t* text)
{
    return _wcsdup(text);
}

/// The functions of one list.
struct List {
    const char* name;
    const wchar_t* file;
    const char* firstLine;
    const char* word; ///< what an entry's line starts with, with the blank behind it
    int (*load)();
    const wchar_t* (*get)(std::uint32_t);
    std::uint32_t (*addText)(const wchar_t*);
    void (*updateText)(std::uint32_t, const wchar_t*);
    void (*remove)(std::uint32_t);
    void (*store)();
    void (*apply)(); ///< null for notifications
    void (*free)();

    std::uint32_t add(const std::wstring& text) const { return addText(_wcsdup(text.c_str())); }
    void update(std::uint32_t index, const std::wstring& text) const
    {
        updateText(index, _wcsdup(text.c_str()));
    }
};

inline const List kLists[] = {
    {"Notifications", L"notifications.txt", "lornix notifications 1", "notification ", loadNotifications,
     getNotifications, addToNotifications, updateNotifications, removeNotifications, storeNotifications,
     nullptr, freeNotifications},
    {"Excludes", L"excludes.txt", "lornix excludes 1", "exclude ", loadExcludes, getExcludes, addToExcludes,
     updateExcludes, removeExcludes, storeExcludes, applyExcludes, freeExcludes},
    {"ExcludeExts", L"blocked-extensions.txt", "lornix blocked-extensions 1", "mask anyone ", loadExcludeExts,
     getExcludeExtsPath, [](const wchar_t* text) { return addToExcludeExts(text, nullptr); },
     [](std::uint32_t index, const wchar_t* text) { updateExcludeExts(index, text, nullptr); },
     removeExcludeExts, storeExcludeExts, applyExcludeExts, freeExcludeExts},
    {"MgrAccounts", L"administrative-accounts.txt", "lornix administrative-accounts 1", "account ",
     loadMgrAccounts, getMgrAccounts, addToMgrAccounts, updateMgrAccounts, removeMgrAccounts,
     storeMgrAccounts, applyMgrAccounts, freeMgrAccounts},
    {"BackupTools", L"backup-tools.txt", "lornix backup-tools 1", "tool ", loadBackupTools, getBackupTools,
     addToBackupTools, updateBackupTools, removeBackupTools, storeBackupTools, applyBackupTools,
     freeBackupTools},
};

using Texts = std::vector<std::wstring>;

/// A test of all five lists.
class PolicyListTest : public StoreTest, public testing::WithParamInterface<List> {
protected:
    void TearDown() override
    {
        list().free();
        StoreTest::TearDown();
    }

    static const List& list() { return GetParam(); }
    std::filesystem::path file() const { return data() / list().file; }
    std::filesystem::path activeFile() const { return data() / (std::wstring(L"active-") + list().file); }

    /// The loaded entries up to the first that is none.
    static Texts texts()
    {
        Texts all;
        for (std::uint32_t i = 0; list().get(i) != nullptr; ++i) {
            all.emplace_back(list().get(i));
        }
        return all;
    }

    /// What a fresh load gives.
    static Texts storedTexts()
    {
        list().free();
        EXPECT_NE(list().load(), 0);
        return texts();
    }

    static void storeTexts(const Texts& all)
    {
        list().free();
        ASSERT_NE(list().load(), 0);
        while (!texts().empty()) {
            for (std::uint32_t i = 0, count = static_cast<std::uint32_t>(texts().size()); i < count; ++i) {
                list().remove(i);
            }
        }
        for (const std::wstring& text : all) {
            ASSERT_NE(list().add(text), kNone);
        }
        list().store();
        ASSERT_STREQ(lornixLastError(), L"");
        list().free();
    }

    void writeFile(const std::string& lines) const
    {
        std::filesystem::create_directories(data());
        writeBytes(file(), list().firstLine + std::string("\r\n") + lines);
    }

    std::string line(const std::string& text) const { return list().word + text + "\r\n"; }
};

inline void PrintTo(const List& list, std::ostream* out)
{
    *out << list.name;
}

inline auto eachList()
{
    return testing::ValuesIn(kLists);
}

inline std::string nameOf(const testing::TestParamInfo<List>& info)
{
    return info.param.name;
}

} // namespace store_test
