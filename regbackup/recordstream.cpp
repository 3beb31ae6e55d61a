#include "regbackup/recordstream.h"

#include <algorithm>
#include <cstring>

#include "platform/text.h"

bool RecordWriter::Write(const void* bytes, DWORD count) {
    if (count > kStreamBuffer - gathered && !Flush())
        return false;
    if (count > kStreamBuffer)
        return WriteNow(bytes, count);
    if (count)
        std::memcpy(buffer + gathered, bytes, count);
    gathered += count;
    return !failed;
}

bool RecordWriter::WriteText(const WCHAR* text) {
    const DWORD bytes = static_cast<DWORD>((lstrlenW(text) + 1) * sizeof(WCHAR));
    return WriteNumber(bytes) && Write(text, bytes);
}

bool RecordWriter::Flush() {
    const DWORD count = gathered;
    gathered = 0;
    return WriteNow(buffer, count);
}

bool RecordWriter::WriteNow(const void* bytes, DWORD count) {
    DWORD written = 0;
    if (!failed && count)
        failed = !WriteFile(file, bytes, count, &written, nullptr) || written != count;
    return !failed;
}

RecordReader::RecordReader(HANDLE file, DWORD offset) : file(file) {
    DWORD high = 0;
    const DWORD low = GetFileSize(file, &high);
    LONG offsetHigh = 0;
    if (SetFilePointer(file, static_cast<LONG>(offset), &offsetHigh, FILE_BEGIN) == offset && !offsetHigh)
        left = std::max<std::int64_t>(0, (static_cast<std::int64_t>(high) << 32 | low) - offset);
}

bool RecordReader::Fill() {
    at = 0;
    const DWORD wanted = static_cast<DWORD>(std::min<std::int64_t>(left, kStreamBuffer));
    return ReadFile(file, buffer, wanted, &filled, nullptr) && filled;
}

bool RecordReader::Read(void* bytes, DWORD count) {
    if (count > left)
        return false;
    BYTE* out = static_cast<BYTE*>(bytes);
    while (count) {
        if (at == filled && !Fill()) {
            left = 0; // the file has become shorter
            return false;
        }
        const DWORD piece = std::min(count, filled - at);
        std::memcpy(out, buffer + at, piece);
        at += piece;
        out += piece;
        count -= piece;
        left -= piece;
    }
    return true;
}

bool RecordReader::ReadText(WCHAR (&text)[MAX_PATH]) {
    DWORD bytes = 0;
    if (!ReadNumber(&bytes) || bytes >= sizeof text || bytes < sizeof(WCHAR) || bytes % sizeof(WCHAR) != 0)
        return false;
    const DWORD units = bytes / sizeof(WCHAR);
    return Read(text, bytes) && std::find(text, text + units, WCHAR(0)) == text + units - 1;
}
