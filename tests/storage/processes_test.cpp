// Two processes on one device.
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <set>
#include <sys/stat.h>

#include "platform/storage/watch.h"
#include "tests/platform/otherprocess.h"
#include "tests/storage/storesupport.h"

namespace {

struct Notified {
    HWND window;
    UINT message;
    WPARAM record;
    LPARAM database;
};
std::vector<Notified> notified;

TEST(Processes, AnOpenDatabaseIsInUseEverywhereUntilItsProcessDies) {
    TestDevice device;
    HANDLE held = INVALID_HANDLE_VALUE;
    OtherProcess other({[&] {
                            held = OpenById(CeCreateDatabase(u"Shared", 1, 0, nullptr));
                            return held != INVALID_HANDLE_VALUE;
                        },
                        [&] { return CloseHandle(held) != 0; },
                        [&] { return (held = OpenById(FindDatabase(u"shared"))) != INVALID_HANDLE_VALUE; }});
    ASSERT_TRUE(other.Run(0));
    const CEOID database = FindDatabase(u"Shared");
    ASSERT_NE(database, 0U) << "open in two processes at once";
    EXPECT_EQ(FailureOf(CeDeleteDatabase(database)), ERROR_SHARING_VIOLATION);
    ASSERT_TRUE(other.Run(1));
    EXPECT_TRUE(CeDeleteDatabase(database));
    EXPECT_FALSE(other.Run(2)) << "the other process sees the deletion";
    CeCreateDatabase(u"Shared", 1, 0, nullptr);
    ASSERT_TRUE(other.Run(2));
    EXPECT_FALSE(CeDeleteDatabase(FindDatabase(u"Shared")));
    other.Kill();
    EXPECT_TRUE(CeDeleteDatabase(FindDatabase(u"Shared")));
}

TEST(Processes, WritersWaitForEachOtherAndShareOneIdentifierSpace) {
    TestDevice device;
    constexpr int kRecords = 1500;
    const auto fill = [](const WCHAR* name) {
        const HANDLE handle = OpenById(FindDatabase(name));
        bool written = true;
        CEOID last = 0;
        for (int number = 0; number < kRecords; ++number) {
            const CEOID record = Values().Number(1, number).Write(handle);
            written = written && record > last;
            last = record;
        }
        return CloseHandle(handle) && written;
    };
    OtherProcess other({[&] { return fill(u"Common"); }});
    const CEOID database = CeCreateDatabase(u"Common", 1, 0, nullptr);
    other.Start(0);
    EXPECT_TRUE(fill(u"Common"));
    EXPECT_TRUE(other.Await());
    EXPECT_EQ(InfoOf(database).wNumRecords, 2 * kRecords);
    const HANDLE handle = OpenById(database);
    std::set<CEOID> records;
    std::vector<int> numbers(kRecords);
    for (Place at = Seek(handle, CEDB_SEEK_BEGINNING); at != kNowhere;
         at = Seek(handle, CEDB_SEEK_CURRENT, 1)) {
        records.insert(at.first);
        ++numbers[static_cast<std::size_t>(ReadBack(handle)[0].val.lVal)];
    }
    CloseHandle(handle);
    EXPECT_EQ(records.size(), std::size_t{2 * kRecords});
    EXPECT_EQ(numbers, std::vector<int>(kRecords, 2));
}

TEST(Processes, AHandleSeesWhatTheOtherProcessChanged) {
    TestDevice device;
    const SORTORDERSPEC spec = {Prop(1, CEVT_I4), 0};
    CEOID record = 0;
    HANDLE theirs = INVALID_HANDLE_VALUE;
    OtherProcess other({[&] {
                            theirs = OpenById(FindDatabase(u"Seen"));
                            return Values().Number(1, 5).Write(theirs) != 0;
                        },
                        [&] {
                            record = CeSeekDatabase(theirs, CEDB_SEEK_BEGINNING, 0, nullptr);
                            return Values().Number(1, 25).Write(theirs, record) == record;
                        },
                        [&] { return CeDeleteRecord(theirs, record) != 0; }});
    const CEOID database = CeCreateDatabase(u"Seen", 1, 1, &spec);
    const HANDLE handle = OpenById(database, spec.propid);
    const CEOID ten = Values().Number(1, 10).Write(handle);
    const CEOID twenty = Values().Number(1, 20).Write(handle);
    EXPECT_EQ(Seek(handle, CEDB_SEEK_END), Place(twenty, 1));
    ASSERT_TRUE(other.Run(0)); // 5 10 [20]
    EXPECT_EQ(Seek(handle, CEDB_SEEK_CURRENT), Place(twenty, 2));
    EXPECT_EQ(Seek(handle, CEDB_SEEK_CURRENT, -1), Place(ten, 1));
    ASSERT_TRUE(other.Run(1)); // 5 20 [25]: the record that the handle stands on moved
    EXPECT_EQ(Seek(handle, CEDB_SEEK_CURRENT, -1), Place(twenty, 1));
    Seek(handle, CEDB_SEEK_END);
    EXPECT_EQ(ReadBack(handle)[0].val.lVal, 25);
    ASSERT_TRUE(other.Run(2)); // 5 20 []
    EXPECT_EQ(Seek(handle, CEDB_SEEK_CURRENT), kNowhere);
    EXPECT_EQ(ReadBack(handle).record, 0U);
    EXPECT_EQ(Seek(handle, CEDB_SEEK_CURRENT, -1), Place(twenty, 1));
    EXPECT_EQ(InfoOf(database).wNumRecords, 2);
    CloseHandle(handle);
}

TEST(Processes, OnlyForeignCreationsAndDeletionsAreReported) {
    TestDevice device;
    HANDLE theirs = INVALID_HANDLE_VALUE;
    CEOID first = 0;
    OtherProcess other({[&] {
                            theirs = OpenById(FindDatabase(u"Watched"));
                            first = CeSeekDatabase(theirs, CEDB_SEEK_BEGINNING, 0, nullptr);
                            return Values().Number(1, 1).Write(theirs) != 0 &&
                                   Values().Number(1, 2).Write(theirs) != 0;
                        },
                        [&] { return Values().Number(1, 3).Write(theirs, first) != 0; },
                        [&] { return CeDeleteRecord(theirs, first) != 0; }});
    notified.clear();
    SetNotifySink([](HWND window, UINT message, WPARAM record, LPARAM database) {
        notified.push_back({window, message, record, database});
    });
    const CEOID database = CeCreateDatabase(u"Watched", 1, 0, nullptr);
    const HANDLE plain = OpenById(database);
    const CEOID oldest = Values().Number(1, 0).Write(plain);
    EXPECT_FALSE(StoreWatchWanted());
    const HWND window = reinterpret_cast<HWND>(&device);
    const HANDLE handle = OpenById(database, 0, window);
    EXPECT_TRUE(StoreWatchWanted());

    CeDeleteRecord(plain, Values().Number(1, 0).Write(handle));
    EXPECT_NE(Values().Number(1, 8).Write(plain), 0U); // and stays
    PollStoreChanges();
    EXPECT_TRUE(notified.empty()) << "the own changes";
    ASSERT_TRUE(other.Run(0));
    const CEOID own = Values().Number(1, 9).Write(handle);
    CeDeleteRecord(plain, own);
    PollStoreChanges();
    ASSERT_EQ(notified.size(), 2U);
    EXPECT_EQ(notified[0].window, window);
    EXPECT_EQ(notified[0].message, 0x401U);
    EXPECT_GT(notified[0].record, oldest);
    EXPECT_LT(notified[0].record, notified[1].record);
    EXPECT_LT(notified[1].record, own);
    EXPECT_EQ(notified[0].database, static_cast<LPARAM>(database));
    ASSERT_TRUE(other.Run(1));
    PollStoreChanges();
    EXPECT_EQ(notified.size(), 2U) << "a changed property is not told of";
    ASSERT_TRUE(other.Run(2));
    PollStoreChanges();
    PollStoreChanges();
    ASSERT_EQ(notified.size(), 3U);
    EXPECT_EQ(notified[2].message, 0x403U);
    EXPECT_EQ(notified[2].record, oldest);
    CloseHandle(handle);
    CloseHandle(plain);
    EXPECT_FALSE(StoreWatchWanted());
    SetNotifySink(nullptr);
}

TEST(Processes, WaitingSaysForWhom) {
    TestDevice device;
    const std::string errors = device.folder + "/errors";
    std::optional<storage::WriteTransaction> writing;
    OtherProcess other({[&] { return writing.emplace(*storage::TheStore()).Begun(); },
                        [&] { // goes on writing until the waiting one complains
                            while (!HostFile(errors).ends_with('\n')) {
                            }
                            const std::string told = "pocket-strandview: waiting for process " +
                                                     std::to_string(getpid()) +
                                                     ", which is changing the device\n";
                            return writing->Commit() && HostFile(errors) == told;
                        }});
    ASSERT_TRUE(other.Run(0));
    const int usual = dup(STDERR_FILENO);
    ASSERT_EQ(dup2(creat(errors.c_str(), 0600), STDERR_FILENO), STDERR_FILENO);
    other.Start(1);
    EXPECT_NE(CeCreateDatabase(u"In its turn", 1, 0, nullptr), 0U);
    EXPECT_TRUE(other.Await());
    dup2(usual, STDERR_FILENO);
}

TEST(Processes, MeetAtTheLockFileOfTheStoreItself) {
    TestDevice device;
    TestDevice linked;
    const std::string store = device.folder + "/objectstore.db";
    std::filesystem::create_symlink(store, linked.folder + "/objectstore.db");
    HANDLE theirs = INVALID_HANDLE_VALUE;
    const auto oneRecord = [&] { return CeSeekDatabase(theirs, CEDB_SEEK_END, 0, nullptr) != 0; };
    OtherProcess other({[&] { // by the link, which leads nowhere yet
                            return CeCreateDatabase(u"Shared", 1, 0, nullptr) != 0 &&
                                   (theirs = OpenById(FindDatabase(u"Shared"))) != INVALID_HANDLE_VALUE;
                        },
                        oneRecord,
                        [&] {
                            // Caches may be trusted a while; then the other lock file is noticed.
                            while (!oneRecord()) {
                            }
                            return Values().Number(1, 2).Write(theirs) != 0;
                        }});
    ASSERT_TRUE(other.Run(0));
    EXPECT_TRUE(UseDevice(device.folder));
    const CEOID database = FindDatabase(u"Shared");
    EXPECT_EQ(FailureOf(CeDeleteDatabase(database)), ERROR_SHARING_VIOLATION);
    EXPECT_FALSE(other.Run(1));
    std::filesystem::remove(store + "-lock");
    const HANDLE handle = OpenById(database);
    EXPECT_NE(Values().Number(1, 1).Write(handle), 0U);
    ASSERT_TRUE(other.Run(2));
    EXPECT_EQ(Seek(handle, CEDB_SEEK_BEGINNING, 1).second, 1U);
    CloseHandle(handle);
    EXPECT_EQ(FailureOf(CeDeleteDatabase(database)), ERROR_SHARING_VIOLATION) << "held in the new file, too";
    for (const char* ending : {"", "-wal", "-shm", "-lock"}) {
        struct stat status {};
        ASSERT_EQ(stat((store + ending).c_str(), &status), 0) << ending;
        EXPECT_EQ(status.st_mode & 0777, 0600U) << ending;
    }
}

TEST(Processes, AKilledWriterLeavesWholeRecordsAndNoLock) {
    TestDevice device;
    for (int round = 0; round < 5; ++round) {
        const std::u16string name = u"Killed " + std::u16string(1, static_cast<char16_t>(u'0' + round));
        OtherProcess other({[&] {
            const SORTORDERSPEC spec = {Prop(1, CEVT_I4), 0};
            const HANDLE handle = OpenById(CeCreateDatabase(name.c_str(), 1, 1, &spec));
            for (LONG number = 0;; ++number)
                Values().Number(1, number).Text(2, std::u16string(3000, u'k')).Write(handle);
            return false;
        }});
        other.Start(0);
        CEOID database = 0;
        while (database == 0 || InfoOf(database).wNumRecords < 5)
            database = FindDatabase(name.c_str());
        usleep(static_cast<unsigned>(round) * 1'301U); // anywhere within some write
        other.Kill();
        const CEDBASEINFO info = InfoOf(database);
        EXPECT_GT(info.wNumRecords, 0);
        const HANDLE handle = OpenById(database, Prop(1, CEVT_I4));
        DWORD found = 0;
        while (found < 20 && Seek(handle, CEDB_SEEK_BEGINNING, found) != kNowhere) {
            ReadBack read(handle);
            ASSERT_EQ(read.count, 2);
            EXPECT_EQ(read[0].val.lVal, static_cast<LONG>(found));
            EXPECT_EQ(std::u16string(read[1].val.lpwstr).size(), 3000U);
            ++found;
        }
        EXPECT_EQ(Seek(handle, CEDB_SEEK_END).second + 1, info.wNumRecords);
        EXPECT_EQ(info.dwSize, info.wNumRecords * (32U + 6002U));
        EXPECT_NE(Values().Number(1, 1).Write(handle), 0U);
        CloseHandle(handle);
        EXPECT_TRUE(CeDeleteDatabase(database));
        device.Restart(); // the next child must not inherit an open store
    }
}

} // namespace
