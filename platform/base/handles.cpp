#include "platform/base/handles.h"

#include <unordered_map>

#include "platform/base/hosterror.h"
#include "platform/base/outofmemory.h"
#include "platform/handles.h"

namespace {

struct HandleTable {
    std::unordered_map<HANDLE, std::unique_ptr<KernelObject>> objects;
    HANDLE next = 0x100;
};

HandleTable& Table() {
    // Never destroyed: objects that are still open at the end of the process are the kernel's to clean up, in
    // any order.
    static HandleTable* table = new HandleTable;
    return *table;
}

} // namespace

HANDLE AddKernelObject(std::unique_ptr<KernelObject> object) {
    HandleTable& table = Table();
    do {
        // Steps of four below the registry's main keys; 2^29 handles later the oldest numbers come again.
        table.next = table.next >= 0x7FFFFFF0 ? 0x100 : table.next + 4;
    } while (table.objects.contains(table.next));
    table.objects.emplace(table.next, std::move(object));
    return table.next;
}

KernelObject* FindKernelObject(HANDLE handle) {
    const auto found = Table().objects.find(handle);
    return found == Table().objects.end() ? nullptr : found->second.get();
}

bool CloseKernelObject(HANDLE handle) {
    // Taken out first: what the object does at its end may look into the table.
    const auto node = Table().objects.extract(handle);
    if (node.empty()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return false;
    }
    return node.mapped()->Close();
}

BOOL CloseHandle(HANDLE handle) {
    return UnlessOutOfMemory(
        false, [=] { return CloseKernelObject(handle); });
}
