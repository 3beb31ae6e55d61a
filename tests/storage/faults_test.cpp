// Devices that are damaged, foreign, full, or cannot be written.
#include "tests/storage/storesupport.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sched.h>
#include <sqlite3.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string FileBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void RunSql(const std::string& path, const char* sql) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
    sqlite3_close(database);
}

void ExpectUnusable(DWORD error) {
    EXPECT_EQ(CeFindFirstDatabase(0), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), error);
    EXPECT_EQ(CeCreateDatabase(u"New", 1, 0, nullptr), 0U);
    EXPECT_EQ(GetLastError(), error);
    CEOID oid = 0;
    EXPECT_EQ(CeOpenDatabase(&oid, u"New", 0, 0, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), error);
}

TEST(Faults, AFileThatIsNoStoreIsLeftAlone) {
    TestDevice device;
    const std::string path = device.folder + "/objectstore.db";
    for (const std::string& garbage : {std::string("not a store"), std::string(100000, 'g'),
                                       std::string("SQLite format 3\0", 16) + std::string(5000, '\xA5')}) {
        WriteFile(path, garbage);
        ExpectUnusable(ERROR_FILE_CORRUPT);
        device.Restart();
        EXPECT_EQ(FileBytes(path), garbage);
    }
    std::filesystem::remove(path);
    RunSql(path, "CREATE TABLE somebody_elses (a); INSERT INTO somebody_elses VALUES (1)");
    const std::string foreign = FileBytes(path);
    ExpectUnusable(ERROR_FILE_CORRUPT);
    device.Restart();
    EXPECT_EQ(FileBytes(path), foreign);
    WriteFile(path, "");
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
    const CEOID database = CeCreateDatabase(u"Damaged", 1, 0, nullptr);
    HANDLE handle = OpenById(database);
    std::vector<CEOID> records;
    for (int number = 0; number < 9; ++number) {
        records.push_back(Values().Number(1, number).Text(2, u"text").Blob(3, "blob").Write(handle));
    }
    CloseHandle(handle);
    device.Restart();
    const auto damage = [&](int number, const char* what) {
        const std::string sql = std::string("UPDATE records SET ") + what + " WHERE id & 0xFFFFFFFF = " +
                                std::to_string(records[static_cast<std::size_t>(number)]);
        RunSql(device.folder + "/objectstore.db", sql.c_str());
    };
    damage(0, "properties = 4");
    damage(1, "properties = 65535");
    damage(2, "data = substr(data, 1, 20)");
    damage(3, "data = substr(data, 1, length(data) - 6)");
    damage(
        4,
        "data = CAST(substr(data, 1, 24) || x'0100FFFF' || substr(data, 29) AS BLOB)"); // the text's offset
    damage(5, "data = CAST(substr(data, 1, 24) || x'08000000' || substr(data, 29) AS BLOB)");
    damage(
        6,
        "data = CAST(substr(data, 1, 40) || x'FFFFFFFF' || substr(data, 45) AS BLOB)"); // the blob's length
    damage(7, "data = 'words'");
    handle = OpenById(database);
    int read = 0;
    for (CEOID at = CeSeekDatabase(handle, CEDB_SEEK_BEGINNING, 0, nullptr); at != 0;
         at = CeSeekDatabase(handle, CEDB_SEEK_CURRENT, 1, nullptr)) {
        ReadBack record(handle);
        EXPECT_EQ(record.record, at == records[8] ? at : 0) << at;
        ++read;
        if (at != records[8]) {
            EXPECT_EQ(GetLastError(), ERROR_FILE_CORRUPT);
            EXPECT_EQ(Values().Number(1, 1).Write(handle, at), 0U);
        }
    }
    EXPECT_EQ(read, 9);
    for (const CEOID record : records) {
        EXPECT_TRUE(CeDeleteRecord(handle, record));
    }
    CloseHandle(handle);
    device.Restart();
    RunSql(device.folder + "/objectstore.db",
           "UPDATE databases SET name = printf('%.*c', 500, 'n'), sortorders = zeroblob(1000), records = -7, "
           "bytes = -7, version = 9223372036854775807, deletions = 9223372036854775807");
    EXPECT_EQ(InfoOf(database).szDbaseName[31], 0);
    EXPECT_EQ(InfoOf(database).wNumSortOrder, 4);
    handle = OpenById(database);
    EXPECT_TRUE(CeDeleteRecord(handle, Values().Number(1, 1).Write(handle))) << "counted on from the utmost";
    EXPECT_EQ(InfoOf(database).dwSize, 0U);
    RunSql(device.folder + "/objectstore.db", "DROP TABLE records");
    EXPECT_EQ(Values().Number(1, 1).Write(handle), 0U);
    EXPECT_EQ(GetLastError(), ERROR_FILE_CORRUPT);
    CloseHandle(handle);
}

TEST(Faults, AFullDiskFailsTheWriteAndKeepsTheRest) {
    TestDevice device;
    const CEOID database = CeCreateDatabase(u"Full", 1, 0, nullptr);
    const HANDLE handle = OpenById(database);
    const CEOID kept = Values().Number(1, 1).Write(handle);
    ASSERT_EQ(storage::TheStore()->connection.Execute("PRAGMA max_page_count = 1"), SQLITE_OK);
    int written = 0;
    while (Values().Blob(2, std::string(1000, 'f')).Write(handle) != 0 && written < 100) {
        ++written;
    }
    EXPECT_LT(written, 100);
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    EXPECT_EQ(InfoOf(database).wNumRecords, 1 + written);
    EXPECT_EQ(ReadBack(handle).record, kept);
    ASSERT_EQ(storage::TheStore()->connection.Execute("PRAGMA max_page_count = 100000"), SQLITE_OK);
    EXPECT_GT(Values().Number(1, 2).Write(handle), kept);
    // A disk without room even for opening the store in order leaves it readable, until there is room.
    storage::TheStore()->readOnlyError = ERROR_DISK_FULL;
    EXPECT_EQ(Values().Number(1, 3).Write(handle), 0U);
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    CloseHandle(handle);
    EXPECT_NE(CeCreateDatabase(u"Room", 1, 0, nullptr), 0U);
}

// Fills the disk with a database, deletes it there, and looks at the store once there is room again.
bool DeletesOnAFullDisk(const std::string& folder) {
    const std::string ballast = folder + "/ballast";
    const CEOID kept = CeCreateDatabase(u"Kept", 1, 0, nullptr);
    const CEOID full = CeCreateDatabase(u"Full", 1, 0, nullptr);
    const HANDLE handle = OpenById(full);
    WriteFile(ballast, std::string(200'000, 'b'));
    while (Values().Blob(2, std::string(1000, 'f')).Write(handle) != 0) {
    }
    CloseHandle(handle);
    if (!CeDeleteDatabase(full) || CeOidGetInfo(full, nullptr) || InfoOf(kept).wNumRecords != 0) {
        return false;
    }
    std::filesystem::remove(ballast);
    storage::CloseStore();
    storage::Store* store = storage::TheStore();
    storage::Statement left(store->connection, "SELECT count(*) FROM records");
    return store->locks.HasRoom() && left.Row() && left.Number(0) == 0;
}

TEST(Faults, ADatabaseIsDeletedOnAFullDisk) {
    constexpr int kNoDisk = 2;
    TestDevice device;
    const pid_t child = fork();
    if (child == 0) {
        // A small disk that this process alone sees.
        const bool mounted = (unshare(CLONE_NEWNS) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0) &&
                             mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                             mount("none", device.folder.c_str(), "tmpfs", 0, "size=1m") == 0;
        _exit(!mounted ? kNoDisk : DeletesOnAFullDisk(device.folder) ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == kNoDisk) {
        GTEST_SKIP() << "no disk can be mounted here";
    }
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

// Runs a check as a user that no permission is waived for.
bool AsOrdinaryUser(bool (*check)()) {
    constexpr uid_t kNobody = 65534;
    const pid_t child = fork();
    if (child == 0) {
        const bool ordinary = geteuid() != 0 || setuid(kNobody) == 0;
        _exit(ordinary && check() ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return status == 0;
}

TEST(Faults, ADeviceThatCannotBeWrittenCanBeRead) {
    TestDevice device;
    CloseHandle(OpenById(CeCreateDatabase(u"Readable", 1, 0, nullptr)));
    HANDLE handle = OpenById(1);
    Values().Text(1, u"as it was").Write(handle);
    CloseHandle(handle);
    device.Restart();
    const auto passesReadOnly = [&](bool (*check)()) {
        namespace fs = std::filesystem;
        for (const auto& entry : fs::directory_iterator(device.folder)) {
            fs::permissions(entry.path(), entry.is_directory() ? fs::perms(0555) : fs::perms(0444));
        }
        fs::permissions(device.folder, fs::perms(0555));
        const bool passed = AsOrdinaryUser(check);
        fs::permissions(device.folder, fs::perms(0755));
        fs::permissions(device.folder + "/objectstore.db", fs::perms(0644));
        return passed;
    };
    const std::string log = device.folder + "/objectstore.db-wal";
    WriteFile(log, ""); // says nothing: the store is in order
    EXPECT_TRUE(passesReadOnly([] {
        CEOID oid = 0;
        const HANDLE readable = CeOpenDatabase(&oid, u"Readable", 0, 0, nullptr);
        const ReadBack read(readable);
        return read.count == 1 && std::u16string(read[0].val.lpwstr) == u"as it was" &&
               Values().Number(1, 1).Write(readable) == 0 && GetLastError() == ERROR_WRITE_PROTECT &&
               CeCreateDatabase(u"More", 1, 0, nullptr) == 0 && CloseHandle(readable) &&
               !CeDeleteDatabase(oid) && GetLastError() == ERROR_WRITE_PROTECT;
    }));
    const auto isWriteProtected = [] {
        return CeFindFirstDatabase(0) == INVALID_HANDLE_VALUE && GetLastError() == ERROR_WRITE_PROTECT;
    };
    std::filesystem::remove(log);
    WriteFile(log, "left by a process that died");
    EXPECT_TRUE(passesReadOnly(isWriteProtected)) << "not damaged: it can be opened where it can be written";
    std::filesystem::remove(log);
    WriteFile(device.folder + "/objectstore.db", "");
    EXPECT_TRUE(passesReadOnly(isWriteProtected));
}

TEST(Faults, ADeviceThatCannotBeMadeIsTold) {
    TestDevice device;
    WriteFile(device.folder + "/file", "in the way");
    EXPECT_FALSE(UseDevice(device.folder + "/file/device"));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    ExpectUnusable(ERROR_ACCESS_DENIED);
    EXPECT_TRUE(UseDevice(device.folder + "/made/on/the/way//"));
    EXPECT_EQ(DeviceFolder(), device.folder + "/made/on/the/way");
    EXPECT_TRUE(std::filesystem::is_directory(DeviceRootFolder()));
    EXPECT_NE(CeCreateDatabase(u"New", 1, 0, nullptr), 0U);
}

} // namespace
