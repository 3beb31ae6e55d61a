// Restoring without dialogs: good archives, clashes, and everything that a file may hold.
#include <fstream>
#include <optional>
#include <unistd.h>

#include "backup/compressor.h"
#include "backup/restore.h"
#include "tests/backup/backupfixture.h"
#include "tests/support/resourcelimit.h"
#include "tests/support/scarcememory.h"

namespace {

constexpr const WCHAR* kPath = u"\\all.bkp";
const std::u16string kUnreadable = u"Unable to read from file. File may be corrupted.";
const std::u16string kNoMemory =
    u"The file you're trying to restore is compressed. There is not enough memory "
    u"to uncompress the data.";
const std::u16string kOutOfMemory =
    u"There is not enough memory to complete this operation. Close other programs and try again.";

std::u16string Corrupted(const std::u16string& name) {
    return u"Unable to restore \"" + name + u"\" database from the archive. Archive file may be corrupted.";
}

class RestoreTest : public BackupTest {
protected:
    static bool Restore(const Bytes& archive) {
        WriteBytes(kPath, archive);
        return RestoreCommand(nullptr, kPath);
    }
};

TEST_F(RestoreTest, HandMadeArchiveGivesTheDatabaseBack) {
    ASSERT_TRUE(Restore(FromHex(kPlainArchive)));
    EXPECT_EQ(Contents(u"Ab"), kSampleContents);
    CEDBASEINFO info = {};
    DbHandle database(nullptr);
    database.Open(u"Ab", 0, 0);
    EXPECT_TRUE(database.GetInfo(&info));
    database.Close();
    EXPECT_EQ(info.dwDbaseType, 1u);
    ASSERT_EQ(info.wNumSortOrder, 1);
    EXPECT_EQ(info.rgSortSpecs[0].propid, 0x00010003u);

    // The same compressed, without its password.
    DeleteAllBut(u"");
    Bytes compressed = FromHex(kCompressedArchive);
    std::fill(compressed.begin() + 24, compressed.begin() + 64, BYTE(0));
    ASSERT_TRUE(Restore(compressed));
    EXPECT_EQ(Contents(u"Ab"), kSampleContents);
}

// Restored, everything is backed up to the same bytes again, but for the times in the blocks.
TEST_F(RestoreTest, WhatWasBackedUpComesBack) {
    MakeRecords(u"Many", 300);
    MakeRecords(u"\\System", 3);
    MakeRecords(u"Empty", 0);
    MakeSample();
    MakeDatabase(u"Bare", {{}, {TextValue(1, u"last")}});
    settings.includeSystemDatabases = 1;
    Bytes before;
    for (const bool compress : {false, true, false}) {
        BackupEngine engine;
        engine.compress = compress;
        ASSERT_TRUE(BackUp(engine, kPath, {u"Many", u"\\System", u"Empty", u"Ab", u"Bare"}));
        if (!compress) {
            Bytes archive = FileBytes(kPath);
            for (std::size_t entry = 24; entry < archive.size(); entry = NumberAt(archive, entry + 140)) {
                std::fill_n(archive.begin() + entry + 84, 8, BYTE(0));
                std::fill_n(archive.begin() + entry + 124, 16, BYTE(0));
            }
            EXPECT_TRUE(before.empty() || archive == before);
            before = archive;
        }
        DeleteAllBut(u"");
        ASSERT_TRUE(RestoreCommand(nullptr, kPath));
    }
}

TEST_F(RestoreTest, SystemDatabasesOnlyWhenAskedFor) {
    // An entry that is left out does not lead on to the next, however often the header says to go on.
    ASSERT_TRUE(Restore(Changed(ArchiveOf(u"A\\B"), 8, 0xFFFFFFFF)));
    EXPECT_EQ(DatabaseNames(), std::vector<std::u16string>{u"Ab"});

    settings.includeSystemDatabases = 1;
    ASSERT_TRUE(Restore(ArchiveOf(u"A\\B")));
    EXPECT_EQ(DatabaseNames(), (std::vector<std::u16string>{u"Ab", u"\\b", u"Bb"}));
}

TEST_F(RestoreTest, ExistingDatabaseIsReplaced) {
    MakeRecords(u"Ab", 3);
    const Bytes archive = FromHex(kPlainArchive);
    ASSERT_TRUE(Restore(archive));
    EXPECT_EQ(Contents(u"Ab"), kSampleContents);

    // One that somebody has open cannot be deleted: its records are, and it stays the same database. That is
    // asked even without dialogs, unless all messages are off.
    DeleteAllBut(u"");
    MakeDatabase(u"Ab", {{TextValue(9, u"mine")}});
    DbHandle user(nullptr);
    ASSERT_NE(user.Open(u"Ab", 0, 0), INVALID_HANDLE_VALUE);
    const CEOID oid = user.oid;
    const std::u16string inUse = u"Database \"Ab\" is in use by another application. You may need to "
                                 u"soft-reset your mobile device after "
                                 u"restoring this database. Do you want to restore now?";
    ExpectMessage(inUse, 0); // nobody could be asked
    Restore(Changed(ArchiveOf(u"AB"), 8, 0xFFFFFFFF));
    EXPECT_EQ(Contents(u"Ab"), u"9=mine\n");
    for (const int answer : {IDNO, IDNO, IDYES})
        ExpectMessage(inUse, answer); // a No comes back to the same entry
    Restore(Changed(archive, 8, 3));
    EXPECT_EQ(Contents(u"Ab"), kSampleContents);
    settings.unattended = 1;
    ASSERT_TRUE(Restore(archive));
    EXPECT_EQ(Contents(u"Ab"), kSampleContents);
    settings.unattended = 0;
    DbHandle again(nullptr);
    again.Open(u"Ab", 0, 0);
    EXPECT_EQ(again.oid, oid);

    // Interrupted, that leaves it empty.
    ExpectMessage(inUse, IDYES);
    ExpectMessage(Corrupted(u"Ab"));
    Restore(Slice(archive, 0, archive.size() - 1));
    EXPECT_EQ(Contents(u"Ab"), u"");
}

Bytes WithoutPassword(const Bytes& archive) {
    return Changed(archive, 16, 0); // the first entry's offset stays as it is
}

TEST_F(RestoreTest, BadArchives) {
    const std::u16string cannotWrite =
        u"Couldn't create a new record in \"Ab\" database: The parameter is incorrect";
    const std::size_t record = kPlainRecord;
    const Bytes plain = FromHex(kPlainArchive);
    const Bytes packed = FromHex(kCompressedArchive);
    // A block of which its few bytes make far more than a block.
    const Bytes zeros(5'000'000);
    Compressor codec;
    ASSERT_TRUE(codec.AllocateTables() && codec.Compress(zeros.data(), static_cast<DWORD>(zeros.size())));
    Bytes swollen = WithoutPassword(Changed(packed, 68, codec.OutputLength()));
    swollen.resize(72);
    swollen.insert(swollen.end(), codec.Output(), codec.Output() + codec.OutputLength());
    const auto endlessBy = [](DWORD next) {
        return Changed(Changed(ArchiveOf(u"AB"), 24 + 140, next), 8, 0xFFFFFFFF);
    };
    const struct {
        const char* what;
        Bytes bytes;
        std::u16string message; // empty: none, it is taken as an archive
    } cases[] = {
        {"empty", {}, kUnreadable},
        {"too short for a header", Bytes(23), kUnreadable},
        {"nothing but zeros", Bytes(24), u""},
        {"no magic", Changed(plain, 0, 0), u""},
        {"password block cut", Slice(packed, 0, 63), kUnreadable},
        {"garbage throughout", Bytes(1000, 0xA5), kUnreadable},
        {"first entry behind the end", Changed(plain, 20, 0xFFFFFFF0), kUnreadable},
        {"count too large", Changed(plain, 8, 0xFFFFFFFF), kUnreadable},
        {"entry that leads back to itself", endlessBy(24), kUnreadable},
        {"entry that leads into its own block", endlessBy(24 + 143), kUnreadable},
        {"more sort orders than there can be", Changed(plain, 24 + 76, 0x00050001),
         u"Couldn't create \"Ab\" database: The parameter is incorrect"},
        {"no name", Changed(plain, 24 + 8, 0), u"Couldn't create \"\" database: The parameter is incorrect"},
        {"more records than there are", Changed(plain, 24 + 76, 0x0001FFFF), Corrupted(u"Ab")},
        {"record longer than the file", Changed(plain, record + 12, 41), Corrupted(u"Ab")},
        {"record cut in its header", Slice(plain, 0, record + 15), Corrupted(u"Ab")},
        {"more properties than the record holds", Changed(plain, record, 3), cannotWrite},
        {"more properties than can be", Changed(plain, record, 0x10002), Corrupted(u"Ab")},
        {"text outside of the record", Changed(plain, record + 40, 0xFFFFFFF0), cannotWrite},
        {"text without an end", Changed(plain, record + 52, 0x006E006E), cannotWrite},
        {"blob outside of the record", Changed(plain, record + 32, 0x00020041), cannotWrite},
        {"compressed block longer than the file", WithoutPassword(Changed(packed, 68, 101)), kUnreadable},
        {"compressed block empty", WithoutPassword(Changed(packed, 68, 0)), kNoMemory},
        {"compressed block of a single byte", WithoutPassword(Changed(packed, 68, 1)), kUnreadable},
        {"compressed block that swells", swollen, kUnreadable},
        {"compressed record empty", WithoutPassword(Changed(packed, 143, 0)), kOutOfMemory},
        {"compressed block cut", WithoutPassword(Changed(packed, 68, 58)), kUnreadable},
        {"compressed record cut", WithoutPassword(Slice(packed, 0, 171)), Corrupted(u"Ab")},
    };
    for (const auto& bad : cases) {
        SCOPED_TRACE(bad.what);
        if (!bad.message.empty())
            ExpectMessage(bad.message);
        Restore(bad.bytes);
        DeleteAllBut(u"");
    }
    ExpectMessage(kUnreadable);
    EXPECT_FALSE(RestoreCommand(nullptr, u"\\missing.bkp"));
}

// Length and file size are cheap to write down: neither costs memory.
TEST_F(RestoreTest, DeclaredLengthTakesNoMemory) {
    constexpr rlim_t kRoom = 256 << 20;
    WriteBytes(kPath, WithoutPassword(Changed(FromHex(kCompressedArchive), 68, 0xF0000000)));
    std::filesystem::resize_file(device.folder + "/root/all.bkp", std::uint64_t{5} << 30); // all holes
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const ResourceLimit littleMemory(RLIMIT_AS, pages * static_cast<rlim_t>(getpagesize()) + kRoom);
    ExpectMessage(kUnreadable);
    RestoreCommand(nullptr, kPath);
}

TEST_F(RestoreTest, FullHeapFailsTheJobAndLeavesNoHalfDatabase) {
    MakeDatabase(u"Long", {{NumberValue(1, CEVT_I4, 1)}, {TextValue(2, std::u16string(400'000, u'x'))}});
    for (const bool compress : {false, true}) {
        BackupEngine engine;
        engine.compress = compress;
        ASSERT_TRUE(BackUp(engine, kPath, {u"Long"}));
        void* const spare = LocalAlloc(LMEM_FIXED, 90'000); // enough for what the record compresses to
        std::optional<FullHeap> full(100'000);
        LocalFree(spare);
        ExpectMessage(
            u"Couldn't read record in \"Long\" database: Not enough storage is available to process "
            u"this command");
        EXPECT_FALSE(BackUp(engine, u"\\second.bkp", {u"Long"}));
        EXPECT_FALSE(engine.complete);
        ExpectMessage(compress ? kOutOfMemory : u"Unable to restore \"Long\" database. Not enough memory.");
        RestoreCommand(nullptr, kPath);
        EXPECT_EQ(Contents(u"Long"), u"missing");
        full.reset();
        RestoreCommand(nullptr, kPath);
        EXPECT_NE(Contents(u"Long"), u"missing");
    }
}

TEST_F(RestoreTest, NoTruncationAndNoChangedByteDoesHarm) {
    MakeSample(u"Keep");
    settings.unattended = 1;
    const auto check = [this](const Bytes& archive) {
        Restore(archive);
        ASSERT_EQ(Contents(u"Keep"), kSampleContents);
        DeleteAllBut(u"Keep");
    };
    for (const char* hex : {kPlainArchive, kCompressedArchive}) {
        const Bytes archive = WithoutPassword(FromHex(hex));
        for (std::size_t length = 0; length < archive.size(); ++length) {
            SCOPED_TRACE(length);
            check(Slice(archive, 0, length));
        }
        for (std::size_t offset = 0; offset < archive.size(); ++offset) {
            for (const BYTE mask : {0x01, 0x10, 0x80, 0xFF}) {
                SCOPED_TRACE(testing::Message() << "byte " << offset << " mask " << int(mask));
                if (offset == 16 && (mask & 0x10))
                    continue; // that asks for a password
                Bytes changed = archive;
                changed[offset] ^= mask;
                check(changed);
            }
        }
    }
}

} // namespace
