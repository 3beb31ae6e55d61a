// Allocations that fail on purpose. Every test program has an `operator new` that does what this says.
#pragma once

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
