// Reads the pieces of a Backup archive. Nothing in the file is trusted.
#pragma once

#include "backup/archive.h"

class ArchiveReader : public Archive {
public:
    ~ArchiveReader() override; // closes the file

    // For reading, not shared with any writer.
    bool OpenFile(const WCHAR* path);
    void CloseFile();

    // Fills `header` and the password. Failures are reported, here and below, unless said otherwise.
    bool ReadHeader();
    // The block of the entry at `entryOffset`, its name terminated and its nextEntry filled whatever the kind
    // of archive. The file then stands on the entry's first record.
    bool ReadDatabaseBlock(DatabaseBlock* block);
    // The block of the entry at another offset, without a message; `entryOffset` stays.
    bool PeekDatabaseBlock(DWORD offset, DatabaseBlock* block);
    // Moves `entryOffset` on. An entry that does not lead forwards is a corrupt file: false.
    bool MoveToNextEntry(const DatabaseBlock& block);

    // Reads on from where the file stands; fewer bytes only at the end of the file. Never reports.
    DWORD Read(void* data, DWORD count);
    // How many bytes are left for the records of the entry that was read last: up to the next entry, or to
    // the end of the file when the entry does not say where it ends.
    std::uint64_t BytesLeftInEntry() const;

    HANDLE file = INVALID_HANDLE_VALUE;

private:
    enum class Failure { None, File, Memory };
    Failure LoadDatabaseBlock(DatabaseBlock* block);
    Failure LoadCompressedBlock(DatabaseBlock* block);
    DWORD ReadAt(std::uint64_t offset, void* data, DWORD count);

    // The file is read in larger pieces than records are.
    static constexpr DWORD kBufferSize = 64 * 1024;
    std::uint64_t fileSize = 0;
    std::uint64_t position = 0;     // of the next byte that Read gives
    std::uint64_t bufferStart = 0;  // offset of the buffer's first byte
    std::uint64_t filePosition = 0; // the platform's own
    std::uint64_t recordsStart = 0; // of the entry that was read last
    std::uint64_t entryEnd = 0;     // of that entry
    DWORD buffered = 0;
    BYTE buffer[kBufferSize];
};
