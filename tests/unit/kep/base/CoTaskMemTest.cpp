#include "Kep/CoTaskMem.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

TEST(TaskAllocator, GivesWritableBlocksAlignedForAnyObject)
{
    for (const std::size_t size : {std::size_t{1}, std::size_t{17}, std::size_t{100000}}) {
        void* block = CoTaskMemAlloc(size);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0u);
        std::memset(block, 0xA5, size);
        EXPECT_EQ(static_cast<unsigned char*>(block)[size - 1], 0xA5);
        CoTaskMemFree(block);
    }
}

TEST(TaskAllocator, TakesNullBack)
{
    EXPECT_NO_THROW(CoTaskMemFree(nullptr));
}

} // namespace
