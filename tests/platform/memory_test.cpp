#include <algorithm>
#include <gtest/gtest.h>

#include "platform/memory.h"
#include "tests/platform/hostsupport.h"

namespace {

TEST(PageMemory, IsTakenFilledWithZerosAndGivenBackOnce) {
    constexpr std::size_t size = 138002;
    BYTE* pages[3];
    for (BYTE*& page : pages) {
        page = static_cast<BYTE*>(VirtualAlloc(nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
        ASSERT_NE(page, nullptr);
        EXPECT_EQ(std::count(page, page + size, 0), static_cast<std::ptrdiff_t>(size));
        std::fill(page, page + size, BYTE{0xAB});
    }
    for (BYTE* page : {pages[1], pages[0], pages[2]}) {
        EXPECT_FALSE(VirtualFree(page, size, MEM_RELEASE));
        EXPECT_FALSE(VirtualFree(page + 1, 0, MEM_RELEASE));
        EXPECT_TRUE(VirtualFree(page, 0, MEM_RELEASE));
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(FailureOf(VirtualFree(page, 0, MEM_RELEASE)), ERROR_INVALID_PARAMETER);
    }
    for (std::size_t tooMuch : {std::size_t{1} << 60, ~std::size_t{0}}) {
        EXPECT_EQ(VirtualAlloc(nullptr, tooMuch, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    }
}

} // namespace
