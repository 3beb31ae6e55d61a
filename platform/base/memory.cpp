#include "platform/memory.h"

#include <mutex>
#include <sys/mman.h>
#include <unistd.h>

#include "platform/errors.h"

namespace {

// One page in front of each allocation. The chain of them tells a real address from any other number.
struct Region {
    Region* next;
    std::size_t mapped; // bytes, this page included
};

std::mutex regionsLock;
Region* regions = nullptr;

std::size_t PageSize() {
    static const std::size_t size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

Region* Detach(void* address) {
    const std::lock_guard<std::mutex> hold(regionsLock);
    for (Region** link = &regions; *link; link = &(*link)->next) {
        Region* region = *link;
        if (reinterpret_cast<BYTE*>(region) + PageSize() == address) {
            *link = region->next;
            return region;
        }
    }
    return nullptr;
}

} // namespace

void* VirtualAlloc(void* address, std::size_t size, DWORD type, DWORD protection) {
    if (address || size == 0 || type != (MEM_COMMIT | MEM_RESERVE) || protection != PAGE_READWRITE) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const std::size_t page = PageSize();
    const std::size_t mapped =
        size <= SIZE_MAX - 2 * page ? page + (size + page - 1) / page * page : SIZE_MAX;
    void* memory = mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    Region* region = static_cast<Region*>(memory);
    const std::lock_guard<std::mutex> hold(regionsLock);
    region->next = regions;
    region->mapped = mapped;
    regions = region;
    return static_cast<BYTE*>(memory) + page;
}

BOOL VirtualFree(void* address, std::size_t size, DWORD type) {
    Region* region = address && size == 0 && type == MEM_RELEASE ? Detach(address) : nullptr;
    if (!region) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    munmap(region, region->mapped);
    return TRUE;
}
