// The process's table of kernel objects.
#pragma once

#include <memory>
#include <type_traits>
#include <typeinfo>

#include "platform/types.h"

// What a HANDLE or an open HKEY stands for. Closing the handle destroys it.
class KernelObject {
public:
    virtual ~KernelObject() = default;
    // What closing the handle does before that. False with the last error set when it failed; the handle is
    // closed all the same.
    virtual bool Close() { return true; }
};

// Never 0, INVALID_HANDLE_VALUE or a main key of the registry.
HANDLE AddKernelObject(std::unique_ptr<KernelObject> object);
// Null when the handle is not open.
KernelObject* FindKernelObject(HANDLE handle);
// False with the last error set when the handle is not open, or when its object's Close failed.
bool CloseKernelObject(HANDLE handle);

// Null when the handle is not open or stands for another kind of object; sets no last error.
template <typename Object>
Object* FindKernelObject(HANDLE handle) {
    static_assert(std::is_final_v<Object>); // compared exactly, as each step of a walk does it
    KernelObject* const object = FindKernelObject(handle);
    return object && typeid(*object) == typeid(Object) ? static_cast<Object*>(object) : nullptr;
}
