#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

#include "platform/files.h"
#include "platform/heap.h"
#include "platform/memory.h"
#include "tests/platform/hostsupport.h"
#include "tests/platform/otherprocess.h"
#include "tests/support/resourcelimit.h"
#include "tests/support/testdevice.h"

namespace {

TEST(PageMemory, IsTakenFilledWithZerosAndGivenBackOnce) {
    constexpr std::size_t size = 138002;
    for (int round = 0; round < 3; ++round) {
        auto* const pages =
            static_cast<BYTE*>(VirtualAlloc(nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
        ASSERT_NE(pages, nullptr);
        EXPECT_EQ(std::count(pages, pages + size, 0), static_cast<std::ptrdiff_t>(size));
        std::fill(pages, pages + size, BYTE{0xAB});
        EXPECT_FALSE(VirtualFree(pages, size, MEM_RELEASE));
        EXPECT_FALSE(VirtualFree(pages + 1, 0, MEM_RELEASE));
        EXPECT_TRUE(VirtualFree(pages, 0, MEM_RELEASE));
        EXPECT_EQ(FailureOf(VirtualFree(pages, 0, MEM_RELEASE)), ERROR_INVALID_PARAMETER);
    }
    for (const std::size_t tooMuch : {std::size_t{1} << 60, ~std::size_t{0}}) {
        EXPECT_EQ(VirtualAlloc(nullptr, tooMuch, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    }
}

long ResidentPages() {
    long total = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident;
}

TEST(LocalHeap, ALargeBlockCostsNothingBeforeItIsWritten) {
    constexpr std::size_t size = 200 << 20;
    const long before = ResidentPages();
    for (int round = 0; round < 2; ++round) {
        BYTE* block = static_cast<BYTE*>(LocalAlloc(LMEM_ZEROINIT, size));
        ASSERT_TRUE(block);
        EXPECT_LT(ResidentPages() - before, 10000); // a fifth of it: sanitizers keep books
        EXPECT_EQ(block[size / 2], 0);
        block[size / 2] = 1; // must not be found again
        LocalFree(block);
    }
}

#ifndef __SANITIZE_ADDRESS__ // which takes address space of its own
TEST(LocalHeap, FailsInOrderWhenTheHostHasNoMemory) {
    const TestDevice device;
    OtherProcess other({[] {
        std::vector<void*> blocks;
        blocks.reserve(20 << 20);
        LocalFree(LocalAlloc(LMEM_FIXED, 1)); // takes the arena's addresses
        const ResourceLimit noMore(RLIMIT_AS, 0);
        while (void* block = LocalAlloc(LMEM_FIXED, blocks.size() % 16))
            blocks.push_back(block);
        const bool told = GetLastError() == ERROR_NOT_ENOUGH_MEMORY;
        const bool opened = CreateFileW(u"\\Storage Card\\etc\\passwd", GENERIC_READ, FILE_SHARE_READ,
                                        nullptr, OPEN_EXISTING, 0, 0) != INVALID_HANDLE_VALUE;
        const bool orderly = opened || GetLastError() == ERROR_NOT_ENOUGH_MEMORY;
        const std::size_t count = blocks.size();
        for (void* block : blocks)
            if (LocalFree(block))
                return false;
        return told && orderly && count > 0 && LocalAlloc(LMEM_FIXED, 1);
    }});
    EXPECT_TRUE(other.Run(0));
}
#endif

} // namespace
