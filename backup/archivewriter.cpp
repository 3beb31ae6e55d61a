#include "backup/archivewriter.h"

#include <cstring>

#include "backup/compressor.h"
#include "platform/files.h"
#include "resources/resource.h"

namespace {

// Entries are found by 32-bit offsets, so no archive grows beyond what they reach.
constexpr std::int64_t kMaxArchiveSize = 0xFFFFFFFF;

} // namespace

ArchiveWriter::~ArchiveWriter() {
    CloseFile();
}

bool ArchiveWriter::CloseFile() {
    if (file == INVALID_HANDLE_VALUE)
        return true;
    const BOOL closed = CloseHandle(file);
    file = INVALID_HANDLE_VALUE;
    return closed;
}

bool ArchiveWriter::WriteHeader() {
    std::memcpy(header.magic, "10VN", sizeof header.magic);
    header.headerSize = sizeof header;
    header.compressed = codec ? 1 : 0;
    header.flags = passwordFlag ? kPasswordFollows : 0;
    header.firstEntry = sizeof header + (passwordFlag ? sizeof password : 0);
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
    return Write(offset, data, length) && Flush() ? std::int64_t(length) : -1;
}

std::int64_t ArchiveWriter::WriteRecord(const RecordBuffer& record, RecordHeader* recordHeader,
                                        std::int64_t offset) {
    const BYTE* data = record.data;
    recordHeader->ordinal++;
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
    return offset + sizeof *recordHeader + recordHeader->length;
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

bool ArchiveWriter::WriteNow(std::int64_t offset, const void* data, DWORD count) {
    bool inPlace = offset == filePosition;
    if (!inPlace) {
        LONG high = 0;
        const DWORD low = static_cast<DWORD>(offset);
        inPlace = SetFilePointer(file, static_cast<LONG>(low), &high, FILE_BEGIN) == low && !high;
    }
    DWORD written = 0;
    if (inPlace && WriteFile(file, data, count, &written, nullptr) && written == count) {
        filePosition = offset + count;
        return true;
    }
    filePosition = -1; // wherever the failure left it
    ReportFailure(IDS_UNABLE_TO_WRITE_FILE);
    return false;
}
