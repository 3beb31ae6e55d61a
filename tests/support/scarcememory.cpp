#include "tests/support/scarcememory.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

constexpr long kPlenty = -1;

long allocationsLeft = kPlenty; // before one fails
bool staysShort = false;
bool wasShort = false;

void* Take(std::size_t bytes) {
    if (allocationsLeft == 0) {
        wasShort = true;
        if (!staysShort)
            allocationsLeft = kPlenty;
        return nullptr;
    }
    if (allocationsLeft > 0)
        --allocationsLeft;
    return std::malloc(std::max<std::size_t>(bytes, 1));
}

} // namespace

ScarceMemory::ScarceMemory(long allocations, bool forGood) {
    wasShort = false;
    staysShort = forGood;
    allocationsLeft = allocations;
}

ScarceMemory::~ScarceMemory() {
    allocationsLeft = kPlenty;
}

bool ScarceMemory::WasShort() {
    return wasShort;
}

void* operator new(std::size_t bytes) {
    if (void* made = Take(bytes))
        return made;
    throw std::bad_alloc();
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return Take(bytes);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
