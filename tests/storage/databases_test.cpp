#include "platform/datetime.h"
#include "platform/storage/watch.h"
#include "tests/storage/storesupport.h"

namespace {

std::vector<CEOID> AllDatabases(DWORD type = 0) {
    std::vector<CEOID> found;
    const HANDLE enumeration = CeFindFirstDatabase(type);
    while (const CEOID oid = CeFindNextDatabase(enumeration))
        found.push_back(oid);
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_ITEMS);
    EXPECT_TRUE(CloseHandle(enumeration));
    return found;
}

TEST(Databases, AreFoundByNameIdentifierAndType) {
    TestDevice device;
    EXPECT_TRUE(AllDatabases().empty());
    const SORTORDERSPEC specs[] = {{Prop(1, CEVT_I4), CEDB_SORT_DESCENDING}, {Prop(2, CEVT_LPWSTR), 0}};
    const CEOID contacts = CeCreateDatabase(u"Kontakte \u00c4", 24, 2, specs);
    const CEOID system = CeCreateDatabase(u"\\System", 25, 0, nullptr);
    ASSERT_NE(contacts, 0U);
    EXPECT_GT(system, contacts);
    EXPECT_EQ(AllDatabases(), (std::vector<CEOID>{contacts, system}));
    EXPECT_EQ(AllDatabases(25), (std::vector<CEOID>{system}));
    device.Restart();
    const CEDBASEINFO info = InfoOf(contacts);
    EXPECT_EQ(std::u16string(info.szDbaseName), u"Kontakte \u00c4");
    EXPECT_EQ(info.dwDbaseType, 24U);
    EXPECT_EQ(info.wNumSortOrder, 2);
    EXPECT_EQ(std::memcmp(info.rgSortSpecs, specs, sizeof(specs)), 0);
    EXPECT_EQ(info.dwSize, 0U);
    EXPECT_EQ(FindDatabase(u"kontakte \u00e4"), contacts);
    EXPECT_EQ(FailureOf(OpenById(contacts, Prop(3, CEVT_I4))), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(FailureOf(FindDatabase(u"Kontakte")), ERROR_FILE_NOT_FOUND);
}

TEST(Databases, NamesHaveTheirLimits) {
    TestDevice device;
    const std::u16string longest(31, u'n');
    EXPECT_NE(CeCreateDatabase(longest.c_str(), 0, 0, nullptr), 0U);
    EXPECT_EQ(FailureOf(CeCreateDatabase(std::u16string(31, u'N').c_str(), 0, 0, nullptr)), ERROR_DUP_NAME);
    for (const std::u16string& name :
         {std::u16string(), std::u16string(32, u'n'), std::u16string(1000, u'n')})
        EXPECT_EQ(FailureOf(CeCreateDatabase(name.c_str(), 0, 0, nullptr)), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(FailureOf(CeCreateDatabase(u"five orders", 0, 5, std::vector<SORTORDERSPEC>(5).data())),
              ERROR_INVALID_PARAMETER);
    // Halves of a surrogate pair are names like any other, and different ones.
    EXPECT_NE(CeCreateDatabase(u"\xD800", 0, 0, nullptr), 0U);
    EXPECT_NE(CeCreateDatabase(u"\xDC00", 0, 0, nullptr), 0U);
}

TEST(Databases, AreRenamedRetypedAndReordered) {
    TestDevice device;
    const CEOID one = CeCreateDatabase(u"One", 1, 0, nullptr);
    CeCreateDatabase(u"Two", 1, 0, nullptr);
    HANDLE handle = OpenById(one);
    for (const LONG number : {5, 9, 7})
        Values().Number(1, number).Write(handle);
    CEDBASEINFO info = InfoOf(one);
    std::u16string_view(u"TWO").copy(info.szDbaseName, 4);
    EXPECT_EQ(FailureOf(CeSetDatabaseInfo(one, &info)), ERROR_DUP_NAME);
    std::u16string_view(u"ONE").copy(info.szDbaseName, 4);
    info.dwDbaseType = 3;
    EXPECT_TRUE(CeSetDatabaseInfo(one, &info)) << "a new spelling of the own name, while it is open";
    EXPECT_EQ(std::u16string(InfoOf(one).szDbaseName), u"ONE");
    EXPECT_EQ(InfoOf(one).dwDbaseType, 3U);
    info.wNumSortOrder = 1;
    info.rgSortSpecs[0] = {Prop(1, CEVT_I4), CEDB_SORT_DESCENDING};
    EXPECT_EQ(FailureOf(CeSetDatabaseInfo(one, &info)), ERROR_SHARING_VIOLATION);
    CloseHandle(handle);
    EXPECT_TRUE(CeSetDatabaseInfo(one, &info));
    handle = OpenById(one, Prop(1, CEVT_I4));
    EXPECT_EQ(ReadBack(handle)[0].val.lVal, 9);
    CloseHandle(handle);
    std::fill_n(info.szDbaseName, CEDB_MAXDBASENAMELEN, u'x');
    EXPECT_FALSE(CeSetDatabaseInfo(one, &info)) << "a name without an end";
    EXPECT_FALSE(CeSetDatabaseInfo(12345, &info));
}

TEST(Databases, AreNotDeletedWhileOpenAndLeaveNothingBehind) {
    TestDevice device;
    const SORTORDERSPEC spec = {Prop(1, CEVT_I4), 0};
    const CEOID database = CeCreateDatabase(u"Short-lived", 1, 1, &spec);
    const HANDLE first = OpenById(database);
    const HANDLE second = OpenById(database);
    const CEOID record = Values().Number(1, 1).Write(first);
    CloseHandle(first);
    EXPECT_EQ(FailureOf(CeDeleteDatabase(database)), ERROR_SHARING_VIOLATION);
    CloseHandle(second);
    EXPECT_TRUE(CeDeleteDatabase(database));
    CEOIDINFO info{};
    EXPECT_EQ(FailureOf(CeOidGetInfo(database, &info)), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(CeDeleteDatabase(database));
    EXPECT_EQ(OpenById(database), INVALID_HANDLE_VALUE);
    EXPECT_EQ(RowsLeft(), 0);
    EXPECT_GT(CeCreateDatabase(u"Short-lived", 1, 0, nullptr), record) << "identifiers are never used again";
}

TEST(Databases, TellSizeAndTimeOfTheLatestChange) {
    TestDevice device;
    const CEOID database = CeCreateDatabase(u"Dated", 1, 0, nullptr);
    const HANDLE handle = OpenById(database);
    FILETIME last = InfoOf(database).ftLastModified;
    const auto isNow = [&](DWORD size, WORD records) {
        const CEDBASEINFO info = InfoOf(database);
        const FILETIME before = std::exchange(last, info.ftLastModified);
        return CompareFileTime(&last, &before) > 0 && info.dwSize == size && info.wNumRecords == records;
    };
    const CEOID record = Values().Number(1, 1).Text(2, u"abc").Write(handle);
    EXPECT_TRUE(isNow(40, 1));
    Values().Remove(Prop(2, CEVT_LPWSTR)).Write(handle, record);
    EXPECT_TRUE(isNow(16, 1));
    EXPECT_TRUE(CeDeleteRecord(handle, record));
    EXPECT_TRUE(isNow(0, 0));
    CloseHandle(handle);
    STORE_INFORMATION information{};
    ASSERT_TRUE(GetStoreInformation(&information));
    EXPECT_GT(information.dwFreeSize, 0U);
    EXPECT_GT(information.dwStoreSize, information.dwFreeSize);
}

TEST(Databases, AreBroughtToTheDiskWhenACommandEnds) {
    TestDevice device;
    const auto isUnsynced = [] { return storage::TheStore()->IsUnsynced(); };
    const CEOID database = CeCreateDatabase(u"Durable", 1, 0, nullptr);
    EXPECT_FALSE(isUnsynced());
    const HANDLE first = OpenById(database);
    const HANDLE second = OpenById(database);
    Values().Number(1, 1).Write(first);
    CloseHandle(first);
    EXPECT_TRUE(isUnsynced()) << "not with each record, nor while another handle is open";
    CloseHandle(second);
    EXPECT_FALSE(isUnsynced());
    const HANDLE watching = OpenById(database, 0, reinterpret_cast<HWND>(&device));
    Values().Number(1, 1).Write(watching);
    EXPECT_TRUE(isUnsynced());
    PollStoreChanges();
    EXPECT_FALSE(isUnsynced());
    CloseHandle(watching);
}

TEST(Databases, AStatementMayRunWithinItself) {
    TestDevice device;
    CeCreateDatabase(u"One", 1, 0, nullptr);
    CeCreateDatabase(u"Two", 1, 0, nullptr);
    storage::Connection& connection = storage::TheStore()->connection;
    const char* const sql = "SELECT oid FROM databases ORDER BY oid";
    int pairs = 0;
    for (storage::Statement outer(connection, sql); outer.Row();)
        for (storage::Statement inner(connection, std::string(sql).c_str()); inner.Row(); ++pairs)
            EXPECT_GE(outer.Number(0), 1);
    EXPECT_EQ(pairs, 4);
}

} // namespace
