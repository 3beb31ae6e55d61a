#include "backup/archivewriter.h"

#include <algorithm>
#include <cstring>

#include "backup/compressor.h"
#include "platform/files.h"
#include "resources/resource.h"

namespace {

// Entries are found by 32-bit offsets, so no archive grows beyond what they reach.
constexpr std::int64_t kMaxArchiveSize = 0xFFFFFFFF;

} // namespace

ArchiveWriter::~ArchiveWriter() {
    CloseFile(false);
}

bool ArchiveWriter::CloseFile(bool complete) {
    if (file == INVALID_HANDLE_VALUE)
        return true;
    const bool synced = complete && FlushFileBuffers(file);
    const bool closed = CloseHandle(file);
    file = INVALID_HANDLE_VALUE;
    // A file that cannot be closed has not taken the older one's place.
    leftPartial = leftPartial && closed && !synced;
    if (closed && synced == complete)
        return true;
    ReportFailure(IDS_UNABLE_TO_WRITE_FILE);
    return false;
}

bool ArchiveWriter::CutFile() {
    if (fileEnd <= entriesEnd)
        return true;
    if (MoveTo(entriesEnd) && SetEndOfFile(file)) {
        fileEnd = entriesEnd;
        return true;
    }
    ReportFailure(IDS_UNABLE_TO_WRITE_FILE);
    return false;
}

bool ArchiveWriter::WriteHeader() {
    std::memcpy(header.magic, "10VN", sizeof header.magic);
    header.headerSize = sizeof header;
    header.compressed = codec ? 1 : 0;
    header.flags = passwordFlag ? kPasswordFollows : 0;
    header.firstEntry = sizeof header + (passwordFlag ? sizeof password : 0);
    entriesEnd = std::max<std::int64_t>(entriesEnd, header.firstEntry);
    return Write(0, &header, sizeof header) &&
           (!passwordFlag || Write(sizeof header, &password, sizeof password)) && Flush();
}

std::int64_t ArchiveWriter::WriteDatabaseBlock(const DatabaseBlock& block, std::int64_t offset) {
    const BYTE* data = reinterpret_cast<const BYTE*>(&block);
    DWORD length = sizeof block;
    if (codec) {
        if (!codec->Compress(data, length)) {
            ReportOutOfMemory();
            return -1;
        }
        data = codec->Output();
        length = codec->OutputLength();
    }
    // To the file at once: when there is no room for the records, the block should be there all the same.
    entriesEnd = entryOffset;
    if (!Write(offset, data, length) || !Flush())
        return -1;
    entriesEnd = offset + length;
    return length;
}

std::int64_t ArchiveWriter::WriteRecord(const RecordBuffer& record, RecordHeader* recordHeader,
                                        std::int64_t offset) {
    const BYTE* data = record.data;
    ++recordHeader->ordinal;
    recordHeader->propCount = record.propCount;
    recordHeader->length = record.size;
    if (codec) {
        // No stream stands for no bytes. A record without properties gets a byte that nobody looks at.
        const BYTE nothing = 0;
        if (!codec->Compress(record.size ? record.data : &nothing, record.size ? record.size : 1)) {
            ReportOutOfMemory();
            return -1;
        }
        data = codec->Output();
        recordHeader->length = codec->OutputLength();
    }
    if (!Write(offset, recordHeader, sizeof *recordHeader) ||
        (recordHeader->length && !Write(offset + sizeof *recordHeader, data, recordHeader->length)))
        return -1;
    entriesEnd = offset + sizeof *recordHeader + recordHeader->length;
    return entriesEnd;
}

bool ArchiveWriter::CompleteEntry(DatabaseBlock* block, DWORD blockLength, std::int64_t end) {
    const DWORD nextEntry = static_cast<DWORD>(end);
    bool written;
    if (codec) {
        const EntryPrefix prefix = {nextEntry, blockLength};
        written = Write(entryOffset, &prefix, sizeof prefix);
    } else {
        block->nextEntry = nextEntry;
        written = Write(entryOffset, block, sizeof *block);
    }
    if (!written || !Flush())
        return false;
    entryOffset = nextEntry;
    return true;
}

bool ArchiveWriter::Write(std::int64_t offset, const void* data, DWORD count) {
    if (offset + count > kMaxArchiveSize) {
        ReportFailure(IDS_UNABLE_TO_WRITE_FILE);
        return false;
    }
    const bool joins = offset == bufferOffset + buffered && count <= kBufferSize - buffered;
    if (buffered && !joins && !Flush())
        return false;
    if (count > kBufferSize)
        return WriteNow(offset, data, count);
    if (!buffered)
        bufferOffset = offset;
    std::memcpy(buffer + buffered, data, count);
    buffered += count;
    return true;
}

bool ArchiveWriter::Flush() {
    const DWORD count = buffered;
    buffered = 0;
    return !count || WriteNow(bufferOffset, buffer, count);
}

bool ArchiveWriter::MoveTo(std::int64_t offset) {
    if (offset == filePosition)
        return true;
    LONG high = 0;
    const DWORD low = static_cast<DWORD>(offset);
    const bool moved = SetFilePointer(file, static_cast<LONG>(low), &high, FILE_BEGIN) == low && !high;
    filePosition = moved ? offset : -1;
    return moved;
}

bool ArchiveWriter::WriteNow(std::int64_t offset, const void* data, DWORD count) {
    DWORD written = 0;
    const bool moved = MoveTo(offset);
    const bool ok = moved && WriteFile(file, data, count, &written, nullptr) && written == count;
    fileEnd = std::max(fileEnd, offset + written);
    if (ok) {
        filePosition = offset + count;
        return true;
    }
    filePosition = -1; // wherever the failure left it
    ReportFailure(IDS_UNABLE_TO_WRITE_FILE);
    return false;
}
