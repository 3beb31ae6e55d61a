// The arena behind the local heap: 64 KiB pages of one address range. All bookkeeping lies outside of it:
// nothing that is written through a bad pointer can damage it.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "platform/types.h"

#if defined(__SANITIZE_ADDRESS__)
#define HEAP_POISONS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HEAP_POISONS 1
#endif
#endif

constexpr std::size_t kArenaBytes = std::size_t{512} << 20;
constexpr std::size_t kPageBytes = 65536;
constexpr std::size_t kGranule = 16;
constexpr std::size_t kClassesBelowDoubling = 8; // 16 to 128 in steps of 16, then four steps a doubling
constexpr std::size_t kClasses = kClassesBelowDoubling + 4 * 7;

constexpr DWORD kNoBlock = 0xFFFFFFFF;

// What a page of slots holds.
struct Slab {
    std::size_t sizeClass;
    DWORD slotBytes;
    DWORD live = 0;
    std::vector<DWORD> requested; // by slot: bytes asked for, or kNoBlock
    std::vector<WORD> vacant;     // slots to hand out, the last one first
};

enum class PageUse : BYTE { Free, Slots, RunStart, RunRest };

struct Page {
    PageUse use = PageUse::Free;
    DWORD runStart = 0;  // RunStart, RunRest: the run's first page
    DWORD runPages = 0;  // RunStart
    DWORD requested = 0; // RunStart: bytes asked for
    std::unique_ptr<Slab> slab;
};

// A free page holds zeros only.
struct Arena {
    BYTE* base = nullptr;       // null: the host has no room for it
    std::size_t committed = 0;  // pages that can be touched
    std::size_t lowestFree = 1; // no page below it is free; page 0 is never used, so that address 0 is none
    std::vector<Page> pages;
    std::vector<DWORD> open[kClasses]; // pages of slots with a vacant one; has room for all of the class
    std::size_t slabs[kClasses] = {};  // pages of slots
};

Arena& TheArena();

// The first of `count` free pages in a row, which are then marked as a run; 0 when there are none.
std::size_t TakePages(Arena& arena, std::size_t count);
// The host gets the memory back.
void GivePagesBack(Arena& arena, std::size_t first, std::size_t count);

// Memory that belongs to no live block is poisoned, so that the address sanitizer sees who touches it;
// without effect in other builds.
void Poison(const BYTE* at, std::size_t bytes);
void Unpoison(const BYTE* at, std::size_t bytes);
