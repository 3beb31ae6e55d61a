#include "backup/archivereader.h"

#include <algorithm>
#include <cstring>

#include "backup/compressor.h"
#include "platform/files.h"
#include "resources/resource.h"

namespace {

// A block of 144 bytes takes at most as many codes of 9 bits, which are 162 bytes, and resets. This leaves
// room for many of those, and none for what a damaged length would have us read.
constexpr DWORD kMaxBlockStream = 4096;

} // namespace

ArchiveReader::~ArchiveReader() {
    CloseFile();
}

bool ArchiveReader::OpenFile(const WCHAR* path) {
    CloseFile();
    file = CreateFileW(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, 0);
    if (file != INVALID_HANDLE_VALUE)
        return true;
    ReportFailure(IDS_UNABLE_TO_READ_FILE);
    return false;
}

void ArchiveReader::CloseFile() {
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
    file = INVALID_HANDLE_VALUE;
}

// Neither the magic nor the header's size is looked at: any file that is long enough counts as an archive.
bool ArchiveReader::ReadHeader() {
    DWORD sizeHigh = 0;
    const DWORD sizeLow = GetFileSize(file, &sizeHigh);
    fileSize = static_cast<std::uint64_t>(sizeHigh) << 32 | sizeLow;
    position = 0;
    buffered = 0; // the file may have changed since
    filePosition = UINT64_MAX;
    bool ok = Read(&header, sizeof header) == sizeof header;
    passwordFlag = ok && (header.flags & kPasswordFollows);
    if (passwordFlag) {
        ok = Read(&password, sizeof password) == sizeof password;
        password.text[kPasswordCapacity - 1] = 0;
    }
    if (!ok)
        ReportFailure(IDS_UNABLE_TO_READ_FILE);
    return ok;
}

bool ArchiveReader::ReadDatabaseBlock(DatabaseBlock* block) {
    switch (LoadDatabaseBlock(block)) {
    case Failure::None:
        return true;
    case Failure::File:
        ReportFailure(IDS_UNABLE_TO_READ_FILE);
        break;
    case Failure::Memory:
        ReportFailure(IDS_UNCOMPRESS_NO_MEMORY);
        break;
    }
    return false;
}

bool ArchiveReader::PeekDatabaseBlock(DWORD offset, DatabaseBlock* block) {
    const DWORD before = entryOffset;
    entryOffset = offset;
    const Failure failure = LoadDatabaseBlock(block);
    entryOffset = before;
    return failure == Failure::None;
}

ArchiveReader::Failure ArchiveReader::LoadDatabaseBlock(DatabaseBlock* block) {
    position = entryOffset;
    if (header.compressed) {
        const Failure failure = LoadCompressedBlock(block);
        if (failure != Failure::None)
            return failure;
    } else if (Read(block, sizeof *block) != sizeof *block) {
        return Failure::File;
    }
    block->info.szDbaseName[CEDB_MAXDBASENAMELEN - 1] = 0;
    recordsStart = position;
    entryEnd = block->nextEntry >= recordsStart && block->nextEntry < fileSize ? block->nextEntry : fileSize;
    return Failure::None;
}

ArchiveReader::Failure ArchiveReader::LoadCompressedBlock(DatabaseBlock* block) {
    EntryPrefix prefix;
    BYTE stored[kMaxBlockStream];
    if (!codec || Read(&prefix, sizeof prefix) != sizeof prefix || prefix.blockLength > sizeof stored ||
        Read(stored, prefix.blockLength) != prefix.blockLength)
        return Failure::File;
    if (!codec->Expand(stored, prefix.blockLength, sizeof *block))
        return codec->PassedLimit() ? Failure::File : Failure::Memory;
    if (codec->OutputLength() != sizeof *block)
        return Failure::File;
    std::memcpy(block, codec->Output(), sizeof *block);
    block->nextEntry = prefix.nextEntry;
    return Failure::None;
}

bool ArchiveReader::MoveToNextEntry(const DatabaseBlock& block) {
    if (block.nextEntry < recordsStart) {
        ReportFailure(IDS_UNABLE_TO_READ_FILE);
        return false;
    }
    entryOffset = block.nextEntry;
    return true;
}

std::uint64_t ArchiveReader::BytesLeftInEntry() const {
    return position < entryEnd ? entryEnd - position : 0;
}

DWORD ArchiveReader::Read(void* data, DWORD count) {
    BYTE* out = static_cast<BYTE*>(data);
    DWORD done = 0;
    while (done < count) {
        if (position < bufferStart || position >= bufferStart + buffered) {
            if (count - done >= kBufferSize) {
                const DWORD direct = ReadAt(position, out + done, count - done);
                position += direct;
                return done + direct;
            }
            bufferStart = position;
            buffered = ReadAt(position, buffer, kBufferSize);
            if (!buffered)
                break;
        }
        const DWORD inBuffer = static_cast<DWORD>(position - bufferStart);
        const DWORD piece = std::min(count - done, buffered - inBuffer);
        std::memcpy(out + done, buffer + inBuffer, piece);
        position += piece;
        done += piece;
    }
    return done;
}

DWORD ArchiveReader::ReadAt(std::uint64_t offset, void* data, DWORD count) {
    if (offset != filePosition) {
        LONG high = static_cast<LONG>(offset >> 32);
        const DWORD low = static_cast<DWORD>(offset);
        filePosition = UINT64_MAX;
        if (SetFilePointer(file, static_cast<LONG>(low), &high, FILE_BEGIN) != low)
            return 0;
    }
    DWORD read = 0;
    if (!ReadFile(file, data, count, &read, nullptr)) {
        filePosition = UINT64_MAX;
        return 0;
    }
    filePosition = offset + read;
    return read;
}
