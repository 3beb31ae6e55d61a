// What goes wrong on the host, as the program is told of it.
#pragma once

#include <new>

#include "platform/errors.h"

// The last error that stands for an errno of a file operation.
DWORD ErrorOfHost(int hostError);

// Runs a step that may find no memory; its result, or `failure` with last error ERROR_NOT_ENOUGH_MEMORY.
template <typename Result, typename Step>
Result UnlessOutOfMemory(Result failure, Step step) {
    try {
        return step();
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return failure;
    }
}
