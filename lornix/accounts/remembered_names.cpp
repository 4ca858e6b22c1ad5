#include "lornix/accounts/remembered_names.h"

#include "lornix/sid.h"

#include <windows.h>

#include <iterator>
#include <list>
#include <mutex>
#include <new>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lornix {
namespace {

constexpr std::size_t kMostNames = 100000;
constexpr std::size_t kBatch = 250; // nobody waits long for it, even where the platform looks up one by one
constexpr ULONGLONG kLifetime = 60000; // milliseconds

/// Entries by the bytes of a SID, the oldest in front; the oldest one leaves when there are too many.
/// @tparam Entry  has the bytes in `sid`.
template <class Entry>
class Ageing {
public:
    Entry* find(const std::string& sid)
    {
        const auto found = m_places.find(sid);
        return found == m_places.end() ? nullptr : &*found->second;
    }
    Entry* oldest() { return m_entries.empty() ? nullptr : &m_entries.front(); }

    void remove(const std::string& sid)
    {
        if (const auto found = m_places.find(sid); found != m_places.end()) {
            const auto place = found->second;
            m_places.erase(found); // first: its key lies in the entry
            m_entries.erase(place);
        }
    }

    /// Takes the place of an older one.
    void add(Entry entry)
    {
        remove(entry.sid);
        m_entries.push_back(std::move(entry));
        m_places.emplace(m_entries.back().sid, std::prev(m_entries.end()));
        if (m_entries.size() > kMostNames) {
            remove(std::string(m_entries.front().sid));
        }
    }

private:
    std::list<Entry> m_entries;
    std::unordered_map<std::string_view, typename std::list<Entry>::iterator> m_places;
};

struct Name {
    std::string sid;
    std::wstring name;
    ULONGLONG since;
    bool isOver(ULONGLONG now) const { return now - since >= kLifetime; }
};
struct Expected {
    std::string sid;
};

std::mutex guard;
Ageing<Name> names;
Ageing<Expected> expected;

/// An account and those that are to be asked for with it: expected ones, or others whose time is over too.
std::vector<std::string> batchWith(const std::string& sid, ULONGLONG now)
{
    std::vector<std::string> batch{sid};
    const bool isExpected = expected.find(sid) != nullptr;
    const bool isOld = names.find(sid) != nullptr;
    expected.remove(sid);
    names.remove(sid);
    while (isExpected && batch.size() < kBatch && expected.oldest() != nullptr) {
        std::string next = expected.oldest()->sid;
        expected.remove(next);
        const Name* name = names.find(next);
        if (name == nullptr || name->isOver(now)) {
            batch.push_back(std::move(next));
        }
    }
    while (isOld && batch.size() < kBatch && names.oldest() != nullptr && names.oldest()->isOver(now)) {
        batch.push_back(names.oldest()->sid);
        names.remove(batch.back());
    }
    return batch;
}

std::wstring remembered(AccountSource& source, const void* sid)
{
    const std::string key(sidKey(sid));
    const ULONGLONG now = GetTickCount64();
    std::vector<std::string> batch;
    {
        const std::lock_guard lock(guard);
        const Name* found = names.find(key);
        if (found != nullptr && !found->isOver(now)) {
            return found->name;
        }
        batch = batchWith(key, now);
    }
    std::vector<std::wstring> answers = source.namesOf(batch); // unlocked: it may take long
    const std::lock_guard lock(guard);
    for (std::size_t i = 0; i < answers.size(); ++i) {
        names.add({batch[i], answers[i], now});
    }
    return answers.front();
}

} // namespace

std::wstring accountName(const void* sid)
{
    if (!isSid(sid)) {
        return {};
    }
    for (AccountSource* source : accountSources()) {
        const bool isPlatform = source == &platformAccounts();
        if (std::wstring name = isPlatform ? remembered(*source, sid) : source->nameOf(sid); !name.empty()) {
            return name;
        }
    }
    return {};
}

void expectName(const void* sid) noexcept
{
    if (!isSid(sid)) {
        return;
    }
    const std::lock_guard lock(guard);
    try {
        std::string key(sidKey(sid));
        const Name* known = names.find(key);
        if (known == nullptr || known->isOver(GetTickCount64())) {
            expected.add({std::move(key)});
        }
    } catch (const std::bad_alloc&) {
        expected = {}; // each is asked for by itself then
    }
}

} // namespace lornix
