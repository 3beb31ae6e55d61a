#include "backup/compressor.h"

#include "backup/decoder.h"
#include "backup/encoder.h"
#include "platform/memory.h"

namespace {

constexpr DWORD kMostInput = 512 << 20;

template <typename Tables>
void Take(Tables** tables) {
    void* const pages = VirtualAlloc(nullptr, sizeof(Tables), MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    *tables = static_cast<Tables*>(pages);
}

template <typename Tables>
void GiveBack(Tables** tables) {
    if (*tables)
        VirtualFree(*tables, 0, MEM_RELEASE);
    *tables = nullptr;
}

} // namespace

Compressor::~Compressor() {
    FreeTables();
}

bool Compressor::AllocateTables() {
    for (int attempt = 0; attempt < 2; ++attempt) {
        FreeTables();
        Take(&encoderTables);
        Take(&decoderTables);
        if (encoderTables && decoderTables)
            return true;
    }
    FreeTables();
    return false;
}

void Compressor::FreeTables() {
    GiveBack(&encoderTables);
    GiveBack(&decoderTables);
}

bool Compressor::Compress(const BYTE* data, DWORD length) {
    const bool ready = encoderTables && length <= kMostInput && output.Begin();
    if (ready && (length == 0 || Encoder(encoderTables, &output, data, length).Run()))
        return true;
    output.Drop();
    return false;
}

bool Compressor::Expand(const BYTE* data, DWORD length, DWORD limit) {
    passedLimit = false;
    if (decoderTables && length && output.Begin()) {
        Decoder decoder(decoderTables, &output, limit);
        if (decoder.Run(data, length))
            return true;
        passedLimit = decoder.passedLimit;
    }
    output.Drop();
    return false;
}
