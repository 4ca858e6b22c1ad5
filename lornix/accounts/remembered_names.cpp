#include "lornix/accounts/remembered_names.h"

#include "lornix/accounts/name_lookup.h"
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

struct Name {
    std::string sid; ///< its bytes
    std::wstring name;
    ULONGLONG since = 0;
    bool isOver(ULONGLONG now) const { return now - since >= kLifetime; }
};

/// Names by the bytes of a SID, the oldest in front; the oldest one leaves when there are too many.
class Names {
public:
    const Name* find(const std::string& sid) const
    {
        const auto found = m_places.find(sid);
        return found == m_places.end() ? nullptr : &*found->second;
    }
    const Name* oldest() const { return m_names.empty() ? nullptr : &m_names.front(); }

    void remove(const std::string& sid)
    {
        if (const auto found = m_places.find(sid); found != m_places.end()) {
            const auto place = found->second;
            m_places.erase(found); // first: its key lies in the name
            m_names.erase(place);
        }
    }

    /// Takes the place of an older one.
    void add(Name name)
    {
        remove(name.sid);
        m_names.push_back(std::move(name));
        m_places.emplace(m_names.back().sid, std::prev(m_names.end()));
        if (m_names.size() > kMostNames) {
            remove(std::string(m_names.front().sid));
        }
    }

private:
    std::list<Name> m_names;
    std::unordered_map<std::string_view, std::list<Name>::iterator> m_places;
};

std::mutex guard;
Names names;
Names expected; // without what they are

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

} // namespace

std::wstring platformName(const void* sid)
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
    const std::vector<std::wstring> answers = lookUpNames(batch); // unlocked: it may take long
    const std::lock_guard lock(guard);
    for (std::size_t i = 0; i < answers.size(); ++i) {
        names.add({batch[i], answers[i], now});
    }
    return answers.front();
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
            expected.add({.sid = std::move(key), .name = {}});
        }
    } catch (const std::bad_alloc&) {
        expected = {}; // each is asked for by itself then
    }
}

} // namespace lornix
