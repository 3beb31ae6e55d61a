// The Backup archive: its layouts in the file (all little-endian, text UTF-16), and what its writer and its
// reader have in common. docs/formats.md describes the file.
#pragma once

#include <memory>

#include "app/passworddialogs.h"
#include "app/progressdisplay.h"
#include "platform/objectstore.h"

class Compressor;

struct ArchiveHeader {
    BYTE magic[4]; // "10VN"; readers do not look at it
    DWORD headerSize;
    DWORD databaseCount;
    DWORD compressed; // not 0: database blocks and records are compressed
    DWORD flags;      // kPasswordFollows
    DWORD firstEntry; // offset in the file
};
static_assert(sizeof(ArchiveHeader) == 24);

constexpr DWORD kPasswordFollows = 0x10;
struct DatabaseBlock {
    DWORD blockSize;
    CEDBASEINFO info;
    SYSTEMTIME backupTime; // local
    DWORD nextEntry;       // offset in the file; in a compressed archive the entry's prefix has it instead
};
static_assert(sizeof(DatabaseBlock) == 144 && offsetof(DatabaseBlock, info) == 4 &&
              offsetof(DatabaseBlock, backupTime) == 124 && offsetof(DatabaseBlock, nextEntry) == 140);

// Comes before the database block in a compressed archive.
struct EntryPrefix {
    DWORD nextEntry;
    DWORD blockLength; // bytes of the compressed database block
};
static_assert(sizeof(EntryPrefix) == 8);

struct RecordHeader {
    DWORD propCount;
    DWORD ordinal; // counts from 1
    DWORD reserved;
    DWORD length; // bytes that follow in the file
};
static_assert(sizeof(RecordHeader) == 16);

// The state that a backup and a restore share.
class Archive {
public:
    Archive();
    virtual ~Archive();
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    // The window that owns message boxes: the progress dialog while there is one.
    HWND MessageOwner() const;
    // Shows a string as a failure; nothing while the program runs unattended.
    void ReportFailure(UINT stringId) const;
    void ReportFailure(UINT stringId, const WCHAR* argument) const;
    void ReportOutOfMemory() const;
    // Called before a step that moves so many bytes. When that may take long, what the progress was last told
    // is brought to the screen first.
    void BeforeStep(DWORD bytes);
    static constexpr DWORD kLongStep = 1 << 20; // from here on
    // The user has cancelled, or the program is to end: no further database is begun.
    bool Stopped() const;
    // Before a database, and before each of its records; false once the user has cancelled. The block must
    // live as long as the progress shows it.
    void BeginProgressOn(UINT formatString, const CEDBASEINFO& database);
    bool ProgressStep(UINT formatString, const CEDBASEINFO& database);

    HWND owner = nullptr;
    ArchiveHeader header = {};
    DWORD entryOffset = 0; // where the current database entry starts
    std::unique_ptr<Compressor> codec;
    ProgressDisplay progress;
    PasswordBlock password = {};
    bool passwordFlag = false;

protected:
    // Makes the codec with its tables, or leaves none. The two failures are told apart.
    enum class CodecResult { Ready, NoCodec, NoTables };
    CodecResult MakeCodec();
};
