#include "tests/support/policy_store.h"

#include <windows.h>

#include <cwchar>

namespace {

CBlock<wchar_t> takeOver(const wchar_t* text)
{
    return CBlock<wchar_t>(const_cast<wchar_t*>(text));
}

std::vector<unsigned char> bytesOf(const void* sid)
{
    const auto* const bytes = static_cast<const unsigned char*>(sid);
    return sid == nullptr ? std::vector<unsigned char>()
                          : std::vector<unsigned char>(bytes, bytes + GetLengthSid(const_cast<void*>(sid)));
}

// The number that an attribute's text stands for, as far as these tests use it.
int32_t numberOf(const wchar_t* text)
{
    if (text == nullptr) {
        return 0;
    }
    wchar_t* end = nullptr;
    const long number = std::wcstol(text, &end, 10);
    switch (*end) {
    case L'k':
        return number * 1024;
    case L'm':
        return number * 1024 * 1024;
    default:
        return number;
    }
}

} // namespace

std::uint32_t StoredTexts::add(const wchar_t* text)
{
    m_texts.push_back(takeOver(text));
    return count() - 1;
}

void StoredTexts::update(std::uint32_t index, const wchar_t* text)
{
    if (m_texts.at(index).get() != text) { // its own string back
        m_texts[index] = takeOver(text);
    }
}

void StoredTexts::remove(std::uint32_t index)
{
    m_texts.at(index).reset();
}

const wchar_t* StoredTexts::get(std::uint32_t index) const
{
    return index < m_texts.size() ? m_texts[index].get() : nullptr;
}

std::vector<std::wstring> StoredTexts::present() const
{
    std::vector<std::wstring> texts;
    for (const auto& text : m_texts) {
        if (text) {
            texts.emplace_back(text.get());
        }
    }
    return texts;
}

PolicyStore::PolicyStore()
{
    answerForNotifications();
    answerForTexts();
    answerForMasks();
}

void PolicyStore::answerForNotifications()
{
    answer.getNotificationsCount = [this] {
        return scripts.count();
    };
    answer.getNotifications = [this](uint32_t index) {
        return scripts.get(index);
    };
    answer.getNAttr = [this](uint32_t index, uint32_t which) {
        return attribute(index, which);
    };
    answer.getINAttr = [this](uint32_t index, uint32_t which) {
        return numberOf(attribute(index, which));
    };
    answer.setNAttr = [this](uint32_t index, uint32_t which, const wchar_t* text) {
        CBlock<wchar_t>& attribute = m_attributes.at(index).at(which);
        if (attribute) { // a store that leaves passwords lying about would hide those of the dialogs
            SecureZeroMemory(attribute.get(), std::wcslen(attribute.get()) * sizeof(wchar_t));
        }
        attribute = takeOver(text);
    };
    answer.addToNotifications = [this](const wchar_t* script) {
        m_attributes.emplace_back();
        return scripts.add(script);
    };
    answer.updateNotifications = [this](uint32_t index, const wchar_t* script) {
        scripts.update(index, script);
    };
    answer.removeNotifications = [this](uint32_t index) {
        scripts.remove(index);
    };
}

void PolicyStore::answerForTexts()
{
    const auto get = [](StoredTexts& texts) {
        return [&texts](uint32_t index) {
            return texts.get(index);
        };
    };
    const auto add = [](StoredTexts& texts) {
        return [&texts](const wchar_t* text) {
            return texts.add(text);
        };
    };
    const auto update = [](StoredTexts& texts) {
        return [&texts](uint32_t index, const wchar_t* text) {
            texts.update(index, text);
        };
    };
    const auto remove = [](StoredTexts& texts) {
        return [&texts](uint32_t index) {
            texts.remove(index);
        };
    };
    answer.getExcludes = get(excludes);
    answer.addToExcludes = add(excludes);
    answer.updateExcludes = update(excludes);
    answer.removeExcludes = remove(excludes);
    answer.getMgrAccounts = get(accounts);
    answer.addToMgrAccounts = add(accounts);
    answer.updateMgrAccounts = update(accounts);
    answer.removeMgrAccounts = remove(accounts);
    answer.getBackupTools = get(tools);
    answer.addToBackupTools = add(tools);
    answer.updateBackupTools = update(tools);
    answer.removeBackupTools = remove(tools);
}

void PolicyStore::answerForMasks()
{
    answer.getExcludeExtsPath = [this](uint32_t index) {
        return masks.get(index);
    };
    answer.getExcludeExtsSid = [this](uint32_t index) {
        return maskAccount(index);
    };
    answer.addToExcludeExts = [this](const wchar_t* mask, const void* sid) {
        m_maskAccounts.push_back(bytesOf(sid));
        return masks.add(mask);
    };
    answer.updateExcludeExts = [this](uint32_t index, const wchar_t* mask, const void* sid) {
        masks.update(index, mask);
        m_maskAccounts.at(index) = bytesOf(sid);
    };
    answer.removeExcludeExts = [this](uint32_t index) {
        masks.remove(index);
    };
}

std::uint32_t PolicyStore::putNotification(const wchar_t* script,
                                           const std::array<const wchar_t*, 6>& attributes)
{
    m_attributes.emplace_back();
    for (size_t i = 0; i < attributes.size(); ++i) {
        if (attributes[i] != nullptr) {
            m_attributes.back()[i].reset(_wcsdup(attributes[i]));
        }
    }
    return scripts.add(_wcsdup(script));
}

void PolicyStore::putExclude(const wchar_t* path)
{
    excludes.add(_wcsdup(path));
}

void PolicyStore::putMask(const wchar_t* mask, const void* sid)
{
    masks.add(_wcsdup(mask));
    m_maskAccounts.push_back(bytesOf(sid));
}

void PolicyStore::putAccount(const wchar_t* name)
{
    accounts.add(_wcsdup(name));
}

void PolicyStore::putTool(const wchar_t* name)
{
    tools.add(_wcsdup(name));
}

const wchar_t* PolicyStore::attribute(std::uint32_t index, std::uint32_t attribute) const
{
    return m_attributes.at(index).at(attribute).get();
}

const void* PolicyStore::maskAccount(std::uint32_t index) const
{
    const std::vector<unsigned char>& bytes = m_maskAccounts.at(index);
    return bytes.empty() ? nullptr : bytes.data();
}
