#include "tests/support/filebytes.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>

#include "platform/base/paths.h"
#include "tests/platform/hostsupport.h"

Bytes FromHex(const char* text) {
    Bytes bytes;
    unsigned value = 0;
    for (int read = 0; std::sscanf(text, " %2x%n", &value, &read) == 1; text += read)
        bytes.push_back(static_cast<BYTE>(value));
    return bytes;
}

Bytes Slice(const Bytes& bytes, std::size_t from, std::size_t count) {
    const std::size_t begin = std::min(from, bytes.size());
    const std::size_t end = begin + std::min(count, bytes.size() - begin);
    return {bytes.begin() + begin, bytes.begin() + end};
}

void PutNumber(Bytes* bytes, std::size_t offset, DWORD value) {
    std::memcpy(bytes->data() + offset, &value, sizeof value);
}

Bytes Changed(Bytes bytes, std::size_t offset, DWORD value) {
    PutNumber(&bytes, offset, value);
    return bytes;
}

DWORD NumberAt(const Bytes& bytes, std::size_t offset) {
    DWORD value = 0;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

namespace {

// Where the host has a file of the device.
std::string OnHost(const WCHAR* path) {
    std::string host;
    EXPECT_TRUE(HostPath(path, host)) << testing::PrintToString(path);
    return host;
}

} // namespace

Bytes FileBytes(const WCHAR* path) {
    EXPECT_TRUE(FileExists(path)) << testing::PrintToString(path);
    const std::string bytes = HostFile(OnHost(path));
    return {bytes.begin(), bytes.end()};
}

void WriteBytes(const WCHAR* path, const Bytes& bytes) {
    WriteHostFile(OnHost(path), {bytes.begin(), bytes.end()});
}

bool FileExists(const WCHAR* path) {
    return std::filesystem::exists(OnHost(path));
}
