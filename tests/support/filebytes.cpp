#include "tests/support/filebytes.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>

#include "platform/files.h"

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

Bytes FileBytes(const WCHAR* path) {
    Bytes bytes;
    const HANDLE file = CreateFileW(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, 0);
    EXPECT_NE(file, INVALID_HANDLE_VALUE) << testing::PrintToString(path);
    if (file == INVALID_HANDLE_VALUE)
        return bytes;
    bytes.resize(GetFileSize(file, nullptr));
    DWORD read = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    CloseHandle(file);
    return bytes;
}

void WriteBytes(const WCHAR* path, const Bytes& bytes) {
    const HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, 0);
    ASSERT_NE(file, INVALID_HANDLE_VALUE) << testing::PrintToString(path);
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
}

bool FileExists(const WCHAR* path) {
    const HANDLE file =
        CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, 0);
    return file != INVALID_HANDLE_VALUE && CloseHandle(file);
}
