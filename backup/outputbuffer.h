// Where a codec writes: a block that grows.
#pragma once

#include <cstddef>

#include "platform/types.h"

struct OutputBuffer {
    OutputBuffer() = default;
    OutputBuffer(const OutputBuffer&) = delete;
    OutputBuffer& operator=(const OutputBuffer&) = delete;
    ~OutputBuffer();

    // Drops what is there and takes a small block. False when there is no memory for it.
    bool Begin();
    void Drop();
    // Makes room for so many bytes behind those that are used; `data` may move. False when there is not so
    // much memory; what is there stays.
    bool Reserve(std::size_t bytes);

    BYTE* data = nullptr;
    DWORD start = 0; // what stands before is not the caller's
    DWORD used = 0;
    DWORD capacity = 0;
};
