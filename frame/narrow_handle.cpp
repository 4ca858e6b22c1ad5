#include "frame/narrow_handle.h"

#include <memory>
#include <unordered_map>
#include <vector>

namespace {

constexpr UINT_PTR kFourGiB = UINT_PTR{1} << 32;
constexpr std::size_t kBlockSize = 1u << 20; // stand-ins per reserved block; nothing is ever committed in it

struct AddressSpaceRelease {
    void operator()(void* block) const { VirtualFree(block, 0, MEM_RELEASE); }
};
using ReservedBlock = std::unique_ptr<void, AddressSpaceRelease>;

// Reserves a block below 4 GiB, as high as possible: low addresses are scarce for those who need them.
ReservedBlock reserveBlock()
{
    constexpr UINT_PTR kGranularity = 0x10000;
    UINT_PTR top = kFourGiB;
    while (top > kBlockSize + kGranularity) {
        MEMORY_BASIC_INFORMATION region{};
        const auto* probe = reinterpret_cast<const void*>(top - 1);
        if (VirtualQuery(probe, &region, sizeof region) == 0) {
            return nullptr;
        }
        const auto start = reinterpret_cast<UINT_PTR>(region.BaseAddress);
        if (region.State == MEM_FREE && top - start >= kBlockSize) {
            const UINT_PTR wanted = (top - kBlockSize) & ~(kGranularity - 1);
            if (wanted >= start) {
                if (void* block =
                        VirtualAlloc(reinterpret_cast<void*>(wanted), kBlockSize, MEM_RESERVE, PAGE_NOACCESS))
                {
                    return ReservedBlock(block);
                }
            }
        }
        top = start;
    }
    return nullptr;
}

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
        ReservedBlock space;
        std::vector<const void*> objects;
    };

    std::uint32_t next(const void* object)
    {
        if (m_blocks.empty() || m_blocks.back().objects.size() == kBlockSize) {
            ReservedBlock space = reserveBlock();
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
    const auto address = reinterpret_cast<UINT_PTR>(object);
    return NarrowHandle(address < kFourGiB ? static_cast<std::uint32_t>(address) : standIns().of(object));
}

void* NarrowHandle::object() const
{
    if (const void* high = standIns().object(m_value)) {
        return const_cast<void*>(high);
    }
    return reinterpret_cast<void*>(static_cast<UINT_PTR>(m_value));
}
