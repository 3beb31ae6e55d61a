// The edge between the object store's calls and what is behind them.
#pragma once

#include <new>
#include <utility>

#include "platform/errors.h"

namespace storage {

// Runs the body of a call. Running out of memory is told as every other failure is.
template <typename Result, typename Body>
Result Guarded(Result failure, Body body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return failure;
    }
}

} // namespace storage
