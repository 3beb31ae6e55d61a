// The local heap: blocks in one arena, so that an address within it takes 32 bits on any host. Used from one
// thread.
#pragma once

#include "platform/types.h"

constexpr UINT LMEM_FIXED = 0x0000;
constexpr UINT LMEM_MOVEABLE = 0x0002;
constexpr UINT LMEM_ZEROINIT = 0x0040;

// A block of `bytes` bytes, 0 included, aligned to 16. A large one costs the host no memory before it is
// written. Null when the arena or the host has no room, with last error ERROR_NOT_ENOUGH_MEMORY.
void* LocalAlloc(UINT flags, std::size_t bytes);
// Makes a block larger or smaller and keeps its contents; LMEM_ZEROINIT clears what is added. The block may
// move, with or without LMEM_MOVEABLE. Null on failure, the block then being as it was:
// ERROR_NOT_ENOUGH_MEMORY, or ERROR_INVALID_PARAMETER when `block` is no live block.
void* LocalReAlloc(void* block, std::size_t bytes, UINT flags);
// Null on success and for a null block; `block` itself, with last error ERROR_INVALID_PARAMETER, for anything
// that is no live block.
void* LocalFree(void* block);
// The bytes asked for when the block was made; 0, with last error ERROR_INVALID_PARAMETER, when it is no live
// block.
std::size_t LocalSize(const void* block);

// How many bytes lie between an address within the arena and the end of the live block that holds it; 0 when
// no live block holds it. This is how an address that came from elsewhere is checked before it is followed.
DWORD LiveBytesAt(DWORD address);

// The arena's address of a pointer into it; 0 for null. Any other pointer is a programming error and ends the
// process at once.
DWORD ArenaAddress(const void* pointer);
// The reverse. An address that was never handed out gives a pointer that faults when it is followed.
void* ArenaPointer(DWORD address);

// A 32-bit pointer into the arena, as records and other stored blocks carry it. It has no constructor of its
// own when none is asked for, so that it can live in a union.
template <typename T>
class DevicePointer {
public:
    DevicePointer() = default;
    DevicePointer(T* pointer) : address(ArenaAddress(pointer)) {}

    static DevicePointer FromAddress(DWORD address) {
        DevicePointer made;
        made.address = address;
        return made;
    }
    DWORD Address() const { return address; }

    operator T*() const { return static_cast<T*>(ArenaPointer(address)); }
    T* operator->() const { return *this; }

private:
    DWORD address;
};
static_assert(sizeof(DevicePointer<BYTE>) == 4);
