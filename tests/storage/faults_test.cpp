// Devices that are damaged, foreign, or cannot be written.
#include <cerrno>
#include <filesystem>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/platform/otherprocess.h"
#include "tests/storage/storesupport.h"
#include "tests/support/resourcelimit.h"

namespace {

void ExpectUnusable(DWORD error) {
    EXPECT_EQ(FailureOf(CeFindFirstDatabase(0)), error);
    EXPECT_EQ(FailureOf(CeCreateDatabase(u"New", 1, 0, nullptr)), error);
    EXPECT_EQ(FailureOf(FindDatabase(u"New")), error);
}

// Runs a check as a user that no permission is waived for.
bool AsOrdinaryUser(bool (*check)()) {
    constexpr uid_t kNobody = 65534;
    OtherProcess other({[=] { return (geteuid() != 0 || setuid(kNobody) == 0) && check(); }});
    return other.Run(0);
}

TEST(Faults, WhatIsNoStoreIsToldBeforeItIsUsedAndLeftAlone) {
    TestDevice device;
    namespace fs = std::filesystem;
    const std::string path = device.folder + "/objectstore.db";
    const auto isRefused = [&](DWORD error) {
        EXPECT_EQ(FailureOf(OpenDeviceStore()), error);
        ExpectUnusable(error);
        device.Restart();
    };
    ASSERT_TRUE(OpenDeviceStore()) << "made when it is missing";
    const HANDLE handle = OpenById(CeCreateDatabase(u"Large", 1, 0, nullptr));
    Values().Blob(1, std::string(100'000, 'l')).Write(handle);
    CloseHandle(handle);
    device.Restart();
    const std::string whole = HostFile(path);
    fs::remove(path);
    device.RunSql("CREATE TABLE somebody_elses (a); INSERT INTO somebody_elses VALUES (1)");
    const std::string contents[] = {HostFile(path),
                                    "not a store",
                                    std::string(100000, 'g'),
                                    std::string("SQLite format 3\0", 16) + std::string(5000, '\xA5'),
                                    whole.substr(0, 50),
                                    whole.substr(0, whole.size() / 2),
                                    whole.substr(0, whole.size() - 4096)};
    for (const std::string& content : contents) {
        WriteHostFile(path, content);
        isRefused(ERROR_FILE_CORRUPT);
        EXPECT_EQ(HostFile(path), content);
    }
    fs::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    isRefused(ERROR_FILE_CORRUPT);
    fs::remove(path);
    fs::create_directory(path);
    isRefused(ERROR_FILE_CORRUPT);
    fs::remove(path);
    fs::create_symlink(path, path);
    isRefused(ERROR_ACCESS_DENIED);
    fs::remove(path);
    WriteHostFile(path, "");
    EXPECT_NE(CeCreateDatabase(u"On an empty file", 1, 0, nullptr), 0U);
    device.RunSql("PRAGMA user_version = 2");
    isRefused(ERROR_REVISION_MISMATCH);
    device.RunSql("PRAGMA user_version = 1");
    {
        const ResourceLimit fewFiles(RLIMIT_NOFILE, 3);
        isRefused(ERROR_NOT_ENOUGH_MEMORY);
    }
    fs::permissions(path, fs::perms(0666));
    EXPECT_TRUE(OpenDeviceStore());
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0600)) << "earlier versions let everybody read it";
    device.Restart();
    fs::permissions(path, fs::perms(0));
    EXPECT_TRUE(AsOrdinaryUser([] { return FailureOf(OpenDeviceStore()) == ERROR_WRITE_PROTECT; }));
}

TEST(Faults, DamagedRowsFailAndHarmNothingElse) {
    TestDevice device;
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
    std::string sql;
    for (const char* damage : damages) {
        records.push_back(Values().Number(1, 1).Text(2, u"text").Blob(3, "blob").Write(handle));
        sql += std::string("UPDATE records SET ") + damage +
               " WHERE id & 0xFFFFFFFF = " + std::to_string(records.back()) + ';';
    }
    CloseHandle(handle);
    device.RunSql(sql);
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
    device.RunSql(
        "UPDATE databases SET name = printf('%.*c', 500, 'n'), sortorders = zeroblob(1000), records = -7, "
        "bytes = -7, version = 9223372036854775807, deletions = 9223372036854775807");
    EXPECT_EQ(InfoOf(database).szDbaseName[31], 0);
    EXPECT_EQ(InfoOf(database).wNumSortOrder, 4);
    handle = OpenById(database);
    EXPECT_TRUE(CeDeleteRecord(handle, Values().Number(1, 1).Write(handle))) << "counted on from the utmost";
    EXPECT_EQ(InfoOf(database).dwSize, 0U);
    device.BreakTable("records");
    EXPECT_EQ(FailureOf(Values().Number(1, 1).Write(handle)), ERROR_FILE_CORRUPT);
    CloseHandle(handle);
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

TEST(Faults, AStoreThatIsReadWithoutLocksIsRefusedOnceAnybodyWrites) {
    TestDevice device;
    const std::string path = device.folder + "/objectstore.db";
    const HANDLE handle = OpenById(CeCreateDatabase(u"Read", 1, 0, nullptr));
    for (int record = 0; record < 200; ++record)
        Values().Blob(1, std::string(1000, 'r')).Write(handle);
    CloseHandle(handle);
    device.Restart();
    namespace fs = std::filesystem;
    fs::permissions(device.folder, fs::perms(0755));
    fs::permissions(path, fs::perms(0644));
    HANDLE reader = 0;
    const auto walks = [&] {
        while (CeSeekDatabase(reader, CEDB_SEEK_CURRENT, 1, nullptr) != 0) {
        }
        return GetLastError();
    };
    OtherProcess other({[&] { return geteuid() != 0 || setuid(65534) == 0; },
                        [&] { return (reader = OpenById(FindDatabase(u"Read"))) != INVALID_HANDLE_VALUE; },
                        [&] { return walks() == ERROR_NO_MORE_ITEMS; },
                        [&] {
                            return walks() == ERROR_SHARING_VIOLATION && CloseHandle(reader) &&
                                   CeFindFirstDatabase(0) == INVALID_HANDLE_VALUE;
                        }});
    ASSERT_TRUE(other.Run(0));
    EXPECT_TRUE(other.Run(1));
    EXPECT_TRUE(other.Run(2));
    CeCreateDatabase(u"Written meanwhile", 1, 0, nullptr);
    fs::permissions(path + "-shm", fs::perms(0600));
    EXPECT_TRUE(other.Run(3)) << "neither a cut walk nor an old list";
}

// Reading from the store's file through SQLite, which the host refuses or cuts short from some read on.
int readsLeft = -1;
ssize_t brokenRead = -1;

ssize_t BrokenPread(int file, void* to, std::size_t bytes, off_t offset) {
    if (readsLeft == 0) {
        errno = EIO;
        return brokenRead;
    }
    readsLeft -= readsLeft > 0 ? 1 : 0;
    return pread(file, to, bytes, offset);
}

void BreakReads(bool broken) {
    sqlite3_vfs* system = sqlite3_vfs_find(nullptr);
    const auto call = reinterpret_cast<sqlite3_syscall_ptr>(BrokenPread);
    for (const char* name : {"pread", "pread64"})
        system->xSetSystemCall(system, name, broken ? call : nullptr);
    readsLeft = -1;
}

bool SaysThatReadingFailed() {
    return GetLastError() == ERROR_GEN_FAILURE || GetLastError() == ERROR_FILE_CORRUPT;
}

// Walks with a read that fails wherever the store has to read. How often it did; each time the walk went on
// from where it was once it could.
DWORD WalkOverFailures(HANDLE handle, DWORD records) {
    DWORD failures = 0;
    DWORD type = CEDB_SEEK_BEGINNING;
    for (DWORD seen = 0; seen < records; ++seen) {
        const DWORD steps = seen == 0 ? 0 : 1;
        readsLeft = 0;
        if (CeSeekDatabase(handle, type, steps, nullptr) == 0) {
            EXPECT_TRUE(SaysThatReadingFailed());
            ++failures;
            readsLeft = -1;
            EXPECT_NE(CeSeekDatabase(handle, type, steps, nullptr), 0U);
        }
        EXPECT_EQ(ReadBack(handle)[0].val.lVal, static_cast<LONG>(seen));
        type = CEDB_SEEK_CURRENT;
    }
    readsLeft = -1;
    EXPECT_EQ(FailureOf(CeSeekDatabase(handle, CEDB_SEEK_CURRENT, 1, nullptr)), ERROR_NO_MORE_ITEMS);
    return failures;
}

// How many reads an enumeration takes; it fails as long as it gets fewer.
int EnumerateOverFailures(TestDevice& device, CEOID database) {
    for (int reads = 0;; ++reads) {
        device.Restart();
        readsLeft = reads;
        const HANDLE found = CeFindFirstDatabase(0);
        CEOIDINFO info{};
        if (found != INVALID_HANDLE_VALUE && CeFindNextDatabase(found) == database &&
            CeOidGetInfo(database, &info) && CloseHandle(found)) {
            readsLeft = -1;
            return reads;
        }
        EXPECT_TRUE(SaysThatReadingFailed()) << reads;
    }
}

TEST(Faults, AFailingReadIsNeverTheEnd) {
    TestDevice device;
    constexpr DWORD kRecords = 300;
    const SORTORDERSPEC spec = {Prop(1, CEVT_I4), 0};
    const CEOID database = CeCreateDatabase(u"Walked", 1, 1, &spec);
    HANDLE handle = OpenById(database);
    for (DWORD number = 0; number < kRecords; ++number)
        Values().Number(1, static_cast<LONG>(number)).Blob(2, std::string(900, 'w')).Write(handle);
    CloseHandle(handle);
    BreakReads(true);
    for (const CEPROPID sort : {CEPROPID{0}, spec.propid}) {
        device.Restart();
        handle = OpenById(database, sort);
        EXPECT_GT(WalkOverFailures(handle, kRecords), 3U);
        CloseHandle(handle);
    }
    EXPECT_GT(EnumerateOverFailures(device, database), 1);
    brokenRead = 0; // a file that ends too early
    EXPECT_GT(EnumerateOverFailures(device, database), 1);
    brokenRead = -1;
    BreakReads(false);
}

TEST(Faults, ADeviceThatCannotBeMadeIsTold) {
    TestDevice device;
    WriteHostFile(device.folder + "/file", "in the way");
    EXPECT_EQ(FailureOf(UseDevice(device.folder + "/file/device")), ERROR_PATH_NOT_FOUND);
    ExpectUnusable(ERROR_ACCESS_DENIED);
    EXPECT_TRUE(UseDevice(device.folder + "/made/on/the/way//"));
    EXPECT_EQ(DeviceFolder(), device.folder + "/made/on/the/way");
}

} // namespace
