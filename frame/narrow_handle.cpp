#include "frame/narrow_handle.h"

#include "frame/low_memory.h"

#include <unordered_map>
#include <vector>

namespace {

constexpr std::size_t kBlockSize = 1u << 20; // bytes per reserved block; nothing is ever committed in it
// The last byte stands for nothing: in the highest block it would be -1 in 32 bits, which is no result of a dialog.
constexpr std::size_t kStandInsPerBlock = kBlockSize - 1;

class StandIns {
public:
    std::uint32_t of(const void* object)
    {
        const auto [entry, added] = m_values.try_emplace(object, 0u);
        if (added) {
            entry->second = next(object);
            if (entry->second == 0) {
                m_values.erase(entry);
                return 0;
            }
        }
        return entry->second;
    }

    const void* object(std::uint32_t value) const
    {
        for (const Block& block : m_blocks) {
            const UINT_PTR offset = value - reinterpret_cast<UINT_PTR>(block.space.get());
            if (offset < block.objects.size()) {
                return block.objects[offset];
            }
        }
        return nullptr;
    }

private:
    struct Block {
        LowBlock space;
        std::vector<const void*> objects;
    };

    std::uint32_t next(const void* object)
    {
        if (m_blocks.empty() || m_blocks.back().objects.size() == kStandInsPerBlock) {
            LowBlock space = reserveBelowFourGiB(kBlockSize);
            if (!space) {
                return 0;
            }
            m_blocks.push_back({std::move(space), {}});
        }
        Block& block = m_blocks.back();
        block.objects.push_back(object);
        return static_cast<std::uint32_t>(reinterpret_cast<UINT_PTR>(block.space.get()) +
                                          block.objects.size() - 1);
    }

    std::vector<Block> m_blocks;
    std::unordered_map<const void*, std::uint32_t> m_values;
};

StandIns& standIns()
{
    static StandIns all;
    return all;
}

} // namespace

NarrowHandle NarrowHandle::of(const void* object)
{
    return NarrowHandle(isBelowFourGiB(object)
                            ? static_cast<std::uint32_t>(reinterpret_cast<UINT_PTR>(object))
                            : standIns().of(object));
}

void* NarrowHandle::object() const
{
    if (const void* high = standIns().object(m_value)) {
        return const_cast<void*>(high);
    }
    return reinterpret_cast<void*>(static_cast<UINT_PTR>(m_value));
}
