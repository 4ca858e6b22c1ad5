#include "lornix/policies/policy_list.h"

#include "lornix/last_error.h"
#include "lornix/sid.h"
#include "lornix/text/wide_text.h"

#include <utility>

namespace lornix {

std::wstring PolicyList::fileName() const
{
    return std::wstring(m_format.kind.name.begin(), m_format.kind.name.end()) + L".txt";
}

KeptFile PolicyList::file(const DataFolder& data) const
{
    // Passwords are among the attributes: sealed, and yet nobody's business.
    return {data, data.path(fileName()), m_title,
            m_format.hasAttributes ? Readers::kAdministrators : Readers::kEverybody};
}

KeptFile PolicyList::activeFile(const DataFolder& data) const
{
    return {data, data.path(L"active-" + fileName()), m_title + L" as it is active"};
}

std::optional<PolicyLines> PolicyList::read(const KeptFile& file, Patience& patience, const Take& take) const
{
    return readKept<PolicyLines>(file, patience,
                                 [&](std::string_view text) { return readPolicy(m_format, text, take); });
}

bool PolicyList::load()
{
    release();
    const DataFolder data = DataFolder::current();
    if (!data.isKnown()) {
        return false;
    }
    Patience patience = Patience::toRead();
    std::size_t unreadable = 0;
    const auto found =
        read(file(data), patience, [&](const PolicyRecord& record) { unreadable += take(record) ? 0u : 1u; });
    if (!found) {
        return false;
    }
    if (unreadable != 0) {
        report(m_title + L" holds " + std::to_wstring(unreadable) +
               L" passwords that this account cannot read. They stay as they are.");
    }
    m_seen = found->mark;
    m_isLoaded = true;
    return true;
}

bool PolicyList::take(const PolicyRecord& record)
{
    PolicyEntry& entry = m_entries.emplace_back();
    entry.text = m_strings.copy(record.text);
    setAccount(entry, record.account.bytes());
    for (std::size_t i = 0; i < kAttributeCount; ++i) {
        if (const auto& attribute = record.attributes[i]) {
            attributesOf(entry).texts[i] = m_strings.copy(*attribute);
        }
    }
    if (record.sealedPassword.empty()) {
        return true;
    }
    attributesOf(entry).sealedPassword = m_strings.copy(record.sealedPassword);
    OwnedText password;
    if (unsealText(record.sealedPassword, password) != ERROR_SUCCESS) {
        return false;
    }
    attributesOf(entry).texts[kPasswordAttribute] = m_strings.keep(std::move(password));
    return true;
}

PolicyAttributes& PolicyList::attributesOf(PolicyEntry& entry)
{
    if (entry.attributes == nullptr) {
        entry.attributes = &m_attributes.emplace_back();
    }
    return *entry.attributes;
}

void PolicyList::setAccount(PolicyEntry& entry, std::span<const std::uint8_t> account)
{
    entry.account = account.empty() ? nullptr : m_strings.copy(sidKey(account)).data();
}

std::uint32_t PolicyList::count() const
{
    return m_isLoaded ? static_cast<std::uint32_t>(m_entries.size()) - m_removed : 0;
}

PolicyEntry* PolicyList::at(std::uint32_t index)
{
    // What was read before memory ran out is no list.
    const bool isThere = m_isLoaded && index < m_entries.size() && m_entries[index].text != nullptr;
    return isThere ? &m_entries[index] : nullptr;
}

OwnedText PolicyList::taken(const wchar_t* text)
{
    // What is handed over is the list's now, although the contract says const.
    return m_strings.own(text) ? copyText(text) : OwnedText(const_cast<wchar_t*>(text));
}

void PolicyList::place(const wchar_t*& slot, OwnedText text)
{
    const wchar_t* const next = text == nullptr ? nullptr : m_strings.keep(std::move(text));
    m_strings.drop(slot);
    slot = next;
}

void PolicyList::refuse(const wchar_t* text)
{
    if (!m_strings.own(text)) {
        const OwnedText unused(const_cast<wchar_t*>(text));
    }
}

std::uint32_t PolicyList::add(const wchar_t* text, std::span<const std::uint8_t> account)
{
    if (!m_isLoaded || text == nullptr) {
        refuse(text);
        return kNone;
    }
    OwnedText mine = taken(text);
    PolicyEntry entry; // which is added when it is whole
    setAccount(entry, account);
    place(entry.text, std::move(mine));
    m_entries.push_back(entry);
    return static_cast<std::uint32_t>(m_entries.size() - 1);
}

void PolicyList::update(std::uint32_t index, const wchar_t* text, std::span<const std::uint8_t> account)
{
    PolicyEntry* entry = at(index);
    if (entry == nullptr || text == nullptr) {
        refuse(text);
        return;
    }
    PolicyEntry changed = *entry;
    OwnedText mine = text == changed.text ? OwnedText() : taken(text);
    setAccount(changed, account);
    if (mine != nullptr) {
        place(changed.text, std::move(mine));
    }
    *entry = changed;
}

void PolicyList::setAttribute(std::uint32_t index, std::uint32_t attribute, const wchar_t* text)
{
    PolicyEntry* entry = at(index);
    if (entry == nullptr || attribute >= kAttributeCount) {
        refuse(text);
        return;
    }
    if (text == (entry->attributes == nullptr ? nullptr : entry->attributes->texts[attribute])) {
        return;
    }
    OwnedText mine = taken(text);
    PolicyAttributes& attributes = attributesOf(*entry);
    place(attributes.texts[attribute], std::move(mine));
    // No password over one that nobody could read: the editor showed none, so nobody took it away.
    if (attribute == kPasswordAttribute) {
        attributes.sealedPassword = {};
    }
}

void PolicyList::remove(std::uint32_t index)
{
    // It keeps its place, so that the others keep theirs, and its strings, which the host may still look at.
    if (PolicyEntry* entry = at(index); entry != nullptr) {
        entry->text = nullptr;
        ++m_removed;
    }
}

bool PolicyList::seal(PolicyAttributes& attributes)
{
    const wchar_t* password = attributes.texts[kPasswordAttribute];
    if (password == nullptr || !attributes.sealedPassword.empty()) {
        return true;
    }
    std::string sealed;
    if (const DWORD error = sealText(password, sealed); error != ERROR_SUCCESS) {
        report(m_title + L" cannot be stored, because a password cannot be protected: " + reasonOf(error));
        return false;
    }
    attributes.sealedPassword = m_strings.copy(sealed);
    return true;
}

bool PolicyList::write(PolicyLines& lines)
{
    for (const PolicyEntry& entry : m_entries) {
        if (entry.text == nullptr) {
            continue;
        }
        PolicyRecord record;
        record.text = fromWide(entry.text);
        record.account = Sid(sidBytes(entry.account));
        if (PolicyAttributes* const attributes = entry.attributes) {
            if (!seal(*attributes)) {
                return false;
            }
            record.sealedPassword = attributes->sealedPassword;
            for (std::size_t i = 0; i < kAttributeCount; ++i) {
                if (i != kPasswordAttribute && attributes->texts[i] != nullptr) {
                    record.attributes[i] = fromWide(attributes->texts[i]);
                }
            }
        }
        lines.append(m_format, record);
    }
    return true;
}

bool PolicyList::store()
{
    if (!m_isLoaded) {
        report(m_title + L" is not stored, because it is not loaded.");
        return false;
    }
    if (count() > kMostEntries) {
        report(m_title + L" is not stored, because it has too many entries.");
        return false;
    }
    DataFolder data = DataFolder::current();
    PolicyLines ours;
    if (!data.isKnown() || !write(ours)) {
        return false;
    }
    KeptFile target = file(data);
    const auto lock = openForChange(data, m_title + L" cannot be stored");
    Patience patience;
    const auto present = lock ? read(target, patience) : std::nullopt;
    if (!present) {
        return false;
    }
    // A damaged file is no list that somebody stored meanwhile: it is set aside, and ours takes its place.
    if (present->condition == Condition::kGood && present->mark != m_seen) {
        report(m_title + L" was changed by somebody else since it was loaded, and is not replaced unseen.");
        return false;
    }
    if (!replaceKept(target, present->condition, wholeText(m_format.kind, ours.lines), patience)) {
        return false;
    }
    m_seen = ours.mark;
    return true;
}

bool PolicyList::apply()
{
    if (!m_isLoaded) {
        report(m_title + L" is not made active, because it is not loaded.");
        return false;
    }
    DataFolder data = DataFolder::current();
    const auto lock = openForChange(data, m_title + L" cannot be made active");
    Patience patience;
    const auto stored = lock ? read(file(data), patience) : std::nullopt;
    if (!stored || stored->condition != Condition::kGood) {
        report(m_title + L" is not made active: it is not stored whole.");
        return false;
    }
    KeptFile target = activeFile(data);
    const auto present = read(target, patience);
    return present &&
           replaceKept(target, present->condition, wholeText(m_format.kind, stored->lines), patience);
}

void PolicyList::release()
{
    m_isLoaded = false;
    m_entries = std::deque<PolicyEntry>(); // clearing would keep a part of their room
    m_attributes = std::deque<PolicyAttributes>();
    m_strings = ListStrings();
    m_removed = 0;
}

} // namespace lornix
