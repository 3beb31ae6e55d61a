#include "platform/base/arena.h"

#include <algorithm>
#include <cstring>
#include <sys/mman.h>

#ifdef HEAP_POISONS
#include <sanitizer/asan_interface.h>
#endif

namespace {

constexpr std::size_t kAddressSpan = std::size_t{1}
                                     << 32; // whatever 32 bits can say must fault, not hit a neighbour
constexpr std::size_t kPages = kArenaBytes / kPageBytes;
constexpr std::size_t kCommitPages = 16;

bool Commit(Arena& arena, std::size_t pages) {
    if (pages <= arena.committed)
        return true;
    const std::size_t target = std::min(kPages, (pages + kCommitPages - 1) / kCommitPages * kCommitPages);
    if (mprotect(arena.base + arena.committed * kPageBytes, (target - arena.committed) * kPageBytes,
                 PROT_READ | PROT_WRITE) != 0)
        return false;
    arena.committed = target;
    return true;
}

} // namespace

Arena& TheArena() {
    static Arena arena = [] {
        Arena made;
        void* span =
            mmap(nullptr, kAddressSpan, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (span == MAP_FAILED)
            return made;
        made.base = static_cast<BYTE*>(span);
        made.committed = 1;
        made.pages.resize(kPages);
        made.pages[0].use = PageUse::RunRest;
        return made;
    }();
    return arena;
}

std::size_t TakePages(Arena& arena, std::size_t count) {
    while (arena.lowestFree < kPages && arena.pages[arena.lowestFree].use != PageUse::Free)
        ++arena.lowestFree;
    std::size_t found = 0;
    std::size_t at = arena.lowestFree;
    for (; at < kPages && found < count; ++at)
        found = arena.pages[at].use == PageUse::Free ? found + 1 : 0;
    if (found < count || !Commit(arena, at))
        return 0;
    const std::size_t first = at - count;
    for (std::size_t page = first; page < at; ++page) {
        arena.pages[page].use = page == first ? PageUse::RunStart : PageUse::RunRest;
        arena.pages[page].runStart = static_cast<DWORD>(first);
    }
    arena.pages[first].runPages = static_cast<DWORD>(count);
    Poison(arena.base + first * kPageBytes, count * kPageBytes);
    return first;
}

void GivePagesBack(Arena& arena, std::size_t first, std::size_t count) {
    for (std::size_t page = first; page < first + count; ++page)
        arena.pages[page].use = PageUse::Free;
    arena.lowestFree = std::min(arena.lowestFree, first);
    Poison(arena.base + first * kPageBytes, count * kPageBytes);
    // The host gets the memory back: a backup of one huge record must not stay huge.
    BYTE* const pages = arena.base + first * kPageBytes;
    if (madvise(pages, count * kPageBytes, MADV_DONTNEED) != 0) {
        Unpoison(pages, count * kPageBytes);
        std::memset(pages, 0, count * kPageBytes);
        Poison(pages, count * kPageBytes);
    }
}

void Poison([[maybe_unused]] const BYTE* at, [[maybe_unused]] std::size_t bytes) {
#ifdef HEAP_POISONS
    __asan_poison_memory_region(at, bytes);
#endif
}

void Unpoison([[maybe_unused]] const BYTE* at, [[maybe_unused]] std::size_t bytes) {
#ifdef HEAP_POISONS
    __asan_unpoison_memory_region(at, bytes);
#endif
}
