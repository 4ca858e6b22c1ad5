#include "accounts/preset_owners.h"

#include "frame/platform.h"
#include "store/lornix.h"

namespace {

// A shorter list is scanned: hundreds of thousands of accounts against it cost less than a second.
constexpr int kShortList = 32;

std::string_view bytesOf(void* sid)
{
    return {static_cast<const char*>(sid), GetLengthSid(sid)};
}

bool sameSid(const void* entry, const void* sid)
{
    return entry == sid || sidcmp(entry, sid) == 0;
}

} // namespace

bool PresetOwners::contains(void* sid)
{
    if (m_list == nullptr || sid == nullptr) {
        return true;
    }
    if (m_list->count > kShortList && IsValidSid(sid)) {
        makeIndex();
        if (m_indexUsable) {
            const auto found = m_byBytes.find(bytesOf(sid));
            return found != m_byBytes.end() && (sameSid(found->second, sid) || scan(sid));
        }
    }
    return scan(sid);
}

bool PresetOwners::scan(const void* sid) const
{
    for (int i = 0; i < m_list->count; ++i) {
        if (sameSid(m_list->sids[i], sid)) {
            return true;
        }
    }
    return false;
}

void PresetOwners::makeIndex()
{
    if (m_indexed) {
        return;
    }
    m_indexed = true;
    for (int i = 0; i < m_list->count; ++i) {
        void* const entry = m_list->sids[i];
        if (entry == nullptr) {
            continue; // equal to no account
        }
        if (!IsValidSid(entry)) {
            m_byBytes.clear();
            return;
        }
        m_byBytes.emplace(bytesOf(entry), entry);
    }
    m_indexUsable = true;
}
