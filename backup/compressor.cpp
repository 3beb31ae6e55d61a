#include "backup/compressor.h"

#include <algorithm>
#include <cstdlib>

#include "platform/memory.h"

namespace {
constexpr std::size_t kOutputStep = 2048;
} // namespace

Compressor::~Compressor() {
    DropOutput();
    FreeTables();
}

bool Compressor::AllocateTables() {
    constexpr std::size_t kCodeTabSize = (kCodes + kSlots) * sizeof(std::uint16_t);
    constexpr std::size_t kHashTabSize = (2 * kCodes + kHashSize / 32 + 1) * sizeof(DWORD);
    static_assert(kHashTabSize >= kCodes * sizeof(Span));
    for (int attempt = 0; attempt < 2; ++attempt) {
        FreeTables();
        void* codes = VirtualAlloc(nullptr, kCodeTabSize, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
        void* hashes = VirtualAlloc(nullptr, kHashTabSize, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
        codeTab = static_cast<std::uint16_t*>(codes);
        hashTab = static_cast<DWORD*>(hashes);
        if (codeTab && hashTab)
            return true;
    }
    FreeTables();
    return false;
}

void Compressor::FreeTables() {
    if (codeTab)
        VirtualFree(codeTab, 0, MEM_RELEASE);
    if (hashTab)
        VirtualFree(hashTab, 0, MEM_RELEASE);
    codeTab = nullptr;
    hashTab = nullptr;
}

bool Compressor::NewOutput() {
    DropOutput();
    output = static_cast<BYTE*>(std::malloc(kOutputStep));
    outputCapacity = output ? kOutputStep : 0;
    return output != nullptr;
}

bool Compressor::DropOutput() {
    std::free(output);
    output = nullptr;
    outputStart = outputUsed = outputCapacity = 0;
    return false;
}

bool Compressor::Reserve(std::size_t bytes) {
    const std::size_t needed = outputUsed + bytes;
    if (needed < outputCapacity)
        return true;
    // By half of what there is, or a long stream would be copied again and again.
    const std::size_t capacity = needed + std::max<std::size_t>(kOutputStep, outputCapacity / 2);
    BYTE* grown = static_cast<BYTE*>(std::realloc(output, capacity));
    if (!grown)
        return DropOutput();
    output = grown;
    outputCapacity = static_cast<DWORD>(capacity);
    return true;
}
