// Writes a text file of lines made of fields, in 8 bits or in UTF-16.
#pragma once

#include "platform/types.h"

// Create, then fields with separators between them and line ends, then Close. A write that fails is
// remembered and what is written afterwards goes nowhere, so that it is enough to ask `failed` once a line.
class FieldWriter {
public:
    FieldWriter() = default;
    ~FieldWriter();
    FieldWriter(const FieldWriter&) = delete;
    FieldWriter& operator=(const FieldWriter&) = delete;

    // Creates the file as CreateFileForWriting does, and begins it with a byte-order mark when `unicode` is
    // set. False on failure, which is reported here, and when the user keeps the file that is there. `path`
    // (room for MAX_PATH) becomes the path that was used.
    bool Create(HWND owner, WCHAR* path);
    // Absent and empty texts write nothing, not even quotes. A text is quoted when `quoted` says so or when
    // it holds a tab or a comma; its own quotes are then doubled, and otherwise too.
    void WriteField(const WCHAR* text, bool quoted);
    void WriteSeparator() { Put(separator); }
    void WriteLineEnd();
    // Hands over what was gathered. A file that is `complete` is then on the disk; one that is not keeps an
    // older one of its name, with a `~`. True when the file is complete and nothing failed.
    bool Close(bool complete);

    bool unicode = false; // before Create
    WCHAR separator = u',';
    bool failed = false;

private:
    void Put(WCHAR unit) {
        if (gathered > kBufferSize - sizeof unit)
            Flush();
        buffer[gathered++] = static_cast<BYTE>(unit);
        if (unicode)
            buffer[gathered++] = static_cast<BYTE>(unit >> 8);
    }
    void PutDoubled(const WCHAR* text);
    void Flush();

    static constexpr DWORD kBufferSize = 64 * 1024;
    HANDLE file = INVALID_HANDLE_VALUE;
    DWORD gathered = 0;
    BYTE buffer[kBufferSize];
};
