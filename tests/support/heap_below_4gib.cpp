// Linked into a test program that is not aware of large addresses, this says that its heap lies below 4 GiB, as hosts
// knew it for long: item data and end codes are then addresses.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>

TEST(HeapRegimeTest, BlocksLieBelow4GiB)
{
    for (const std::size_t size : {16u, 24u, 64u, 100u, 520u, 4096u}) {
        void* const block = std::malloc(size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) >> 32, 0u) << size << " bytes";
        std::free(block);
    }
}
