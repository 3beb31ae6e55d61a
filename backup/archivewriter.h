// Writes the pieces of a Backup archive.
#pragma once

#include "backup/archive.h"
#include "store/dbhandle.h"

class ArchiveWriter : public Archive {
public:
    ~ArchiveWriter() override; // closes the file

    // From the fields `header.databaseCount`, `codec` and the password; the rest of the header is filled in.
    bool WriteHeader();
    // The bytes that it takes in the file, or -1.
    std::int64_t WriteDatabaseBlock(const DatabaseBlock& block, std::int64_t offset);
    // Counts the record and writes it; the offset behind it, or -1. The header is kept between records.
    std::int64_t WriteRecord(const RecordBuffer& record, RecordHeader* recordHeader, std::int64_t offset);
    // Declares the entry that starts at `entryOffset` to end at `end`, and moves on to there.
    bool CompleteEntry(DatabaseBlock* block, DWORD blockLength, std::int64_t end);
    // Hands what has been collected to the file.
    bool Flush();
    // Cuts off what lies behind the entries: the rest of one that was written again shorter.
    bool CutFile();
    // A file that is declared complete is on the disk then and replaces an older one of its name. Otherwise
    // that one stays as the name with a `~`; where closing fails, under the name itself.
    bool CloseFile(bool complete);

    HANDLE file = INVALID_HANDLE_VALUE;
    // What stands under the name is neither whole nor the older file: set by whoever opens it.
    bool leftPartial = false;

private:
    bool Write(std::int64_t offset, const void* data, DWORD count);
    bool MoveTo(std::int64_t offset);
    bool WriteNow(std::int64_t offset, const void* data, DWORD count);

    // Records are small, so they go to the file in larger pieces.
    static constexpr DWORD kBufferSize = 64 * 1024;
    std::int64_t filePosition = 0;
    std::int64_t fileEnd = 0;      // behind the last byte that was ever written
    std::int64_t entriesEnd = 0;   // behind what the entries hold
    std::int64_t bufferOffset = 0; // where the buffer's first byte belongs
    DWORD buffered = 0;
    BYTE buffer[kBufferSize];
};
