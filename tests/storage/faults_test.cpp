// Devices that are damaged, foreign, full, or cannot be written.
#include <filesystem>
#include <sched.h>
#include <sqlite3.h>
#include <sys/mount.h>
#include <unistd.h>

#include "tests/platform/otherprocess.h"
#include "tests/storage/storesupport.h"

namespace {

void RunSql(const std::string& path, const std::string& sql) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database);
    sqlite3_close(database);
}

void ExpectUnusable(DWORD error) {
    EXPECT_EQ(FailureOf(CeFindFirstDatabase(0)), error);
    EXPECT_EQ(FailureOf(CeCreateDatabase(u"New", 1, 0, nullptr)), error);
    EXPECT_EQ(FailureOf(FindDatabase(u"New")), error);
}

TEST(Faults, AFileThatIsNoStoreIsLeftAlone) {
    TestDevice device;
    const std::string path = device.folder + "/objectstore.db";
    for (const std::string& garbage : {std::string("not a store"), std::string(100000, 'g'),
                                       std::string("SQLite format 3\0", 16) + std::string(5000, '\xA5')}) {
        WriteHostFile(path, garbage);
        ExpectUnusable(ERROR_FILE_CORRUPT);
        device.Restart();
        EXPECT_EQ(HostFile(path), garbage);
    }
    std::filesystem::remove(path);
    RunSql(path, "CREATE TABLE somebody_elses (a); INSERT INTO somebody_elses VALUES (1)");
    const std::string foreign = HostFile(path);
    ExpectUnusable(ERROR_FILE_CORRUPT);
    device.Restart();
    EXPECT_EQ(HostFile(path), foreign);
    WriteHostFile(path, "");
    EXPECT_NE(CeCreateDatabase(u"On an empty file", 1, 0, nullptr), 0U);
}

TEST(Faults, AStoreOfANewerVersionIsLeftAlone) {
    TestDevice device;
    const std::string path = device.folder + "/objectstore.db";
    CeCreateDatabase(u"Kept", 1, 0, nullptr);
    device.Restart();
    RunSql(path, "PRAGMA user_version = 2");
    ExpectUnusable(ERROR_REVISION_MISMATCH);
    device.Restart();
    RunSql(path, "PRAGMA user_version = 1");
    EXPECT_TRUE(CeOidGetInfo(1, std::vector<CEOIDINFO>(1).data()));
}

TEST(Faults, DamagedRowsFailAndHarmNothingElse) {
    TestDevice device;
    const std::string path = device.folder + "/objectstore.db";
    const CEOID database = CeCreateDatabase(u"Damaged", 1, 0, nullptr);
    HANDLE handle = OpenById(database);
    const char* const damages[] = {
        "properties = 4", "properties = 65535", "data = substr(data, 1, 20)",
        "data = substr(data, 1, length(data) - 6)",
        // The text's offset.
        "data = CAST(substr(data, 1, 24) || x'0100FFFF' || substr(data, 29) AS BLOB)",
        "data = CAST(substr(data, 1, 24) || x'08000000' || substr(data, 29) AS BLOB)",
        // The blob's length.
        "data = CAST(substr(data, 1, 40) || x'FFFFFFFF' || substr(data, 45) AS BLOB)", "data = 'words'",
        "data = data", // this one stays whole
    };
    std::vector<CEOID> records;
    for (const char* damage : damages) {
        records.push_back(Values().Number(1, 1).Text(2, u"text").Blob(3, "blob").Write(handle));
        RunSql(path, std::string("UPDATE records SET ") + damage +
                         " WHERE id & 0xFFFFFFFF = " + std::to_string(records.back()));
    }
    CloseHandle(handle);
    device.Restart();
    handle = OpenById(database);
    for (std::size_t at = 0; at < records.size(); ++at) {
        SCOPED_TRACE(damages[at]);
        const bool whole = at == records.size() - 1;
        EXPECT_EQ(Seek(handle, CEDB_SEEK_CURRENT, at == 0 ? 0 : 1), Place(records[at], at));
        EXPECT_EQ(FailureOf(ReadBack(handle).record), whole ? ERROR_SUCCESS : ERROR_FILE_CORRUPT);
        EXPECT_EQ(Values().Number(1, 1).Write(handle, records[at]), whole ? records[at] : 0);
    }
    for (const CEOID record : records)
        EXPECT_TRUE(CeDeleteRecord(handle, record));
    CloseHandle(handle);
    device.Restart();
    RunSql(path,
           "UPDATE databases SET name = printf('%.*c', 500, 'n'), sortorders = zeroblob(1000), records = -7, "
           "bytes = -7, version = 9223372036854775807, deletions = 9223372036854775807");
    EXPECT_EQ(InfoOf(database).szDbaseName[31], 0);
    EXPECT_EQ(InfoOf(database).wNumSortOrder, 4);
    handle = OpenById(database);
    EXPECT_TRUE(CeDeleteRecord(handle, Values().Number(1, 1).Write(handle))) << "counted on from the utmost";
    EXPECT_EQ(InfoOf(database).dwSize, 0U);
    RunSql(path, "DROP TABLE records");
    EXPECT_EQ(FailureOf(Values().Number(1, 1).Write(handle)), ERROR_FILE_CORRUPT);
    CloseHandle(handle);
}

TEST(Faults, AFullDiskFailsTheWriteAndKeepsTheRest) {
    TestDevice device;
    const CEOID database = CeCreateDatabase(u"Full", 1, 0, nullptr);
    const HANDLE handle = OpenById(database);
    const CEOID kept = Values().Number(1, 1).Write(handle);
    ASSERT_EQ(storage::TheStore()->connection.Execute("PRAGMA max_page_count = 1"), SQLITE_OK);
    int written = 0;
    while (Values().Blob(2, std::string(1000, 'f')).Write(handle) != 0 && written < 100)
        ++written;
    EXPECT_LT(written, 100);
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    EXPECT_EQ(InfoOf(database).wNumRecords, 1 + written);
    EXPECT_EQ(ReadBack(handle).record, kept);
    ASSERT_EQ(storage::TheStore()->connection.Execute("PRAGMA max_page_count = 100000"), SQLITE_OK);
    EXPECT_GT(Values().Number(1, 2).Write(handle), kept);
    // A disk without room even for opening the store in order leaves it readable, until there is room.
    storage::TheStore()->readOnlyError = ERROR_DISK_FULL;
    EXPECT_EQ(FailureOf(Values().Number(1, 3).Write(handle)), ERROR_DISK_FULL);
    CloseHandle(handle);
    EXPECT_NE(CeCreateDatabase(u"Room", 1, 0, nullptr), 0U);
}

int WriteUntilFull(HANDLE handle) {
    int written = 0;
    while (Values().Blob(2, std::string(1000, 'f')).Write(handle) != 0)
        ++written;
    return GetLastError() == ERROR_DISK_FULL ? written : 0;
}

std::int64_t RowsLeft() {
    storage::Statement left(storage::TheStore()->connection,
                            "SELECT (SELECT count(*) FROM records) + (SELECT count(*) FROM sortkeys)");
    return left.Row() ? left.Number(0) : -1;
}

// Fills the disk with a database and deletes it there.
bool DeletesWhatFilledTheDisk() {
    const SORTORDERSPEC spec = {Prop(2, CEVT_BLOB), 0};
    const CEOID full = CeCreateDatabase(u"Full", 1, 1, &spec);
    HANDLE handle = OpenById(full);
    const int written = WriteUntilFull(handle);
    CloseHandle(handle);
    const CEOID next = CeDeleteDatabase(full) ? CeCreateDatabase(u"Next", 1, 0, nullptr) : 0;
    handle = OpenById(next);
    const bool passed = written > 100 && RowsLeft() == 0 && WriteUntilFull(handle) >= written;
    return CloseHandle(handle) && passed;
}

// A process that starts on a full disk deletes records one by one, then their database.
bool DeletesOnADiskThatIsFullAtTheStart(const std::string& folder) {
    storage::CloseStore();
    std::filesystem::remove(folder + "/ballast");
    const CEOID kept = CeCreateDatabase(u"Kept", 1, 0, nullptr);
    const CEOID full = FindDatabase(u"Next");
    storage::CloseStore();
    for (std::ofstream ballast(folder + "/ballast"); ballast << std::string(4096, 'b') << std::flush;) {
    }
    HANDLE handle = OpenById(full);
    for (int record = 0; record < 100; ++record)
        if (!CeDeleteRecord(handle, CeSeekDatabase(handle, CEDB_SEEK_END, 0, nullptr)))
            return false;
    CloseHandle(handle);
    if (!CeDeleteDatabase(full) || RowsLeft() != 0)
        return false;
    handle = OpenById(kept);
    return WriteUntilFull(handle) > 100 && CloseHandle(handle);
}

TEST(Faults, RecordsAndDatabasesAreDeletedOnAFullDisk) {
    TestDevice device;
    OtherProcess other({[&] { // a small disk that this process alone sees
                            return (unshare(CLONE_NEWNS) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0) &&
                                   mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                                   mount("none", device.folder.c_str(), "tmpfs", 0, "size=4m") == 0;
                        },
                        [&] { return DeletesWhatFilledTheDisk(); },
                        [&] { return DeletesOnADiskThatIsFullAtTheStart(device.folder); }});
    if (!other.Run(0))
        GTEST_SKIP() << "no disk can be mounted here";
    EXPECT_TRUE(other.Run(1));
    EXPECT_TRUE(other.Run(2));
}

TEST(Faults, WhatADeletionLeftIsDeletedWhenTheStoreIsOpenedNext) {
    TestDevice device;
    const SORTORDERSPEC spec = {Prop(1, CEVT_I4), 0};
    const auto fill = [&](const WCHAR* name) {
        const CEOID database = CeCreateDatabase(name, 1, 1, &spec);
        const HANDLE handle = OpenById(database);
        for (LONG number = 0; number < 300; ++number)
            Values().Number(1, number).Write(handle);
        CloseHandle(handle);
        return database;
    };
    const CEOID before = fill(u"Before");
    const CEOID gone = fill(u"Gone");
    const CEOID behind = fill(u"Behind");
    device.Restart();
    RunSql(device.folder + "/objectstore.db",
           "DELETE FROM databases WHERE oid = " + std::to_string(gone) +
               "; DELETE FROM records WHERE id % 2; INSERT INTO sortkeys VALUES (1 << 40, x'00', 1)");
    EXPECT_EQ(RowsLeft(), 450 + 900 + 1) << "a device that is known to be tidy is not looked through";
    device.Restart();
    std::filesystem::remove(device.folder + "/objectstore.db-lock");
    EXPECT_EQ(RowsLeft(), 300 + 600 + 1);
    EXPECT_EQ(InfoOf(before).wNumRecords + InfoOf(behind).wNumRecords, 600);
    EXPECT_TRUE(storage::TheStore()->locks.HasRoom());
}

// Runs a check as a user that no permission is waived for.
bool AsOrdinaryUser(bool (*check)()) {
    constexpr uid_t kNobody = 65534;
    OtherProcess other({[=] { return (geteuid() != 0 || setuid(kNobody) == 0) && check(); }});
    return other.Run(0);
}

TEST(Faults, ADeviceThatCannotBeWrittenCanBeRead) {
    TestDevice device;
    const HANDLE handle = OpenById(CeCreateDatabase(u"Readable", 1, 0, nullptr));
    Values().Text(1, u"as it was").Write(handle);
    CloseHandle(handle);
    device.Restart();
    const auto passesReadOnly = [&](bool (*check)()) {
        namespace fs = std::filesystem;
        for (const auto& entry : fs::directory_iterator(device.folder))
            fs::permissions(entry.path(), entry.is_directory() ? fs::perms(0555) : fs::perms(0444));
        fs::permissions(device.folder, fs::perms(0555));
        const bool passed = AsOrdinaryUser(check);
        fs::permissions(device.folder, fs::perms(0755));
        fs::permissions(device.folder + "/objectstore.db", fs::perms(0644));
        return passed;
    };
    const std::string log = device.folder + "/objectstore.db-wal";
    WriteHostFile(log, ""); // says nothing: the store is in order
    EXPECT_TRUE(passesReadOnly([] {
        const CEOID oid = FindDatabase(u"Readable");
        const HANDLE readable = OpenById(oid);
        const ReadBack read(readable);
        return read.count == 1 && std::u16string(read[0].val.lpwstr) == u"as it was" &&
               FailureOf(Values().Number(1, 1).Write(readable)) == ERROR_WRITE_PROTECT &&
               CeCreateDatabase(u"More", 1, 0, nullptr) == 0 && CloseHandle(readable) &&
               FailureOf(CeDeleteDatabase(oid)) == ERROR_WRITE_PROTECT;
    }));
    const auto isWriteProtected = [] {
        return CeFindFirstDatabase(0) == INVALID_HANDLE_VALUE && GetLastError() == ERROR_WRITE_PROTECT;
    };
    std::filesystem::remove(log);
    WriteHostFile(log, "left by a process that died");
    EXPECT_TRUE(passesReadOnly(isWriteProtected)) << "not damaged: it can be opened where it can be written";
    std::filesystem::remove(log);
    WriteHostFile(device.folder + "/objectstore.db", "");
    EXPECT_TRUE(passesReadOnly(isWriteProtected));
}

TEST(Faults, ADeviceThatCannotBeMadeIsTold) {
    TestDevice device;
    WriteHostFile(device.folder + "/file", "in the way");
    EXPECT_EQ(FailureOf(UseDevice(device.folder + "/file/device")), ERROR_PATH_NOT_FOUND);
    ExpectUnusable(ERROR_ACCESS_DENIED);
    EXPECT_TRUE(UseDevice(device.folder + "/made/on/the/way//"));
    EXPECT_EQ(DeviceFolder(), device.folder + "/made/on/the/way");
    EXPECT_TRUE(std::filesystem::is_directory(DeviceRootFolder()));
    EXPECT_NE(CeCreateDatabase(u"New", 1, 0, nullptr), 0U);
}

} // namespace
