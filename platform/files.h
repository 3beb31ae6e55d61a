// Files by device path.
//
// `\folder\name` is below the device's root, `\Storage Card\...` is the host's file system from its root on.
// A path without a leading separator is relative to the host's working folder; one with a leading `/` is a
// path of the host. Both separators may be used anywhere. Names keep their case and are found without regard
// to it, an exact match first. A path that is empty, climbs above the device's root, begins with two
// backslashes (another machine) or is too long for the host is ERROR_PATH_NOT_FOUND. What lies in the folder
// of a device but not below its root/, its store above all, is ERROR_ACCESS_DENIED by whatever path or link.
#pragma once

#include "platform/handles.h"
#include "platform/types.h"

constexpr DWORD GENERIC_READ = 0x80000000;
constexpr DWORD GENERIC_WRITE = 0x40000000;
constexpr DWORD FILE_SHARE_READ = 0x00000001;
constexpr DWORD CREATE_ALWAYS = 2; // begins it anew when there is one
constexpr DWORD OPEN_EXISTING = 3;
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x00000080;

// Opens a file; CloseHandle closes it. `security` is null and `model` 0. A file is shared only between
// openers that all read and all pass FILE_SHARE_READ; any other two meet with ERROR_SHARING_VIOLATION, in
// this process and across processes, and the second changes nothing. INVALID_HANDLE_VALUE on failure:
// ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND (a folder on the way is missing), ERROR_ACCESS_DENIED (a folder,
// or no right to it), ERROR_SHARING_VIOLATION, ERROR_DISK_FULL, ERROR_NOT_ENOUGH_MEMORY,
// ERROR_INVALID_PARAMETER.
//
// A file that CREATE_ALWAYS begins anew is written beside the one there is, which stands under the name until
// CloseHandle, whatever becomes of the process. CloseHandle puts the new one in its place, with the older
// one's mode and owner. When FlushFileBuffers said before, with no writing after it, that the new one is
// complete, nothing else is left. Otherwise the older one is kept as `name~`, and stays there, whatever else
// fails meanwhile, until a complete one stands under the name. When CloseHandle fails, the older one still
// stands under its name. Links are followed. Three kinds are written in their own place: a new file, an
// empty one, and one in a folder where the user may not make any.
HANDLE CreateFileW(const WCHAR* path, DWORD access, DWORD share, void* security, DWORD disposition,
                   DWORD attributes, HANDLE model);
// Reads up to `count` bytes; fewer, or none, only at the end of the file. FALSE on failure.
BOOL ReadFile(HANDLE file, void* buffer, DWORD count, DWORD* read, void* overlapped);
// Writes all `count` bytes, or fails with `written` saying how many were: ERROR_DISK_FULL,
// ERROR_GEN_FAILURE, ERROR_ACCESS_DENIED.
BOOL WriteFile(HANDLE file, const void* buffer, DWORD count, DWORD* written, void* overlapped);
// Brings what was written to the disk, and says that the file is complete as it stands. FALSE when the host
// could not: ERROR_DISK_FULL, ERROR_GEN_FAILURE (the disk failed), ERROR_ACCESS_DENIED.
BOOL FlushFileBuffers(HANDLE file);

constexpr DWORD FILE_BEGIN = 0;
constexpr DWORD INVALID_SET_FILE_POINTER = 0xFFFFFFFF;
constexpr DWORD INVALID_FILE_SIZE = 0xFFFFFFFF;
// Moves to `distance`, from FILE_BEGIN only: 64 signed bits of which `distanceHigh` is the upper half, or 32
// signed bits when that is null. So an offset from 2 GiB on needs an upper half, even if that is 0. Returns
// the low half of the offset. INVALID_SET_FILE_POINTER on failure: ERROR_INVALID_PARAMETER before the start;
// where that is an offset, the last error is ERROR_SUCCESS.
DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distanceHigh, DWORD method);
// Bytes; `high` may be null for files that are known to be below 4 GiB. INVALID_FILE_SIZE likewise.
DWORD GetFileSize(HANDLE file, DWORD* high);
// The file ends where it stands: what lies behind is cut off, what is missing becomes zeros. FALSE on
// failure.
BOOL SetEndOfFile(HANDLE file);
// Fails with ERROR_SHARING_VIOLATION while the file is open, else as CreateFileW.
BOOL DeleteFileW(const WCHAR* path);

// Bytes of the disk that the file or folder lies on: what is left for this user, and all there are. FALSE,
// with a last error, when the path leads nowhere.
BOOL GetDiskFreeSpaceExW(const WCHAR* path, std::uint64_t* available, std::uint64_t* total);
