#include "frame/stand_ins.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t kBlockSize = 1u << 20; // bytes per reserved block; nothing is ever committed in it
// The last byte stands for nothing: in the highest block it would be -1 in 32 bits, which is no result of a dialog.
constexpr std::size_t kNumbersPerBlock = kBlockSize - 1;

LPARAM keyOf(const void* object)
{
    return reinterpret_cast<LPARAM>(object);
}

LPARAM keyOf(std::uint32_t value)
{
    return static_cast<LPARAM>(static_cast<UINT_PTR>(value));
}

} // namespace

std::uint32_t StandIns::known(const void* object)
{
    Entry* const entry = entryOf(m_byObject, keyOf(object));
    return entry != nullptr ? entry->value : 0;
}

const void* StandIns::object(std::uint32_t value)
{
    Entry* const entry = entryOf(m_byValue, keyOf(value));
    return entry != nullptr ? entry->object : nullptr;
}

StandIns::Entry* StandIns::entryOf(const DataTable<Place>& places, LPARAM key)
{
    const Place place = places.of(key);
    if (!place.taken) {
        return nullptr;
    }
    Entry& entry = m_entries[place.entry];
    entry.asked = true;
    return &entry;
}

std::uint32_t StandIns::add(const void* object, DWORD thread)
{
    const std::uint32_t value = next();
    if (value == 0) {
        return 0;
    }
    m_entries.push_back({object, value, thread, true, false});
    if (m_entries.size() > m_places) {
        placeAll();
    } else {
        place(static_cast<std::uint32_t>(m_entries.size() - 1));
    }
    return value;
}

void StandIns::place(std::uint32_t entry)
{
    m_byObject.add(keyOf(m_entries[entry].object), {entry, true});
    m_byValue.add(keyOf(m_entries[entry].value), {entry, true});
}

void StandIns::placeAll()
{
    m_places = std::max(m_entries.size() * 2, kFewest);
    m_byObject = DataTable<Place>(m_places);
    m_byValue = DataTable<Place>(m_places);
    for (std::uint32_t entry = 0; entry < m_entries.size(); ++entry) {
        place(entry);
    }
}

bool StandIns::isOne(std::uint32_t value) const
{
    return std::ranges::any_of(m_blocks, [=](const LowBlock& block) {
        return value - reinterpret_cast<UINT_PTR>(block.get()) < kNumbersPerBlock;
    });
}

std::uint32_t StandIns::numberAt(std::size_t index) const
{
    const LowBlock& block = m_blocks[index / kNumbersPerBlock];
    return static_cast<std::uint32_t>(reinterpret_cast<UINT_PTR>(block.get()) + index % kNumbersPerBlock);
}

// Round and round, so that a number rests for as long as possible before it stands for something else.
std::uint32_t StandIns::next()
{
    std::size_t all = m_blocks.size() * kNumbersPerBlock;
    if (m_entries.size() >= all / 2) {
        if (LowBlock block = reserveBelowFourGiB(kBlockSize)) {
            m_blocks.push_back(std::move(block));
            m_next = all;
            all += kNumbersPerBlock;
        }
    }
    if (m_entries.size() == all) {
        return 0;
    }
    for (;;) {
        const std::uint32_t value = numberAt(m_next);
        m_next = (m_next + 1) % all;
        if (!m_byValue.of(keyOf(value)).taken) {
            return value;
        }
    }
}

void StandIns::makeRoom(const Carried& carried)
{
    for (const std::uint32_t value : carried.values) {
        if (const Place place = m_byValue.of(keyOf(value)); place.taken) {
            m_entries[place.entry].carried = true;
        }
    }
    std::size_t inRows = 0;
    std::erase_if(m_entries, [&](Entry& entry) {
        const bool isCarried = std::exchange(entry.carried, false) ||
                               std::ranges::find(carried.threads, entry.thread) != carried.threads.end();
        inRows += isCarried ? 1 : 0;
        return !std::exchange(entry.asked, false) && !isCarried;
    });
    placeAll();
    // As many again may come in as there are: then the looks at the lists cost little, however long they are.
    m_limit = m_entries.size() + std::max(inRows, kFewest);
}
