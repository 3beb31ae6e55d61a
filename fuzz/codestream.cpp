// Any bytes as a code stream, and as what becomes one.
#include "backup/compressor.h"
#include "fuzz/targets.h"

namespace {

std::string Output(const Compressor& codec) {
    return {reinterpret_cast<const char*>(codec.Output()), codec.OutputLength()};
}

const BYTE* BytesOf(std::string_view text) {
    return reinterpret_cast<const BYTE*>(text.data());
}

DWORD LengthOf(std::string_view text) {
    return static_cast<DWORD>(text.size());
}

} // namespace

void FuzzCodeStream(Input input) {
    static Compressor codec;
    static const bool ready = codec.AllocateTables();
    constexpr DWORD kLimit = 1 << 20;
    Require(ready, "there is memory for the tables");
    const std::string_view bytes = input.Rest();
    const std::size_t times = std::size_t{1} << bytes.size() % 8; // so that few bytes make much, too
    if (codec.Expand(BytesOf(bytes), LengthOf(bytes), kLimit)) {
        const std::string expanded = Output(codec);
        Require(codec.Expand(BytesOf(bytes), LengthOf(bytes), LengthOf(expanded)) &&
                    Output(codec) == expanded,
                "a stream expands to the same bytes each time, up to a limit that they reach");
    }
    std::string data;
    for (std::size_t time = 0; time < times && !bytes.empty(); ++time)
        data += bytes;
    Require(codec.Compress(BytesOf(data), LengthOf(data)), "any bytes can be compressed");
    const std::string stream = Output(codec);
    Require(data.empty() ||
                (codec.Expand(BytesOf(stream), LengthOf(stream), LengthOf(data)) && Output(codec) == data),
            "what was compressed expands to itself");
}
