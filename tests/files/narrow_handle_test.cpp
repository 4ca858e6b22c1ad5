// A path text in an end code that has been through a 32-bit signed integer.
#include "frame/narrow_handle.h"
#include "tests/support/rule_memory.h"

#include <gtest/gtest.h>

#include <memory>

namespace {
struct Release {
    void operator()(void* block) const { VirtualFree(block, 0, MEM_RELEASE); }
};
} // namespace

TEST(NarrowHandleSignedTest, TellsLowAddressesByThemselves)
{
    const void* low = rule_memory::below4GiB();
    const NarrowHandle handle = NarrowHandle::of(low);
    EXPECT_EQ(static_cast<std::uint32_t>(handle.signedCarrier()), reinterpret_cast<UINT_PTR>(low));
    EXPECT_EQ(NarrowHandle::fromCarrier(handle.signedCarrier()).object(), low);
}

TEST(NarrowHandleSignedTest, ExtendsAddressesAbove2GiBByTheirSign)
{
    // Any free place will do.
    std::unique_ptr<void, Release> block;
    for (UINT_PTR place = 0x80000000; !block && place < 0xF0000000; place += 0x10000) {
        block.reset(VirtualAlloc(reinterpret_cast<void*>(place), 1, MEM_RESERVE, PAGE_NOACCESS));
    }
    ASSERT_NE(block, nullptr);
    const INT_PTR carried = NarrowHandle::of(block.get()).signedCarrier();
    EXPECT_LT(carried, 0);
    EXPECT_EQ(carried, static_cast<INT_PTR>(static_cast<int>(reinterpret_cast<INT_PTR>(block.get()))));
    EXPECT_EQ(NarrowHandle::fromCarrier(carried).object(), block.get());
}

TEST(NarrowHandleSignedTest, StandsInForHighAddresses)
{
    const void* high = rule_memory::above4GiB();
    const INT_PTR carried = NarrowHandle::of(high).signedCarrier();
    EXPECT_NE(carried, 0);
    EXPECT_NE(carried, -1);
    EXPECT_EQ(carried, static_cast<INT_PTR>(static_cast<int>(carried)));
    EXPECT_EQ(NarrowHandle::fromCarrier(carried).object(), high);
}
