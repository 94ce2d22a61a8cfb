#include "exec/FramePool.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace brannoc {
namespace {

bool IsZero(const void* block, std::size_t size)
{
    const auto* bytes = static_cast<const unsigned char*>(block);
    for (std::size_t i = 0; i < size; ++i) {
        if (bytes[i] != 0)
            return false;
    }
    return true;
}

TEST(FramePoolTest, FreedBlocksAreReusedAndHandedOutZeroed)
{
    FramePool pool;
    void* first = pool.Acquire(40);
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(IsZero(first, 40));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(first) % 8, 0u) << "8-byte aligned for doubles";
    std::memset(first, 0xAB, 40);
    pool.Free(first);
    EXPECT_EQ(pool.CachedBlocks(), 1u);

    void* again = pool.Acquire(48);
    EXPECT_EQ(again, first) << "a block of the same size class is reused";
    EXPECT_TRUE(IsZero(again, 48));
    EXPECT_EQ(pool.CachedBlocks(), 0u);
    pool.Free(again);
}

TEST(FramePoolTest, LargerRequestsDoNotTakeSmallerBlocks)
{
    FramePool pool;
    void* small = pool.Acquire(16);
    pool.Free(small);
    void* large = pool.Acquire(1000);
    ASSERT_NE(large, nullptr);
    EXPECT_NE(large, small);
    EXPECT_TRUE(IsZero(large, 1000));
    EXPECT_EQ(pool.CachedBlocks(), 1u);
    pool.Free(large);
    pool.Free(nullptr);
    EXPECT_EQ(pool.CachedBlocks(), 2u);
}

} // namespace
} // namespace brannoc
