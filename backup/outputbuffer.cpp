#include "backup/outputbuffer.h"

#include <algorithm>
#include <cstdlib>

namespace {
constexpr std::size_t kOutputStep = 2048;
} // namespace

OutputBuffer::~OutputBuffer() {
    Drop();
}

bool OutputBuffer::Begin() {
    Drop();
    data = static_cast<BYTE*>(std::malloc(kOutputStep));
    capacity = data ? kOutputStep : 0;
    return data != nullptr;
}

void OutputBuffer::Drop() {
    std::free(data);
    data = nullptr;
    start = used = capacity = 0;
}

bool OutputBuffer::Reserve(std::size_t bytes) {
    const std::size_t needed = used + bytes;
    if (needed < capacity)
        return true;
    // By half of what there is, or a long stream would be copied again and again.
    const std::size_t wanted = needed + std::max<std::size_t>(kOutputStep, capacity / 2);
    void* const grown = std::realloc(data, wanted);
    if (!grown)
        return false;
    data = static_cast<BYTE*>(grown);
    capacity = static_cast<DWORD>(wanted);
    return true;
}
