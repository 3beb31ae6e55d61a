#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "store/dbhandle.h"
#include "tests/storage/storesupport.h"
#include "tests/support/quiettest.h"

namespace {

class DbHandleTest : public QuietTest {
protected:
    // A database of that name, open.
    static void Make(DbHandle& database, const WCHAR* name) {
        const CEDBASEINFO info = {};
        ASSERT_NE(database.Create(name, info), INVALID_HANDLE_VALUE);
    }
};

// Writes a record in storage form, from a block that has room for a longer one, too.
CEOID WriteStored(DbHandle& database, WORD properties, const std::vector<BYTE>& bytes) {
    RecordBuffer buffer;
    buffer.propCount = properties;
    buffer.size = static_cast<DWORD>(bytes.size());
    buffer.data = static_cast<BYTE*>(LocalAlloc(LMEM_ZEROINIT, 2 * bytes.size()));
    std::memcpy(buffer.data, bytes.data(), bytes.size());
    return database.WriteRecordFromStorage(0, &buffer);
}

// A text "Hi" (property 1), an empty text (2), a blob of 3 bytes (3) and an empty blob (4).
const std::vector<BYTE> kRecord = {31,  0, 1,   0, 0, 0, 0,    0,    64,  0, 0, 0, 0,  0, 0, 0, //
                                   31,  0, 2,   0, 0, 0, 0,    0,    68,  0, 0, 0, 0,  0, 0, 0, //
                                   65,  0, 3,   0, 0, 0, 0,    0,    3,   0, 0, 0, 70, 0, 0, 0, //
                                   65,  0, 4,   0, 0, 0, 0,    0,    0,   0, 0, 0, 0,  0, 0, 0, //
                                   'H', 0, 'i', 0, 0, 0, 0xAA, 0xBB, 0xCC};

constexpr std::size_t kTextOffset = 8; // indexes into kRecord, of what the tests spoil
constexpr std::size_t kEmptyOffset = 16 + 8;
constexpr std::size_t kBlobCount = 2 * 16 + 8;
constexpr std::size_t kBlobOffset = 2 * 16 + 12;

} // namespace

TEST_F(DbHandleTest, StorageFormSurvivesTheStoreByteForByte) {
    DbHandle database(nullptr);
    Make(database, u"Bytes");
    ASSERT_NE(WriteStored(database, 4, kRecord), 0u);

    RecordBuffer read;
    DWORD index = 9;
    ASSERT_TRUE(database.SeekFirst(&index));
    ASSERT_NE(database.ReadRecordForStorage(&read), 0u);
    EXPECT_EQ(read.propCount, 4);
    ASSERT_GE(read.size, 73u);
    // Offsets may lie elsewhere in another block; the values must be where they say.
    const CEPROPVAL* properties = read.Properties();
    const DWORD text = properties[0].val.lpwstr.Address();
    ASSERT_LE(text + 6, read.size);
    EXPECT_EQ(std::memcmp(read.data + text, u"Hi", 6), 0);
    const DWORD empty = properties[1].val.lpwstr.Address();
    ASSERT_LE(empty + 2, read.size);
    EXPECT_EQ(std::memcmp(read.data + empty, u"", 2), 0);
    const DWORD blob = properties[2].val.blob.lpb.Address();
    ASSERT_LE(blob + 3, read.size);
    EXPECT_EQ(std::memcmp(read.data + blob, "\xAA\xBB\xCC", 3), 0);
    EXPECT_EQ(properties[3].val.blob.dwCount, 0u);
}

TEST_F(DbHandleTest, AnAbsentTextOfAnOlderDeviceIsStoredAsAnEmptyOne) {
    DbHandle database(nullptr);
    Make(database, u"Old");
    ASSERT_NE(WriteStored(database, 4, kRecord), 0u);
    std::string row = "UPDATE records SET data = x'";
    for (std::size_t at = 0; at < kRecord.size(); ++at) {
        const BYTE byte = at == kEmptyOffset ? 0 : kRecord[at];
        row += std::string(1, "0123456789ABCDEF"[byte / 16]) + "0123456789ABCDEF"[byte % 16];
    }
    ASSERT_EQ(storage::TheStore()->connection.Execute((row + "'").c_str()), 0);

    RecordBuffer read;
    ASSERT_NE(database.ReadRecord(&read), 0u);
    EXPECT_EQ(read.Properties()[1].val.lpwstr.Address(), 0u);
    const DWORD size = read.size;
    ASSERT_NE(database.ReadRecordForStorage(&read), 0u);
    const DWORD text = read.Properties()[1].val.lpwstr.Address();
    EXPECT_GE(text, size);
    ASSERT_LE(text + 2, read.size);
    EXPECT_EQ(std::memcmp(read.data + text, u"", 2), 0);
    EXPECT_EQ(text % 2, 0u);
    // The block can be written again, and read into.
    EXPECT_NE(database.WriteRecordFromStorage(0, &read), 0u);
    EXPECT_NE(database.ReadRecord(&read), 0u);
    EXPECT_EQ(read.size, size);
}

TEST_F(DbHandleTest, RefusesStoredRecordsThatDoNotFitTheirBlock) {
    const std::u16string refused =
        u"Couldn't create a new record in \"Spoiled\" database: The parameter is incorrect";
    // Past the end; into the entries, whose first byte is no exception; odd; a blob that is longer than what
    // is left; one that starts behind the end; more entries than bytes.
    const struct {
        std::size_t at;
        BYTE value;
        WORD properties;
    } cases[] = {{kTextOffset, 200, 4}, {kTextOffset, 16, 4}, {kTextOffset, 0, 4}, {kTextOffset, 65, 4},
                 {kBlobCount, 4, 4},    {kBlobOffset, 99, 4}, {0, 31, 5},          {0, 31, 0xFFFF}};
    DbHandle database(nullptr);
    Make(database, u"Spoiled");
    for (const auto& spoiled : cases) {
        std::vector<BYTE> bytes = kRecord;
        bytes[spoiled.at] = spoiled.value;
        ExpectMessage(refused);
        EXPECT_EQ(WriteStored(database, spoiled.properties, bytes), 0u);
    }
    std::vector<BYTE> unterminated = kRecord;
    unterminated[kTextOffset] = 68; // "\0" is the last whole character: take it away
    unterminated[68] = unterminated[69] = unterminated[70] = unterminated[71] = 1;
    ExpectMessage(refused);
    EXPECT_EQ(WriteStored(database, 4, unterminated), 0u);
    CEDBASEINFO info;
    ASSERT_TRUE(database.GetInfo(&info));
    EXPECT_EQ(info.wNumRecords, 0);
}

TEST_F(DbHandleTest, ReportsInItsOwnWordsUnlessItIsToBeQuiet) {
    DbHandle database(nullptr);
    const std::u16string notFound = u": The system cannot find the file specified";
    ExpectMessage(u"Couldn't open \"Nowhere\" database" + notFound);
    EXPECT_EQ(database.Open(u"Nowhere", 0, 0), INVALID_HANDLE_VALUE);
    ExpectMessage(u"Couldn't delete \"Nowhere\" database" + notFound);
    EXPECT_FALSE(database.DeleteDatabase(u"Nowhere"));
    Make(database, u"Here");
    ExpectMessage(
        u"Couldn't delete \"Here\" database: The process cannot access the file because it is being "
        u"used by another process");
    EXPECT_FALSE(database.DeleteDatabase(u"Here"));              // open, and by this very handle
    ExpectMessage(u"Unable to delete the current record: Here"); // its one argument is the name
    EXPECT_FALSE(database.DeleteRecord(12345));
    DWORD index = 0;
    ExpectMessage(u"Couldn't find record in \"Here\" database: No more data is available");
    EXPECT_FALSE(database.SeekNext(&index));
    SetLastError(ERROR_KEY_DELETED);
    ExpectMessage(
        u"Reason:x. Illegal operation attempted on a Registry key which has been marked for deletion");
    database.ReportError(u"Reason:%s.%s", u"x");
    database.oid += 1; // nobody's
    CEDBASEINFO info;
    info.wNumRecords = 7;
    ExpectMessage(u"Couldn't update parameters of 'Here' database" + notFound);
    EXPECT_FALSE(database.GetInfo(&info));
    EXPECT_EQ(info.wNumRecords, 0);
    {
        const QuietReports quiet(database);
        EXPECT_EQ(database.Open(u"Nowhere", 0, 0), INVALID_HANDLE_VALUE);
    }
    EXPECT_EQ(u": " + std::u16string(database.errorText), notFound);
    ExpectMessage(u"Couldn't open \"Nowhere\" database" + notFound);
    EXPECT_EQ(database.Open(u"Nowhere", 0, 0), INVALID_HANDLE_VALUE);
    settings.unattended = 1;
    EXPECT_EQ(database.Open(u"Nowhere", 0, 0), INVALID_HANDLE_VALUE);
}

TEST_F(DbHandleTest, AWalkThatBreaksOffIsNotAtItsEnd) {
    DbHandle database(nullptr);
    Make(database, u"Long");
    for (int record = 0; record < 2; ++record) {
        Values blob;
        blob.Blob(1, std::string(100000, 'b')); // too long to be read ahead
        EXPECT_NE(database.WriteProperty(0, blob.list.data()), 0u);
    }
    DWORD index = 0;
    EXPECT_TRUE(WalkToFirst(database, &index));
    device.BreakTable("records");
    ExpectMessage(u"Couldn't find record in \"Long\" database: Unknown error");
    EXPECT_FALSE(WalkToNext(database, &index));
    EXPECT_EQ(GetLastError(), ERROR_FILE_CORRUPT) << "the box has not hidden it from the caller";
    EXPECT_FALSE(database.WalkEnded());
    device.MendTable("records");
    EXPECT_TRUE(WalkToNext(database, &index));
    EXPECT_FALSE(WalkToNext(database, &index));
    EXPECT_TRUE(database.WalkEnded());
    database.Close();
    EXPECT_FALSE(WalkToFirst(database, &index)); // and without a word
    EXPECT_FALSE(database.WalkEnded());
}
