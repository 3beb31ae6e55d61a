// A file that is written, or read, in large pieces: its records are small.
#pragma once

#include <cstdint>

#include "platform/files.h"

constexpr DWORD kStreamBuffer = 64 * 1024;

// Gathers what is written to a file. A write that fails is remembered; what is written afterwards goes
// nowhere.
class RecordWriter {
public:
    explicit RecordWriter(HANDLE file) : file(file) {}
    RecordWriter(const RecordWriter&) = delete;
    RecordWriter& operator=(const RecordWriter&) = delete;

    bool Write(const void* bytes, DWORD count);
    bool WriteNumber(DWORD number) { return Write(&number, sizeof number); }
    // The length in bytes, then the text with its terminator.
    bool WriteText(const WCHAR* text);
    // Hands over what is gathered.
    bool Flush();

private:
    bool WriteNow(const void* bytes, DWORD count);

    HANDLE file;
    bool failed = false;
    DWORD gathered = 0;
    BYTE buffer[kStreamBuffer];
};

// Reads a file from an offset on.
class RecordReader {
public:
    RecordReader(HANDLE file, DWORD offset);
    RecordReader(const RecordReader&) = delete;
    RecordReader& operator=(const RecordReader&) = delete;

    // False when the file has fewer bytes left, or fails.
    bool Read(void* bytes, DWORD count);
    bool ReadNumber(DWORD* number) { return Read(number, sizeof *number); }
    // A text as WriteText leaves it. False unless it fits, and ends at its terminator and nowhere before.
    bool ReadText(WCHAR (&text)[MAX_PATH]);
    // What is left of the file, beyond which no length can be true.
    std::int64_t BytesLeft() const { return left; }

private:
    bool Fill();

    HANDLE file;
    std::int64_t left = 0;
    DWORD at = 0;
    DWORD filled = 0;
    BYTE buffer[kStreamBuffer];
};
