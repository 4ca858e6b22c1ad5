#include "quota/rule_groups.h"

#include <bit>
#include <utility>

void RuleGroups::reserve(std::size_t rules)
{
    m_entries.reserve(rules);
    if (m_slots.size() < rules * 2) {
        makeSlots(std::bit_ceil(rules * 2));
    }
}

std::uint32_t RuleGroups::addOnTop(std::uint32_t hash, std::uint32_t rule)
{
    if (m_groups * 2 >= m_slots.size()) {
        makeSlots(m_slots.size() * 2);
    }
    Slot& slot = m_slots[slotOf(hash)];
    const bool isFirst = slot.top == kNone;
    if (isFirst) {
        slot.hash = hash;
        ++m_groups;
    }
    const std::uint32_t height = isFirst ? 1 : m_entries[slot.top].height + 1;
    m_entries.push_back({rule, slot.top, height});
    slot.top = static_cast<std::uint32_t>(m_entries.size() - 1);
    return height;
}

// The slot of a hash, or the free one where it belongs.
std::size_t RuleGroups::slotOf(std::uint32_t hash) const
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = hash & mask;
    while (m_slots[slot].top != kNone && m_slots[slot].hash != hash) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

void RuleGroups::makeSlots(std::size_t count)
{
    const std::vector<Slot> old = std::exchange(m_slots, std::vector<Slot>(count));
    for (const Slot& slot : old) {
        if (slot.top != kNone) {
            m_slots[slotOf(slot.hash)] = slot;
        }
    }
}
