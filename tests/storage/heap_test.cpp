#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <vector>

#include "platform/errors.h"
#include "platform/heap.h"

namespace {

TEST(Heap, KeepsContentsWhileBlocksComeGrowShrinkAndGo) {
    struct Expected {
        std::size_t bytes;
        BYTE fill;
    };
    std::map<BYTE*, Expected> blocks;
    std::mt19937 random(7);
    for (int round = 0; round < 20000; ++round) {
        const std::size_t bytes = random() % (round % 97 == 0 ? 300000 : 700);
        const BYTE fill = static_cast<BYTE>(random());
        if (blocks.size() < 200 || random() % 3 == 0) {
            BYTE* made = static_cast<BYTE*>(LocalAlloc(LMEM_FIXED, bytes));
            ASSERT_TRUE(made);
            ASSERT_EQ(ArenaAddress(made) % 16, 0U);
            ASSERT_EQ(LocalSize(made), bytes);
            ASSERT_FALSE(blocks.contains(made));
            std::memset(made, fill, bytes);
            blocks[made] = {bytes, fill};
            continue;
        }
        auto victim =
            blocks.lower_bound(static_cast<BYTE*>(ArenaPointer(static_cast<DWORD>(random() % 4000000))));
        victim = victim == blocks.end() ? blocks.begin() : victim;
        auto [block, old] = *victim;
        blocks.erase(victim);
        BYTE* kept = round % 2 ? static_cast<BYTE*>(LocalReAlloc(block, bytes, LMEM_MOVEABLE)) : block;
        for (std::size_t at = 0; at < (round % 2 ? std::min(bytes, old.bytes) : old.bytes); ++at)
            ASSERT_EQ(kept[at], old.fill);
        if (round % 2) {
            std::memset(kept, fill, bytes);
            blocks[kept] = {bytes, fill};
        } else {
            ASSERT_EQ(LocalFree(kept), nullptr);
        }
    }
    for (const auto& [block, expected] : blocks)
        LocalFree(block);
}

TEST(Heap, ClearsWhatItIsAskedToClear) {
    for (const std::size_t bytes : {std::size_t{40}, std::size_t{100000}}) {
        BYTE* dirty = static_cast<BYTE*>(LocalAlloc(LMEM_FIXED, bytes));
        std::memset(dirty, 0xAA, bytes);
        LocalFree(dirty);
        BYTE* block = static_cast<BYTE*>(LocalAlloc(LMEM_ZEROINIT, bytes / 2));
        block = static_cast<BYTE*>(LocalReAlloc(block, bytes, LMEM_ZEROINIT | LMEM_MOVEABLE));
        EXPECT_EQ(std::vector<BYTE>(block, block + bytes), std::vector<BYTE>(bytes, 0));
        LocalFree(block);
    }
}

TEST(Heap, KnowsWhatIsLiveAroundAnAddress) {
    for (const DWORD bytes : {DWORD{100}, DWORD{200000}}) {
        BYTE* block = static_cast<BYTE*>(LocalAlloc(LMEM_FIXED, bytes));
        const DWORD address = ArenaAddress(block);
        EXPECT_EQ(LiveBytesAt(address), bytes);
        EXPECT_EQ(LiveBytesAt(address + bytes - 1), 1U);
        EXPECT_EQ(LiveBytesAt(address + bytes), 0U);
        EXPECT_EQ(LocalSize(block + 16), 0U);
        EXPECT_EQ(LocalFree(block + 16), block + 16);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
        LocalFree(block);
        EXPECT_EQ(LiveBytesAt(address), 0U);
        EXPECT_EQ(LocalFree(block), block);
        EXPECT_EQ(LocalReAlloc(block, 1, LMEM_MOVEABLE), nullptr);
    }
    for (const DWORD never : {0U, 15U, 65535U, 0x10000000U, 0x20000000U, 0xFFFFFFFFU})
        EXPECT_EQ(LiveBytesAt(never), 0U);
}

TEST(Heap, RefusesWhatItCannotHoldAndGoesOn) {
    std::vector<void*> blocks;
    while (void* block = LocalAlloc(LMEM_FIXED, 50 << 20))
        blocks.push_back(block);
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_GE(blocks.size(), 8U);
    EXPECT_EQ(LocalReAlloc(blocks[0], 500 << 20, LMEM_MOVEABLE), nullptr);
    EXPECT_EQ(LocalSize(blocks[0]), std::size_t{50} << 20);
    EXPECT_EQ(LocalAlloc(LMEM_FIXED, 0xFFFFFFFF), nullptr);
    EXPECT_EQ(LocalAlloc(LMEM_FIXED, SIZE_MAX), nullptr);
    for (void* block : blocks)
        LocalFree(block);
    void* whole = LocalAlloc(LMEM_FIXED, 400 << 20);
    EXPECT_TRUE(whole);
    LocalFree(whole);
}

TEST(HeapDeathTest, StoresNoPointerFromElsewhere) {
    int outside = 0;
    EXPECT_DEATH(static_cast<void>(DevicePointer<int>(&outside)), "outside the local heap");
}

#ifdef __SANITIZE_ADDRESS__
TEST(HeapDeathTest, OverrunsAndLateUsesAreSeen) {
    volatile BYTE* block = static_cast<BYTE*>(LocalAlloc(LMEM_FIXED, 13));
    EXPECT_DEATH(block[13] = 1, "poison");
    LocalFree(const_cast<BYTE*>(block));
    EXPECT_DEATH(block[0] = 1, "poison");
}
#endif

} // namespace
