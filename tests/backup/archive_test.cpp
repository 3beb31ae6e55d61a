// Archives as they are written, against bytes written down by hand.
#include <cstring>
#include <sys/syscall.h>
#include <unistd.h>

#include "backup/backup.h"
#include "backup/compressor.h"
#include "backup/restore.h"
#include "platform/datetime.h"
#include "resources/resource.h"
#include "tests/backup/backupfixture.h"
#include "tests/support/resourcelimit.h"

namespace {

bool diskFails = false;

} // namespace

// In place of the C library's.
extern "C" int fsync(int descriptor) {
    errno = EIO;
    return diskFails ? -1 : static_cast<int>(syscall(SYS_fsync, descriptor));
}

namespace {

constexpr const WCHAR* kPath = u"\\all.bkp";

class ArchiveTest : public BackupTest {
protected:
    // An engine that writes plain archives.
    struct PlainEngine : BackupEngine {
        PlainEngine() { compress = false; }
    };

    // The times in a database block are those of the test's run: they are looked at, then put back to those
    // of the bytes written by hand.
    static void TakeTimes(const Bytes& pattern, Bytes* block) {
        SYSTEMTIME now, stored;
        GetLocalTime(&now);
        std::memcpy(&stored, block->data() + 124, sizeof stored);
        EXPECT_EQ(now.wYear, stored.wYear);
        std::copy_n(pattern.begin() + 84, 8, block->begin() + 84);
        std::copy_n(pattern.begin() + 124, 16, block->begin() + 124);
    }
};

TEST_F(ArchiveTest, PlainArchiveHasTheDocumentedBytes) {
    MakeSample();
    PlainEngine engine;
    ASSERT_TRUE(BackUp(engine, kPath, {u"Ab"}));
    const Bytes expected = FromHex(kPlainArchive);
    Bytes written = FileBytes(kPath);
    ASSERT_EQ(written.size(), expected.size());
    Bytes block = Slice(written, kPlainBlock, 144);
    TakeTimes(Slice(expected, kPlainBlock, 144), &block);
    std::copy(block.begin(), block.end(), written.begin() + kPlainBlock);
    EXPECT_EQ(written, expected);
}

TEST_F(ArchiveTest, CompressedArchiveWithPasswordHasTheDocumentedBytes) {
    MakeSample();
    BackupEngine engine;
    engine.password = {u"open"};
    ScramblePassword(&engine.password);
    engine.passwordFlag = true;
    ASSERT_TRUE(BackUp(engine, kPath, {u"Ab"}));
    const Bytes expected = FromHex(kCompressedArchive);
    const Bytes written = FileBytes(kPath);
    ASSERT_GT(written.size(), 72u);
    EXPECT_EQ(Slice(written, 0, 64), Slice(expected, 0, 64));
    EXPECT_EQ(NumberAt(written, 64), written.size()); // the next entry
    const DWORD blockLength = NumberAt(written, 68);
    EXPECT_EQ(Slice(written, 72 + blockLength, SIZE_MAX), Slice(expected, 72 + 59, SIZE_MAX));

    Compressor codec;
    ASSERT_TRUE(codec.AllocateTables());
    const Bytes stream = Slice(written, 72, blockLength);
    ASSERT_TRUE(codec.Expand(stream.data(), blockLength));
    Bytes block(codec.Output(), codec.Output() + codec.OutputLength());
    ASSERT_EQ(block.size(), 144u);
    Bytes plain = Slice(FromHex(kPlainArchive), kPlainBlock, 144);
    TakeTimes(plain, &block);
    PutNumber(&plain, 140, 0);
    EXPECT_EQ(block, plain);
}

TEST_F(ArchiveTest, EmptyArchiveAndEmptyDatabase) {
    BackupEngine none;
    ASSERT_TRUE(BackUp(none, kPath, {}));
    EXPECT_EQ(FileBytes(kPath).size(), 24u);

    CEDBASEINFO info = {};
    DbHandle(nullptr).Create(u"Nothing", info);
    MakeSample();
    PlainEngine engine;
    ASSERT_TRUE(BackUp(engine, kPath, {u"Nothing", u"Ab"}));
    const Bytes written = FileBytes(kPath);
    EXPECT_EQ(NumberAt(written, 8), 2u);
    EXPECT_EQ(NumberAt(written, 24 + 140), 24u + 144); // the second entry follows the first one's block
    EXPECT_EQ(written.size(), 224u + 144);
}

TEST_F(ArchiveTest, PasswordsAreScrambledInPlaceAndEndInTheirBlock) {
    PasswordBlock password = {};
    std::fill(std::begin(password.text), std::end(password.text), u'x'); // no end at all
    ScramblePassword(&password);
    EXPECT_EQ(password.text[18], u'x' ^ 0x5C3A);
    EXPECT_EQ(password.text[19], 0);
    ScramblePassword(&password);
    EXPECT_EQ(std::u16string(password.text), std::u16string(19, u'x'));

    PasswordBlock cut = {{u'a', 0x5C3A, u'b', u'c'}};
    ScramblePassword(&cut);
    EXPECT_EQ(cut.text[0], u'a' ^ 0x5C3A);
    EXPECT_EQ(std::u16string(cut.text + 1, 19), std::u16string(19, u'\0'));
}

// A reader goes by the block's count, so an unreadable record must not be counted.
TEST_F(ArchiveTest, UnreadableRecordIsLeftOutOfTheCount) {
    for (const bool compress : {false, true}) {
        SCOPED_TRACE(compress);
        const std::u16string name = compress ? u"Packed" : u"Plain";
        MakeRecords(name.c_str(), 5);
        storage::TheStore()->connection.Execute(
            "UPDATE records SET data = x'00' WHERE id = (SELECT max(id) - 2 FROM records)");
        device.Restart();
        BackupEngine engine;
        engine.compress = compress;
        ExpectMessage(u"Couldn't read record in \"" + name + u"\" database: Unknown error");
        ASSERT_TRUE(BackUp(engine, kPath, {name.c_str()}));
        EXPECT_FALSE(engine.complete);
        // Written again with one record less, the entry has nothing of its first form behind it.
        const Bytes archive = FileBytes(kPath);
        EXPECT_EQ(NumberAt(archive, compress ? 24 : 24 + 140), archive.size());
        DeleteAllBut(u"");
        ASSERT_TRUE(RestoreCommand(nullptr, kPath));
        EXPECT_EQ(Contents(name.c_str()), u"1=0 2= 3=<Binary Data>\n1=1 2=x 3=<Binary Data>\n"
                                          u"1=3 2=xxx 3=<Binary Data>\n1=4 2=xxxx 3=<Binary Data>\n");
    }
}

// Only the end of the records ends a walk well.
TEST_F(ArchiveTest, StoreThatFailsInTheMiddleFailsTheEntry) {
    MakeRecords(u"Many", 200);
    BackupEngine before;
    before.generateScript = true;
    ASSERT_TRUE(BackUp(before, kPath, {u"Many"}));
    // A number that is too large for the store's own arithmetic, in place of the data of later records.
    device.RunSql(
        "ALTER TABLE records RENAME TO kept; CREATE VIEW records AS SELECT id, properties, CASE WHEN id < "
        "(SELECT min(id) + 150 FROM kept) THEN data ELSE abs(-9223372036854775808) END AS data FROM kept");
    ExpectMessage(u"Couldn't find record in \"Many\" database: Unknown error");
    BackupEngine engine;
    EXPECT_FALSE(BackUp(engine, kPath, {u"Many"}));
    EXPECT_FALSE(engine.complete);
    settings.interactive = 1; // which would show the success
    ExpectMessage(u"File \"\\all.bkp\" already exists; overwrite?", IDYES);
    ExpectMessage(u"Couldn't find record in \"Many\" database: Unknown error");
    EXPECT_FALSE(RunAutobackup(nullptr));
    EXPECT_FALSE(FileExists(kPath));
}

TEST_F(ArchiveTest, ProgressIsOnTheScreenBeforeALargeRecord) {
    std::vector<std::vector<SampleValue>> records(20); // the last lines of small ones wait for their turn
    records.push_back({TextValue(1, std::u16string(1 << 20, u'x'))});
    MakeDatabase(u"Large", records);
    settings.noProgress = 0;
    PlainEngine engine;
    ASSERT_TRUE(engine.BeginBackup(nullptr, false, kPath));
    EXPECT_TRUE(engine.WriteDatabase(u"Large"));
    WCHAR line[MAX_PATH];
    GetDlgItemTextW(engine.progress.dialog->window, IDC_PROGRESS_TEXT, line, MAX_PATH);
    EXPECT_EQ(std::u16string(line), u"Storing Database \"Large\"\nRecord 21 of 21");
    EXPECT_TRUE(engine.Finish());
}

TEST_F(ArchiveTest, StopsBeforeFourGibibytes) {
    MakeSample();
    for (const DWORD room : {143u, 144u, 199u}) {
        SCOPED_TRACE(room);
        PlainEngine engine;
        ASSERT_TRUE(engine.BeginBackup(nullptr, false, kPath));
        engine.entryOffset = 0xFFFFFFFF - room;
        ExpectMessage(u"Unable to write the file. Possibly not enough storage space.");
        EXPECT_FALSE(engine.WriteDatabase(u"Ab"));
        EXPECT_EQ(engine.entryOffset, 0xFFFFFFFF - room);
        EXPECT_TRUE(engine.Finish());
        // Without a block there is no entry; with one it counts although it is cut.
        EXPECT_EQ(engine.header.databaseCount, room < 144 ? 0u : 1u);
    }
    PlainEngine engine;
    ASSERT_TRUE(engine.BeginBackup(nullptr, false, kPath));
    engine.entryOffset = 0xFFFFFFFF - 200;
    EXPECT_TRUE(engine.WriteDatabase(u"Ab"));
    EXPECT_EQ(engine.entryOffset, 0xFFFFFFFF);
}

// What was written before the disk was full can be restored; the entry that was cut cannot.
TEST_F(ArchiveTest, DiskThatFillsUpPartWay) {
    MakeSample();
    MakeRecords(u"Many", 200);
    PlainEngine engine;
    ASSERT_TRUE(engine.BeginBackup(nullptr, false, kPath));
    EXPECT_TRUE(engine.WriteDatabase(u"Ab"));
    {
        const ResourceLimit smallFiles(RLIMIT_FSIZE, 100'000);
        ExpectMessage(u"Unable to write the file. Possibly not enough storage space.");
        EXPECT_FALSE(engine.WriteDatabase(u"Many"));
        EXPECT_TRUE(engine.Finish());
    }

    BackupEngine none; // which has no room even for its header
    ExpectMessage(u"Unable to write the file. Possibly not enough storage space.");
    EXPECT_FALSE(none.BeginBackup(nullptr, false, u"\\Storage Card\\dev\\full"));
    EXPECT_EQ(none.file, INVALID_HANDLE_VALUE);
    settings.unattended = 1;
    EXPECT_FALSE(none.BeginBackup(nullptr, false, u"\\Storage Card\\dev\\full"));
    settings.unattended = 0;

    DeleteAllBut(u"");
    ExpectMessage(u"Unable to restore \"Many\" database from the archive. Archive file may be corrupted.");
    EXPECT_TRUE(RestoreCommand(nullptr, kPath));
    EXPECT_EQ(DatabaseNames(), std::vector<std::u16string>{u"Ab"});
}

TEST_F(ArchiveTest, DiskThatFailsAtTheEndLeavesTheOlderArchive) {
    MakeSample();
    PlainEngine first;
    ASSERT_TRUE(BackUp(first, kPath, {u"Ab"}));
    const Bytes older = FileBytes(kPath);
    PlainEngine second;
    ASSERT_TRUE(second.BeginBackup(nullptr, false, kPath));
    EXPECT_TRUE(second.WriteDatabase(u"Ab"));
    diskFails = true;
    ExpectMessage(u"Unable to write the file. Possibly not enough storage space.");
    EXPECT_FALSE(second.Finish());
    diskFails = false;
    EXPECT_EQ(FileBytes(FileExists(u"\\all.bkp~") ? u"\\all.bkp~" : kPath), older);
}

} // namespace
