// What a full disk lets pass, and what a deletion leaves behind.
#include <filesystem>
#include <fstream>
#include <sched.h>
#include <sys/mount.h>

#include "tests/platform/otherprocess.h"
#include "tests/storage/storesupport.h"

namespace {

TEST(FullDisk, AFullDiskFailsTheWriteAndKeepsTheRest) {
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

TEST(FullDisk, RecordsAndDatabasesAreDeletedOnAFullDisk) {
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

TEST(FullDisk, WhatADeletionLeftIsDeletedWhenTheStoreIsOpenedNext) {
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
    device.RunSql("DELETE FROM databases WHERE oid = " + std::to_string(gone) +
                  "; DELETE FROM records WHERE id % 2; INSERT INTO sortkeys VALUES (1 << 40, x'00', 1)");
    EXPECT_EQ(RowsLeft(), 450 + 900 + 1) << "a device that is known to be tidy is not looked through";
    device.Restart();
    std::filesystem::remove(device.folder + "/objectstore.db-lock");
    EXPECT_EQ(RowsLeft(), 300 + 600 + 1);
    EXPECT_EQ(InfoOf(before).wNumRecords + InfoOf(behind).wNumRecords, 600);
    EXPECT_TRUE(storage::TheStore()->locks.HasRoom());
}

} // namespace
