// Short forms for tests of the platform: the error of a failed call, and files by the host's paths.
#pragma once

#include <fstream>
#include <iterator>
#include <string>

#include "platform/errors.h"

// The last error of a call that failed, which is to say that it returned 0 or the invalid handle;
// ERROR_SUCCESS of one that did not fail, or that failed without a word.
inline DWORD FailureOf(DWORD result) {
    const DWORD error = GetLastError();
    SetLastError(ERROR_SUCCESS); // so that the next one cannot pass for this one's
    return result == 0 || result == INVALID_HANDLE_VALUE ? error : ERROR_SUCCESS;
}

inline void WriteHostFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string HostFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
