#include "lornix/policies/policy_list.h"

#include "lornix/last_error.h"
#include "lornix/text/wide_text.h"

namespace lornix {

KeptFile PolicyList::file(const DataFolder& data) const
{
    // Passwords are among the attributes: sealed, and yet nobody's business.
    return {data, data.path(m_fileName), m_title,
            m_format.hasAttributes ? Readers::kAdministrators : Readers::kEverybody};
}

KeptFile PolicyList::activeFile(const DataFolder& data) const
{
    return {data, data.path(std::wstring(L"active-") + m_fileName),
            m_title + std::wstring(L" as it is active")};
}

std::optional<PolicyRecords> PolicyList::read(const KeptFile& file, Patience& patience) const
{
    return readKept<PolicyRecords>(file, patience,
                                   [this](std::string_view text) { return readPolicy(m_format, text); });
}

bool PolicyList::load()
{
    release();
    const DataFolder data = DataFolder::current();
    Patience patience = Patience::toRead();
    const auto content = data.isKnown() ? read(file(data), patience) : std::nullopt;
    if (!content) {
        return false;
    }
    std::size_t unreadable = 0;
    for (const PolicyRecord& record : content->entries) {
        if (!take(record)) {
            ++unreadable;
        }
    }
    if (unreadable != 0) {
        report(m_title + std::wstring(L" holds ") + std::to_wstring(unreadable) +
               L" passwords that this account cannot read. They stay as they are.");
    }
    m_persistent = writePolicy(m_format, content->entries);
    m_isLoaded = true;
    return true;
}

bool PolicyList::take(const PolicyRecord& record)
{
    PolicyEntry& entry = m_entries.emplace_back();
    const auto put = [this](OwnedText& slot, std::u16string_view text) {
        slot = copyText(toWide(text).c_str());
        m_own.insert(slot.get());
    };
    put(entry.text, record.text);
    entry.account = record.account;
    for (std::size_t i = 0; i < record.attributes.size(); ++i) {
        if (const auto& attribute = record.attributes[i]) {
            put(entry.attributes[i], *attribute);
        }
    }
    entry.sealedPassword = record.sealedPassword;
    if (entry.sealedPassword.empty()) {
        return true;
    }
    OwnedText& password = entry.attributes[kPasswordAttribute];
    if (unsealText(entry.sealedPassword, password) != ERROR_SUCCESS) {
        return false;
    }
    m_own.insert(password.get());
    return true;
}

std::optional<PolicyRecords> PolicyList::active(const DataFolder& data, Patience& patience) const
{
    return read(activeFile(data), patience);
}

std::uint32_t PolicyList::count() const
{
    return static_cast<std::uint32_t>(m_entries.size()) - m_removed;
}

PolicyEntry* PolicyList::at(std::uint32_t index)
{
    return index < m_entries.size() && !m_entries[index].isRemoved ? &m_entries[index] : nullptr;
}

void PolicyList::place(OwnedText& slot, const wchar_t* text)
{
    if (slot.get() == text) {
        return;
    }
    OwnedText next;
    if (text != nullptr && m_own.contains(text)) {
        next = copyText(text);
    } else {
        next.reset(const_cast<wchar_t*>(text)); // handed over, although the contract says const
    }
    if (next != nullptr) {
        m_own.insert(next.get());
    }
    if (slot != nullptr) {
        m_own.erase(slot.get());
    }
    slot = std::move(next);
}

void PolicyList::refuse(const wchar_t* text)
{
    if (!m_own.contains(text)) {
        const OwnedText unused(const_cast<wchar_t*>(text));
    }
}

std::uint32_t PolicyList::add(const wchar_t* text, const Sid& account)
{
    if (!m_isLoaded || text == nullptr) {
        refuse(text);
        return kNone;
    }
    PolicyEntry& entry = m_entries.emplace_back();
    place(entry.text, text);
    entry.account = account;
    return static_cast<std::uint32_t>(m_entries.size() - 1);
}

void PolicyList::update(std::uint32_t index, const wchar_t* text, const Sid& account)
{
    PolicyEntry* entry = at(index);
    if (entry == nullptr || text == nullptr) {
        refuse(text);
        return;
    }
    entry->account = account;
    place(entry->text, text);
}

void PolicyList::setAttribute(std::uint32_t index, std::uint32_t attribute, const wchar_t* text)
{
    PolicyEntry* entry = at(index);
    if (entry == nullptr || attribute >= kAttributeCount) {
        refuse(text);
        return;
    }
    OwnedText& slot = entry->attributes[attribute];
    // No password over one that nobody could read: the editor showed none, so nobody took it away.
    if (attribute == kPasswordAttribute && slot.get() != text) {
        entry->sealedPassword.clear();
    }
    place(slot, text);
}

void PolicyList::remove(std::uint32_t index)
{
    // It keeps its place, so that the others keep theirs.
    if (PolicyEntry* entry = at(index); entry != nullptr) {
        entry->isRemoved = true;
        ++m_removed;
    }
}

bool PolicyList::toRecords(std::deque<PolicyRecord>& records)
{
    for (PolicyEntry& entry : m_entries) {
        if (entry.isRemoved) {
            continue;
        }
        const wchar_t* password = entry.attributes[kPasswordAttribute].get();
        if (password != nullptr && entry.sealedPassword.empty()) {
            if (const DWORD error = sealText(password, entry.sealedPassword); error != ERROR_SUCCESS) {
                report(m_title +
                       std::wstring(L" cannot be stored, because a password cannot be protected: ") +
                       reasonOf(error));
                return false;
            }
        }
        PolicyRecord& record = records.emplace_back();
        record.text = fromWide(entry.text.get());
        record.account = entry.account;
        record.sealedPassword = entry.sealedPassword;
        for (std::size_t i = 0; i < kAttributeCount; ++i) {
            if (i != kPasswordAttribute && entry.attributes[i] != nullptr) {
                record.attributes.resize(kAttributeCount);
                record.attributes[i] = fromWide(entry.attributes[i].get());
            }
        }
    }
    return true;
}

bool PolicyList::store()
{
    if (!m_isLoaded) {
        report(m_title + std::wstring(L" is not stored, because it is not loaded."));
        return false;
    }
    if (count() > kMostEntries) {
        report(m_title + std::wstring(L" is not stored, because it has too many entries."));
        return false;
    }
    DataFolder data = DataFolder::current();
    std::deque<PolicyRecord> records;
    if (!data.isKnown() || !toRecords(records)) {
        return false;
    }
    KeptFile target = file(data);
    const auto lock = openForChange(data, target.title + L" cannot be stored");
    Patience patience;
    const auto present = lock ? read(target, patience) : std::nullopt;
    if (!present) {
        return false;
    }
    // A damaged file is no list that somebody stored meanwhile: it is set aside, and ours takes its place.
    if (present->condition == Condition::kGood && writePolicy(m_format, present->entries) != m_persistent) {
        report(target.title +
               L" was changed by somebody else since it was loaded, and is not replaced unseen.");
        return false;
    }
    std::string text = writePolicy(m_format, records);
    if (!replaceKept(target, present->condition, text, patience)) {
        return false;
    }
    m_persistent = std::move(text);
    return true;
}

bool PolicyList::apply()
{
    if (!m_isLoaded) {
        report(m_title + std::wstring(L" is not made active, because it is not loaded."));
        return false;
    }
    DataFolder data = DataFolder::current();
    const auto lock = openForChange(data, m_title + std::wstring(L" cannot be made active"));
    Patience patience;
    const auto stored = lock ? read(file(data), patience) : std::nullopt;
    if (!stored || stored->condition != Condition::kGood) {
        report(m_title + std::wstring(L" is not made active: it is not stored whole."));
        return false;
    }
    KeptFile target = activeFile(data);
    const auto present = read(target, patience);
    return present &&
           replaceKept(target, present->condition, writePolicy(m_format, stored->entries), patience);
}

void PolicyList::release()
{
    m_isLoaded = false;
    m_own.clear();
    m_entries.clear();
    m_removed = 0;
    m_persistent.clear();
}

} // namespace lornix
