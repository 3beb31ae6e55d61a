// Small blocks are slots of equal size in the arena's pages, large ones are runs of pages. The block that an
// address lies in is found without a search.
#include "platform/heap.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/base/arena.h"
#include "platform/base/outofmemory.h"
#include "platform/errors.h"

namespace {

constexpr std::size_t kLargestSlot = 16384;
#ifdef HEAP_POISONS
constexpr std::size_t kRedZone = kGranule; // lies behind every block, so that an overrun is seen
#else
constexpr std::size_t kRedZone = 0;
#endif

// Where a block lies.
struct Block {
    Page* page = nullptr; // null: no live block
    DWORD slot = 0;
    DWORD offset = 0; // of the address that was asked about, within the block
    DWORD requested = 0;
};

std::size_t ClassOf(std::size_t bytes) {
    if (bytes <= kGranule * kClassesBelowDoubling)
        return bytes == 0 ? 0 : (bytes - 1) / kGranule;
    const std::size_t doubling = static_cast<std::size_t>(std::bit_width(bytes - 1)) - 1; // 7 for 129 to 256
    const std::size_t step = (bytes - 1 - (std::size_t{1} << doubling)) >> (doubling - 2);
    return kClassesBelowDoubling + (doubling - 7) * 4 + step;
}

std::size_t SlotBytes(std::size_t sizeClass) {
    if (sizeClass < kClassesBelowDoubling)
        return (sizeClass + 1) * kGranule;
    const std::size_t doubling = 7 + (sizeClass - kClassesBelowDoubling) / 4;
    const std::size_t step = (sizeClass - kClassesBelowDoubling) % 4;
    return (std::size_t{1} << doubling) + ((step + 1) << (doubling - 2));
}

bool OpenSlab(Arena& arena, std::size_t sizeClass) {
    // All that may find no memory comes first, so that it leaves everything as it was.
    auto slab = std::make_unique<Slab>();
    slab->sizeClass = sizeClass;
    slab->slotBytes = static_cast<DWORD>(SlotBytes(sizeClass));
    const std::size_t slots = kPageBytes / slab->slotBytes;
    slab->requested.assign(slots, kNoBlock);
    slab->vacant.resize(slots);
    for (std::size_t slot = 0; slot < slots; ++slot)
        slab->vacant[slot] = static_cast<WORD>(slots - 1 - slot);
    std::vector<DWORD>& open = arena.open[sizeClass];
    if (open.capacity() <= arena.slabs[sizeClass])
        open.reserve(2 * arena.slabs[sizeClass] + 1);
    const std::size_t first = TakePages(arena, 1);
    if (first == 0)
        return false;
    arena.pages[first].use = PageUse::Slots;
    arena.pages[first].slab = std::move(slab);
    ++arena.slabs[sizeClass];
    open.push_back(static_cast<DWORD>(first));
    return true;
}

BYTE* TakeSlot(Arena& arena, std::size_t bytes) {
    const std::size_t sizeClass = ClassOf(bytes + kRedZone);
    std::vector<DWORD>& open = arena.open[sizeClass];
    if (open.empty() && !OpenSlab(arena, sizeClass))
        return nullptr;
    const std::size_t number = open.back();
    Slab& slab = *arena.pages[number].slab;
    const WORD slot = slab.vacant.back();
    slab.vacant.pop_back();
    if (slab.vacant.empty())
        open.pop_back();
    slab.requested[slot] = static_cast<DWORD>(bytes);
    ++slab.live;
    return arena.base + number * kPageBytes + slot * slab.slotBytes;
}

BYTE* TakeRun(Arena& arena, std::size_t bytes) {
    const std::size_t first = TakePages(arena, (bytes + kRedZone + kPageBytes - 1) / kPageBytes);
    if (first == 0)
        return nullptr;
    arena.pages[first].requested = static_cast<DWORD>(bytes);
    return arena.base + first * kPageBytes;
}

void FreeSlot(Arena& arena, Page& page, DWORD slot) {
    Slab& slab = *page.slab;
    std::vector<DWORD>& open = arena.open[slab.sizeClass];
    const std::size_t number = static_cast<std::size_t>(&page - arena.pages.data());
    slab.requested[slot] = kNoBlock;
    --slab.live;
    if (slab.vacant.empty())
        open.push_back(static_cast<DWORD>(number));
    slab.vacant.push_back(static_cast<WORD>(slot));
    Poison(arena.base + number * kPageBytes + slot * slab.slotBytes, slab.slotBytes);
    // One empty page a class is kept, for blocks that come and go.
    if (slab.live == 0 && open.size() > 1) {
        open.erase(std::find(open.begin(), open.end(), static_cast<DWORD>(number)));
        --arena.slabs[slab.sizeClass];
        page.slab.reset();
        GivePagesBack(arena, number, 1);
    }
}

Block FindBlock(Arena& arena, std::size_t address) {
    const std::size_t number = address / kPageBytes;
    if (number == 0 || number >= arena.pages.size())
        return {};
    Page& page = arena.pages[number];
    if (page.use == PageUse::Slots) {
        const DWORD within = static_cast<DWORD>(address % kPageBytes);
        const DWORD slot = within / page.slab->slotBytes;
        if (slot >= page.slab->requested.size() || page.slab->requested[slot] == kNoBlock)
            return {};
        return {&page, slot, within % page.slab->slotBytes, page.slab->requested[slot]};
    }
    if (page.use == PageUse::Free)
        return {};
    Page& start = arena.pages[page.runStart];
    return {&start, 0, static_cast<DWORD>(address - page.runStart * kPageBytes), start.requested};
}

// The block that begins at a pointer; without a page when none does.
Block BlockAt(Arena& arena, const void* pointer) {
    const std::size_t address =
        reinterpret_cast<std::uintptr_t>(pointer) - reinterpret_cast<std::uintptr_t>(arena.base);
    const Block block = address < kArenaBytes ? FindBlock(arena, address) : Block{};
    return block.page && block.offset == 0 ? block : Block{};
}

std::size_t Capacity(const Block& block) {
    return (block.page->use == PageUse::Slots ? block.page->slab->slotBytes
                                              : block.page->runPages * kPageBytes) -
           kRedZone;
}

} // namespace

void* LocalAlloc(UINT flags, std::size_t bytes) {
    BYTE* const made = UnlessOutOfMemory(static_cast<BYTE*>(nullptr), [=] {
        Arena& arena = TheArena();
        return bytes >= kArenaBytes || !arena.base ? nullptr
               : bytes + kRedZone <= kLargestSlot  ? TakeSlot(arena, bytes)
                                                   : TakeRun(arena, bytes);
    });
    if (!made) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    Unpoison(made, bytes);
    // A run is of zeros anyway, which cost no memory until somebody writes.
    if ((flags & LMEM_ZEROINIT) != 0 && bytes + kRedZone <= kLargestSlot)
        std::memset(made, 0, bytes);
    return made;
}

void* LocalReAlloc(void* block, std::size_t bytes, UINT flags) {
    Arena& arena = TheArena();
    const Block old = BlockAt(arena, block);
    if (!old.page) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    BYTE* kept = static_cast<BYTE*>(block);
    if (bytes > Capacity(old)) {
        BYTE* made = static_cast<BYTE*>(LocalAlloc(flags, bytes));
        if (made) {
            std::memcpy(made, kept, std::min<std::size_t>(bytes, old.requested));
            LocalFree(block);
        }
        return made;
    }
    (old.page->use == PageUse::Slots ? old.page->slab->requested[old.slot] : old.page->requested) =
        static_cast<DWORD>(bytes);
    Poison(kept, Capacity(old));
    Unpoison(kept, bytes);
    if ((flags & LMEM_ZEROINIT) != 0 && bytes > old.requested)
        std::memset(kept + old.requested, 0, bytes - old.requested);
    return block;
}

void* LocalFree(void* block) {
    if (!block)
        return nullptr;
    Arena& arena = TheArena();
    const Block old = BlockAt(arena, block);
    if (!old.page) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return block;
    }
    if (old.page->use == PageUse::Slots)
        FreeSlot(arena, *old.page, old.slot);
    else
        GivePagesBack(arena, old.page->runStart, old.page->runPages);
    return nullptr;
}

std::size_t LocalSize(const void* block) {
    const Block found = BlockAt(TheArena(), block);
    if (!found.page) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return found.requested;
}

DWORD LiveBytesAt(DWORD address) {
    const Block block = FindBlock(TheArena(), address);
    return block.page && block.offset < block.requested ? block.requested - block.offset : 0;
}

DWORD ArenaAddress(const void* pointer) {
    if (!pointer)
        return 0;
    const std::uintptr_t address =
        reinterpret_cast<std::uintptr_t>(pointer) - reinterpret_cast<std::uintptr_t>(TheArena().base);
    if (address < kPageBytes || address > kArenaBytes) {
        std::fputs("a pointer outside the local heap was stored as a device pointer\n", stderr);
        std::abort();
    }
    return static_cast<DWORD>(address);
}

void* ArenaPointer(DWORD address) {
    return address == 0 ? nullptr : TheArena().base + address;
}
