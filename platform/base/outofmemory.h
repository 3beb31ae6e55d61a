// The edge between the platform's calls and what is behind them.
#pragma once

#include <new>

#include "platform/errors.h"

// Runs the body of a call that may find no memory: its result, or `failure` with last error
// ERROR_NOT_ENOUGH_MEMORY. No exception reaches the program. Painting and what else the host does between
// calls is not guarded: there, no memory ends the process.
template <typename Result, typename Body>
Result UnlessOutOfMemory(Result failure, Body body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return failure;
    }
}
