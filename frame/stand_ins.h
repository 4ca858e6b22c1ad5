// 32-bit numbers that stand for objects above 4 GiB.
#pragma once

#include "frame/data_table.h"
#include "frame/low_memory.h"
#include "frame/platform.h"

#include <cstdint>
#include <span>
#include <vector>

/// The numbers, and what each of them stands for.
///
/// They are numbers of address space that is kept reserved, so that none can be the address of anything, and neither 0
/// nor -1, whichever way it is extended. Nobody says when one is no longer needed: hosts delete rows as they like. So
/// room is made for new ones when there are many, by those that no row carries and nobody has asked for lately. A number
/// that was given up stands for nothing, and of all numbers it is the last to be given out again. Not thread-safe.
class StandIns {
public:
    /// What the rows of all lists carry.
    struct Carried {
        std::vector<std::uint32_t>
            values;                 ///< of the lists that can be looked at, in any order; others among them
        std::vector<DWORD> threads; ///< that have lists which cannot
    };

    /// The number that stands for an object already, 0 when none does.
    std::uint32_t known(const void* object);

    /// Has a number stand for an object that has none. @return 0 when none can be had.
    /// @param thread  whose lists may come to carry it.
    std::uint32_t add(const void* object, DWORD thread);

    /// What a number stands for, null when it stands for nothing.
    const void* object(std::uint32_t value);

    /// Whether a number is, or may once have been, one of these.
    bool isOne(std::uint32_t value) const;

    /// Whether it is time to make room.
    bool isFull() const { return m_entries.size() >= m_limit; }

    /// Gives up the numbers that are not carried and that nobody has asked for since the last time.
    void makeRoom(const Carried& carried);

    /// Lets more come in without a look at who carries them.
    void putOff() { m_limit = m_entries.size() + kFewest; }

    std::size_t size() const { return m_entries.size(); }

private:
    static constexpr std::size_t kFewest = 2048; ///< new ones between two looks at the lists

    struct Entry {
        const void* object;
        std::uint32_t value;
        DWORD thread;
        bool asked;   ///< since room was made last
        bool carried; ///< only while room is made
    };
    struct Place {
        std::uint32_t entry = 0;
        bool taken = false;
    };

    Entry* entryOf(const DataTable<Place>& places, LPARAM key);
    void place(std::uint32_t entry);
    void placeAll();
    std::uint32_t next();
    std::uint32_t numberAt(std::size_t index) const;

    std::vector<LowBlock> m_blocks;
    std::size_t m_next = 0; ///< the number to try next, counted through all blocks
    std::vector<Entry> m_entries;
    std::size_t m_limit = kFewest;
    std::size_t m_places = 0; ///< entries that the tables have room for
    DataTable<Place> m_byObject{0};
    DataTable<Place> m_byValue{0};
};
