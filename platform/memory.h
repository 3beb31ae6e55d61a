// Page memory: large tables that should not burden the heap.
#pragma once

#include "platform/types.h"

constexpr DWORD MEM_COMMIT = 0x1000;
constexpr DWORD MEM_RESERVE = 0x2000;
constexpr DWORD MEM_RELEASE = 0x8000;
constexpr DWORD PAGE_READWRITE = 0x04;

// Takes `size` bytes, rounded up to whole pages, filled with zeros and aligned to a page. The one use it
// knows is fresh memory: `address` null, `type` MEM_COMMIT | MEM_RESERVE, `protection` PAGE_READWRITE, `size`
// not 0. Null on failure, with last error ERROR_INVALID_PARAMETER or ERROR_NOT_ENOUGH_MEMORY.
void* VirtualAlloc(void* address, std::size_t size, DWORD type, DWORD protection);

// Gives back a whole allocation: `address` is what VirtualAlloc returned, `size` is 0, `type` is MEM_RELEASE.
// FALSE with last error ERROR_INVALID_PARAMETER for anything else; the memory then stays as it was.
BOOL VirtualFree(void* address, std::size_t size, DWORD type);
