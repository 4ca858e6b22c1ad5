#include "lornix/policies/policy_list.h"

#include "lornix/last_error.h"
#include "lornix/text/wide_text.h"

namespace lornix {

KeptFile PolicyList::file(const DataFolder& data) const
{
    return {data, data.root() + L'\\' + fileName_, title_};
}

KeptFile PolicyList::activeFile(const DataFolder& data) const
{
    return {data, data.root() + L"\\active-" + fileName_, title_ + std::wstring(L" as it is active")};
}

std::optional<PolicyRecords> PolicyList::read(const KeptFile& file, const StoreLock* lock) const
{
    Patience patience = lock == nullptr ? Patience::toRead() : Patience();
    return readKept<PolicyRecords>(
        file, lock, patience, [this](std::string_view text) { return readPolicy(format_, text); },
        [this](const PolicyRecords& content) { return writePolicy(format_, content.entries); });
}

bool PolicyList::load()
{
    release();
    const DataFolder data = DataFolder::current();
    if (!data.isKnown()) {
        return false;
    }
    const auto content = read(file(data), nullptr);
    if (!content) {
        return false;
    }
    std::size_t unreadable = 0;
    for (const PolicyRecord& record : content->entries) {
        unreadable += take(record) ? 0 : 1;
    }
    if (unreadable != 0) {
        report(title_ + std::wstring(L" holds ") + std::to_wstring(unreadable) +
               L" passwords that this account cannot read. They stay as they are.");
    }
    persistent_ = writePolicy(format_, content->entries);
    isLoaded_ = true;
    return true;
}

bool PolicyList::take(const PolicyRecord& record)
{
    PolicyEntry& entry = entries_.emplace_back();
    const auto put = [this](OwnedText& slot, std::u16string_view text) {
        slot = copyText(toWide(text).c_str());
        own_.insert(slot.get());
    };
    put(entry.text, record.text);
    entry.account = record.account;
    for (std::size_t i = 0; i < kAttributeCount; ++i) {
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
    own_.insert(password.get());
    return true;
}

std::optional<PolicyRecords> PolicyList::active(const DataFolder& data) const
{
    return read(activeFile(data), nullptr);
}

std::uint32_t PolicyList::count() const
{
    return static_cast<std::uint32_t>(entries_.size()) - removed_;
}

PolicyEntry* PolicyList::at(std::uint32_t index)
{
    return index < entries_.size() && !entries_[index].isRemoved ? &entries_[index] : nullptr;
}

void PolicyList::place(OwnedText& slot, const wchar_t* text)
{
    if (slot.get() == text) {
        return;
    }
    OwnedText next;
    if (text != nullptr && own_.contains(text)) {
        next = copyText(text);
    } else {
        next.reset(const_cast<wchar_t*>(text)); // handed over, although the contract says const
    }
    if (next != nullptr) {
        own_.insert(next.get());
    }
    if (slot != nullptr) {
        own_.erase(slot.get());
    }
    slot = std::move(next);
}

void PolicyList::refuse(const wchar_t* text)
{
    if (!own_.contains(text)) {
        const OwnedText unused(const_cast<wchar_t*>(text));
    }
}

std::uint32_t PolicyList::add(const wchar_t* text, const Sid& account)
{
    if (!isLoaded_ || text == nullptr) {
        refuse(text);
        return kNone;
    }
    PolicyEntry& entry = entries_.emplace_back();
    place(entry.text, text);
    entry.account = account;
    return static_cast<std::uint32_t>(entries_.size() - 1);
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
        ++removed_;
    }
}

bool PolicyList::toRecords(std::vector<PolicyRecord>& records)
{
    for (PolicyEntry& entry : entries_) {
        if (entry.isRemoved) {
            continue;
        }
        const wchar_t* password = entry.attributes[kPasswordAttribute].get();
        if (password != nullptr && entry.sealedPassword.empty()) {
            if (const DWORD error = sealText(password, entry.sealedPassword); error != ERROR_SUCCESS) {
                report(title_ + std::wstring(L" cannot be stored, because a password cannot be protected: ") +
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
                record.attributes[i] = fromWide(entry.attributes[i].get());
            }
        }
    }
    return true;
}

bool PolicyList::write(const KeptFile& file, const std::string& text, const std::string* expected) const
{
    const auto lock = openForChange(file.folder, file.title + L" cannot be stored");
    if (!lock) {
        return false;
    }
    Patience patience;
    if (expected != nullptr && !isAsLoaded(file, *expected, patience)) {
        return false;
    }
    // What is damaged is set aside first.
    return read(file, lock.get()).has_value() && replaceWith(file, text, patience);
}

bool PolicyList::isAsLoaded(const KeptFile& file, const std::string& loaded, Patience& patience) const
{
    std::string bytes;
    const Reading reading = readBytes(file, bytes, patience);
    if (reading == Reading::kFailed) {
        return false;
    }
    PolicyRecords present;
    if (reading == Reading::kDone) {
        present = readPolicy(format_, bytes);
        if (present.condition != Condition::kGood) {
            return true; // nobody's work, and kept as it is when ours takes its place
        }
    }
    if (writePolicy(format_, present.entries) != loaded) {
        report(file.title +
               L" was changed by somebody else since it was loaded, and is not replaced unseen.");
        return false;
    }
    return true;
}

bool PolicyList::store()
{
    if (!isLoaded_) {
        report(title_ + std::wstring(L" is not stored, because it is not loaded."));
        return false;
    }
    const DataFolder data = DataFolder::current();
    std::vector<PolicyRecord> records;
    if (!data.isKnown() || !toRecords(records)) {
        return false;
    }
    std::string text = writePolicy(format_, records);
    if (!write(file(data), text, &persistent_)) {
        return false;
    }
    persistent_ = std::move(text);
    return true;
}

bool PolicyList::apply()
{
    if (!isLoaded_) {
        report(title_ + std::wstring(L" is not made active, because it is not loaded."));
        return false;
    }
    const DataFolder data = DataFolder::current();
    return data.isKnown() && write(activeFile(data), persistent_, nullptr);
}

void PolicyList::release()
{
    isLoaded_ = false;
    own_.clear();
    entries_.clear();
    removed_ = 0;
    persistent_.clear();
}

} // namespace lornix
