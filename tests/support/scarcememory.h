// Allocations that fail on purpose. Every test program has an `operator new` that does what this says.
#pragma once

#include <vector>

#include "platform/heap.h"

// As long as it lives, so many allocations succeed and the next one fails, or with `forGood` all that follow.
class ScarceMemory {
public:
    explicit ScarceMemory(long allocations, bool forGood = false);
    ScarceMemory(const ScarceMemory&) = delete;
    ScarceMemory& operator=(const ScarceMemory&) = delete;
    ~ScarceMemory();

    // Whether any allocation has failed.
    static bool WasShort();
};

// The local heap filled with blocks, down to so few bytes, until it is given back.
class FullHeap {
public:
    explicit FullHeap(std::size_t smallest = 1) {
        for (std::size_t bytes = 256 << 20; bytes >= smallest; bytes /= 2)
            while (void* const block = LocalAlloc(LMEM_FIXED, bytes))
                blocks.push_back(block);
    }
    FullHeap(const FullHeap&) = delete;
    FullHeap& operator=(const FullHeap&) = delete;
    ~FullHeap() {
        for (void* const block : blocks)
            LocalFree(block);
    }

private:
    std::vector<void*> blocks;
};
