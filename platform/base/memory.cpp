#include "platform/memory.h"

#include <sys/mman.h>
#include <unordered_map>

#include "platform/base/hosterror.h"
#include "platform/base/outofmemory.h"

namespace {

// What is taken, with the bytes that were asked for: tells a real address from any other number.
std::unordered_map<void*, std::size_t>& Taken() {
    static std::unordered_map<void*, std::size_t> taken;
    return taken;
}

} // namespace

void* VirtualAlloc(void* address, std::size_t size, DWORD type, DWORD protection) {
    if (address || size == 0 || type != (MEM_COMMIT | MEM_RESERVE) || protection != PAGE_READWRITE) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return UnlessOutOfMemory(static_cast<void*>(nullptr), [=] {
        try {
            Taken().emplace(memory, size);
        } catch (...) {
            munmap(memory, size);
            throw;
        }
        return memory;
    });
}

BOOL VirtualFree(void* address, std::size_t size, DWORD type) {
    const auto found = size == 0 && type == MEM_RELEASE ? Taken().find(address) : Taken().end();
    if (found == Taken().end()) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    munmap(address, found->second);
    Taken().erase(found);
    return TRUE;
}
