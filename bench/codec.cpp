// The codec as a program that can stand beside the public `compress` and `uncompress`: it takes a file and
// writes to the standard output, and its streams have that program's header in front.
//
//   codec compress|expand FILE
//   codec corpus text|binaries|records SIZE
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "backup/compressor.h"
#include "bench/codeccorpus.h"

namespace {

constexpr BYTE kHeader[] = {0x1F, 0x9D, 0x90}; // blocks, codes of up to 16 bits

struct Mapped {
    const BYTE* data = nullptr;
    DWORD length = 0;
};

Mapped MapFile(const char* path) {
    const int file = open(path, O_RDONLY);
    struct stat status = {};
    if (file < 0 || fstat(file, &status) != 0 || status.st_size == 0)
        return {};
    const auto length = static_cast<std::size_t>(status.st_size);
    void* data = mmap(nullptr, length, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file, 0);
    close(file);
    if (data == MAP_FAILED)
        return {};
    return {static_cast<const BYTE*>(data), static_cast<DWORD>(length)};
}

bool Write(const BYTE* data, std::size_t length) {
    while (length > 0) {
        const ssize_t written = write(STDOUT_FILENO, data, length);
        if (written <= 0)
            return false;
        data += written;
        length -= static_cast<std::size_t>(written);
    }
    return true;
}

bool CompressFile(const char* path) {
    const Mapped file = MapFile(path);
    Compressor codec;
    return file.data && codec.AllocateTables() && codec.Compress(file.data, file.length) &&
           Write(kHeader, sizeof kHeader) && Write(codec.Output(), codec.OutputLength());
}

bool ExpandFile(const char* path) {
    const Mapped file = MapFile(path);
    if (file.length < sizeof kHeader || std::memcmp(file.data, kHeader, sizeof kHeader) != 0)
        return false;
    Compressor codec;
    return codec.AllocateTables() && codec.Expand(file.data + sizeof kHeader, file.length - sizeof kHeader) &&
           Write(codec.Output(), codec.OutputLength());
}

bool WriteCorpus(std::string_view kind, const char* size) {
    const std::vector<BYTE> corpus = MakeCorpus(kind, std::strtoul(size, nullptr, 10));
    return !corpus.empty() && Write(corpus.data(), corpus.size());
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view command = argc > 2 ? argv[1] : "";
    bool done = false;
    if (command == "compress")
        done = CompressFile(argv[2]);
    else if (command == "expand")
        done = ExpandFile(argv[2]);
    else if (command == "corpus" && argc > 3)
        done = WriteCorpus(argv[2], argv[3]);
    return done ? EXIT_SUCCESS : EXIT_FAILURE;
}
