#include <numeric>

#include "tests/storage/storesupport.h"
#include "tests/support/sampledatabases.h"

namespace {

class Records : public testing::Test {
protected:
    void SetUp() override {
        database = CeCreateDatabase(u"Records", 1, 0, nullptr);
        handle = OpenById(database);
        ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    }
    void TearDown() override { CloseHandle(handle); }

    TestDevice device;
    CEOID database = 0;
    HANDLE handle = INVALID_HANDLE_VALUE;
};

TEST_F(Records, EveryTypeComesBackInTheFormThatArchivesCarry) {
    Values values;
    values.Add(Prop(1, CEVT_I2)).val.iVal = -2;
    values.Add(Prop(2, CEVT_UI2)).val.uiVal = 0xFFFE;
    values.Add(Prop(3, CEVT_I4)).val.lVal = -3;
    values.Add(Prop(4, CEVT_UI4)).val.ulVal = 0xFFFFFFFD;
    values.Add(Prop(5, CEVT_R8)).val.dblVal = 1.5;
    values.Add(Prop(6, CEVT_BOOL)).val.boolVal = TRUE;
    values.Add(Prop(7, CEVT_FILETIME)).val.filetime = {0x01020304, 0x05060708};
    values.Blob(8, "abc").Text(9, u"Zo\u00eb").Add(Prop(10, 0x1234)).val.filetime = {0x11111111, 0x22222222};
    values.list[0].wLenData = 77; // says nothing and is not kept
    std::memset(&values.list[0].val.uiVal + 1, 0x55, 6);
    const CEOID record = values.Write(handle);
    ASSERT_NE(record, 0U);
    ReadBack read(handle);
    ASSERT_EQ(read.record, record);
    ASSERT_EQ(read.count, 10);
    std::vector<BYTE> form(read.block, read.block + read.size);
    const DWORD address = ArenaAddress(read.block);
    for (const std::size_t pointer : {7 * 16 + 12, 8 * 16 + 8}) {
        DWORD word;
        std::memcpy(&word, &form[pointer], sizeof(word));
        word -= address;
        std::memcpy(&form[pointer], &word, sizeof(word));
    }
    const std::vector<BYTE> expected = {
        0x02, 0x00, 0x01, 0x00, 0,   0, 0,   0, 0xFE, 0xFF, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, //
        0x12, 0x00, 0x02, 0x00, 0,   0, 0,   0, 0xFE, 0xFF, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, //
        0x03, 0x00, 0x03, 0x00, 0,   0, 0,   0, 0xFD, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00, //
        0x13, 0x00, 0x04, 0x00, 0,   0, 0,   0, 0xFD, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00, //
        0x05, 0x00, 0x05, 0x00, 0,   0, 0,   0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF8, 0x3F, //
        0x0B, 0x00, 0x06, 0x00, 0,   0, 0,   0, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, //
        0x40, 0x00, 0x07, 0x00, 0,   0, 0,   0, 0x04, 0x03, 0x02, 0x01, 0x08, 0x07, 0x06, 0x05, //
        0x41, 0x00, 0x08, 0x00, 0,   0, 0,   0, 0x03, 0x00, 0x00, 0x00, 0xA0, 0x00, 0x00, 0x00, //
        0x1F, 0x00, 0x09, 0x00, 0,   0, 0,   0, 0xA4, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, //
        0x34, 0x12, 0x0A, 0x00, 0,   0, 0,   0, 0x11, 0x11, 0x11, 0x11, 0x22, 0x22, 0x22, 0x22, //
        'a',  'b',  'c',  0x00, 'Z', 0, 'o', 0, 0xEB, 0x00, 0x00, 0x00};
    EXPECT_EQ(form, expected);
    EXPECT_EQ(InfoOf(database).dwSize, expected.size());
}

TEST_F(Records, AbsentStringsBecomeEmptyAndSharedIdentifiersStayApart) {
    Values values;
    values.Add(Prop(1, CEVT_LPWSTR));
    values.Text(2, u"").Blob(3, "").Text(4, u"x").Number(4, 9);
    const CEOID record = values.Write(handle);
    const auto isAsWritten = [&] {
        ReadBack read(handle);
        return read.record == record && read.count == 5 && read.size == 5 * 16U + 2 + 2 + 4 &&
               read[0].val.lpwstr.Address() == ArenaAddress(read.block) + 80 && read[0].val.lpwstr[0] == 0 &&
               read[1].val.lpwstr[0] == 0 && read[2].val.blob.dwCount == 0 &&
               std::u16string(read[3].val.lpwstr) == u"x" && read[4].val.lVal == 9;
    };
    EXPECT_TRUE(isAsWritten());
    CloseHandle(handle);
    // Earlier versions kept an absent string as offset 0.
    ASSERT_EQ(
        storage::TheStore()->connection.Execute(
            "UPDATE records SET data = CAST(substr(data, 1, 8) || x'00000000' || substr(data, 13, 12) || "
            "x'50000000' || substr(data, 29, 28) || x'52000000' || substr(data, 61, 20) || "
            "x'000078000000' AS BLOB)"),
        SQLITE_OK);
    device.Restart();
    handle = OpenById(database);
    {
        ReadBack old(handle);
        ASSERT_EQ(old.count, 5);
        EXPECT_EQ(old[0].val.lpwstr.Address(), 0U);
        EXPECT_EQ(std::u16string(old[3].val.lpwstr), u"x");
    }
    EXPECT_EQ(Values().Number(4, 9).Write(handle, record), record);
    EXPECT_TRUE(isAsWritten()) << "written the new way";
}

TEST_F(Records, AWriteReplacesAppendsAndRemovesProperties) {
    const CEPROPID one = Prop(1, CEVT_I4), two = Prop(2, CEVT_LPWSTR), four = Prop(4, CEVT_I4);
    const CEOID record = Values().Number(1, 1).Text(2, u"two").Number(3, 3).Write(handle);
    ASSERT_EQ(Values().Text(2, u"second").Number(4, 4).Remove(one).Write(handle, record), record);
    EXPECT_EQ(Contents(u"Records"), u"2=second 3=3 4=4\n");
    EXPECT_EQ(Values().Remove(Prop(9, CEVT_I4)).Write(handle, record), record);
    ASSERT_EQ(Values().Remove(two).Remove(Prop(3, CEVT_I4)).Remove(four).Write(handle, record), record);
    EXPECT_EQ(Contents(u"Records"), u"\n");
    EXPECT_EQ(InfoOf(database).dwSize, 0U);
}

TEST_F(Records, LongRecordsAndLongValuesAreKept) {
    Values many;
    for (WORD number = 0; number < 1000; ++number)
        many.Number(number, number);
    const CEOID record = many.Write(handle);
    ASSERT_NE(record, 0U);
    // Every second one again, so that the same identifiers meet in one write.
    for (WORD number = 0; number < 1000; number += 2)
        many.Number(number, -number);
    many.Text(2000, std::u16string(30000, u'x')).Blob(2001, std::string(300001, 'y'));
    many.Text(2002, u"\xD83D\xDE00 \xD800");
    ASSERT_EQ(many.Write(handle, record), record);
    ReadBack read(handle);
    ASSERT_EQ(read.count, 1003);
    EXPECT_EQ(read[998].val.lVal, -998);
    EXPECT_EQ(read[999].val.lVal, 999);
    EXPECT_EQ(std::u16string(read[1000].val.lpwstr), std::u16string(30000, u'x'));
    EXPECT_EQ(read[1001].val.blob.lpb[300000], 'y');
    EXPECT_EQ(std::u16string(read[1002].val.lpwstr), u"\xD83D\xDE00 \xD800");
}

TEST_F(Records, ReadingGrowsABlockOnlyAsAllowed) {
    Values().Number(1, 1).Write(handle);
    Values().Text(1, std::u16string(100, u'a')).Write(handle);
    BYTE* block = nullptr;
    DWORD size = 0;
    const auto read = [&](DWORD flags) {
        WORD count = 0;
        return CeReadRecordProps(handle, flags, &count, nullptr, &block, &size);
    };
    ASSERT_NE(read(CEDB_ALLOWREALLOC), 0U);
    EXPECT_EQ(size, 16U);
    Seek(handle, CEDB_SEEK_CURRENT, 1);
    EXPECT_EQ(FailureOf(read(0)), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(size, 218U);
    ASSERT_NE(read(CEDB_ALLOWREALLOC), 0U);
    EXPECT_GE(LocalSize(block), 218U);
    // The larger block serves a smaller record, whose own size is told.
    Seek(handle, CEDB_SEEK_BEGINNING);
    ASSERT_NE(read(CEDB_ALLOWREALLOC), 0U);
    EXPECT_EQ(size, 16U);
    LocalFree(block);
}

TEST_F(Records, BadPointersAreRefusedAndNothingChanges) {
    const CEOID record = Values().Number(1, 1).Write(handle);
    const CEDBASEINFO before = InfoOf(database);
    WCHAR* unended = static_cast<WCHAR*>(LocalAlloc(LMEM_FIXED, 8));
    std::fill_n(unended, 4, u'x');
    void* freed = LocalAlloc(LMEM_ZEROINIT, 8);
    LocalFree(freed);
    for (const DWORD address : {DWORD{1}, ArenaAddress(unended), ArenaAddress(freed),
                                ArenaAddress(unended) + 8, DWORD{0x30000000}, DWORD{0xFFFFFFFE}}) {
        Values values;
        values.Number(1, 2).Add(Prop(2, CEVT_LPWSTR)).val.lpwstr = DevicePointer<WCHAR>::FromAddress(address);
        EXPECT_EQ(FailureOf(values.Write(handle, record)), ERROR_INVALID_PARAMETER);
        EXPECT_EQ(values.Write(handle), 0U);
    }
    for (const auto& [count, address] : std::vector<std::pair<DWORD, DWORD>>{
             {9, ArenaAddress(unended)}, {5, 0}, {0xFFFFFFFF, ArenaAddress(unended)}, {1, 0xFFFFFFFF}}) {
        Values values;
        CEBLOB& blob = values.Add(Prop(2, CEVT_BLOB)).val.blob;
        blob.dwCount = count;
        blob.lpb = DevicePointer<BYTE>::FromAddress(address);
        EXPECT_EQ(FailureOf(values.Write(handle)), ERROR_INVALID_PARAMETER);
    }
    LocalFree(unended);
    // Offset 0 of a record that came from elsewhere, and others among its entries.
    auto* entries = static_cast<CEPROPVAL*>(LocalAlloc(LMEM_ZEROINIT, 2 * sizeof(CEPROPVAL)));
    for (const auto& [type, offset] : std::vector<std::pair<WORD, DWORD>>{
             {CEVT_LPWSTR, 0}, {CEVT_LPWSTR, 30}, {CEVT_BLOB, 0}, {CEVT_BLOB, 31}}) {
        entries[1].propid = Prop(1, type);
        const DWORD address = ArenaAddress(entries) + offset;
        entries[1].val.blob = {type == CEVT_BLOB ? 1 : address, DevicePointer<BYTE>::FromAddress(address)};
        entries[0] = {Prop(2, CEVT_I4), 0, 0, {}};
        EXPECT_EQ(FailureOf(CeWriteRecordProps(handle, 0, 2, entries)), ERROR_INVALID_PARAMETER) << offset;
    }
    LocalFree(entries);
    EXPECT_EQ(std::memcmp(&before, std::vector<CEDBASEINFO>{InfoOf(database)}.data(), sizeof(before)), 0);
    EXPECT_EQ(ReadBack(handle)[0].val.lVal, 1);
}

TEST_F(Records, WrongHandlesAndRecordsAreRefused) {
    const HANDLE otherHandle = OpenById(CeCreateDatabase(u"Other", 1, 0, nullptr));
    const CEOID foreign = Values().Number(1, 1).Write(otherHandle);
    EXPECT_EQ(FailureOf(Values().Number(1, 1).Write(handle, foreign)), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(FailureOf(CeDeleteRecord(handle, foreign)), ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(CloseHandle(otherHandle));
    EXPECT_EQ(FailureOf(CloseHandle(otherHandle)), ERROR_INVALID_HANDLE);
    EXPECT_EQ(FailureOf(CeSeekDatabase(otherHandle, CEDB_SEEK_BEGINNING, 0, nullptr)),
              ERROR_INVALID_PARAMETER);
}

TEST_F(Records, ADatabaseTakes65535Records) {
    // The count alone decides, so the store is told of records that need not be written one by one.
    Values().Number(1, 1).Write(handle);
    CloseHandle(handle);
    storage::TheStore()->connection.Execute("UPDATE databases SET records = 65534");
    device.Restart();
    handle = OpenById(database);
    EXPECT_NE(Values().Number(1, 2).Write(handle), 0U);
    EXPECT_EQ(FailureOf(Values().Number(1, 3).Write(handle)), ERROR_DISK_FULL);
    EXPECT_EQ(InfoOf(database).wNumRecords, 65535);
}

} // namespace
