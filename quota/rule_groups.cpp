#include "quota/rule_groups.h"

#include <utility>

void RuleGroups::reserve(std::size_t rules)
{
    m_entries.reserve(rules);
    while (m_slots.size() < rules * 2) {
        grow();
    }
}

std::uint32_t RuleGroups::addOnTop(std::uint64_t hash, QuotaRule& rule)
{
    if (m_groups * 2 >= m_slots.size()) {
        grow();
    }
    Slot& slot = m_slots[slotOf(hash)];
    if (slot.top == kNone) {
        slot.hash = hash;
        ++m_groups;
    }
    m_entries.push_back({&rule, slot.top});
    slot.top = static_cast<std::uint32_t>(m_entries.size() - 1);
    return ++slot.count;
}

// The slot of a hash, or the free one where it belongs.
std::size_t RuleGroups::slotOf(std::uint64_t hash) const
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = (hash ^ (hash >> 32)) & mask;
    while (m_slots[slot].top != kNone && m_slots[slot].hash != hash) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

void RuleGroups::grow()
{
    const std::vector<Slot> old = std::exchange(m_slots, std::vector<Slot>(m_slots.size() * 2));
    for (const Slot& slot : old) {
        if (slot.top != kNone) {
            m_slots[slotOf(slot.hash)] = slot;
        }
    }
}
