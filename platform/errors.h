// The last error: a number that each thread keeps of its own latest failed call.
#pragma once

#include "platform/types.h"

constexpr DWORD ERROR_SUCCESS = 0;
constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
constexpr DWORD ERROR_ACCESS_DENIED = 5;
constexpr DWORD ERROR_INVALID_HANDLE = 6;
constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr DWORD ERROR_WRITE_PROTECT = 19;
constexpr DWORD ERROR_GEN_FAILURE = 31;
constexpr DWORD ERROR_SHARING_VIOLATION = 32;
constexpr DWORD ERROR_DUP_NAME = 52;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_DISK_FULL = 112;
constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
constexpr DWORD ERROR_NO_DATA = 232;
constexpr DWORD ERROR_MORE_DATA = 234;
constexpr DWORD ERROR_NO_MORE_ITEMS = 259;
constexpr DWORD ERROR_KEY_DELETED = 1018;
constexpr DWORD ERROR_REVISION_MISMATCH = 1306;
constexpr DWORD ERROR_FILE_CORRUPT = 1392;

// A call that succeeds may leave the number as it was: read it only after a failure.
DWORD GetLastError();
void SetLastError(DWORD error);
