// Calls of the object store and the registry without memory.
#include <functional>

#include "platform/registry.h"
#include "tests/storage/storesupport.h"
#include "tests/support/scarcememory.h"

namespace {

// Runs a call with ever more memory until it succeeds.
void ExpectSurvival(const char* what, const std::function<bool()>& call) {
    SCOPED_TRACE(what);
    constexpr int kMostAllocations = 1000;
    for (int allocations = 0; allocations < kMostAllocations; ++allocations) {
        SetLastError(ERROR_SUCCESS);
        bool done;
        {
            const ScarceMemory scarce(allocations, true);
            done = call();
        }
        if (done) {
            EXPECT_GT(allocations, 0) << "nothing failed";
            return;
        }
        ASSERT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY) << allocations;
    }
    ADD_FAILURE() << "never succeeds";
}

TEST(Memory, RunningOutOfItIsToldAndLeavesTheStoreWhole) {
    TestDevice device;
    const SORTORDERSPEC spec = {Prop(1, CEVT_LPWSTR), CEDB_SORT_CASEINSENSITIVE};
    const std::u16string text(300, u'T');
    Values values;
    values.Text(1, text);
    CEOID database = 0;
    CEOID record = 0;
    HANDLE handle = 0;
    HKEY key = 0;
    const auto restarted = [&](const std::function<bool()>& call) {
        return [&, call] {
            device.Restart();
            return call();
        };
    };
    ExpectSurvival("create", restarted([&] {
                       return (database = CeCreateDatabase(u"With little memory", 1, 1, &spec)) != 0;
                   }));
    ExpectSurvival("open", restarted([&] {
                       CEOID oid = 0;
                       handle = CeOpenDatabase(&oid, u"with LITTLE memory", spec.propid, 0, nullptr);
                       return handle != INVALID_HANDLE_VALUE;
                   }));
    ExpectSurvival("make", [&] { return (record = values.Write(handle)) != 0; });
    EXPECT_EQ(InfoOf(database).wNumRecords, 1) << "not one for each try";
    ExpectSurvival("change", [&] { return values.Write(handle, record) != 0; });
    const CEOID second = values.Write(handle);
    CloseHandle(handle);
    device.Restart();
    handle = OpenById(database, spec.propid);
    ExpectSurvival("step", [&] { return CeSeekDatabase(handle, CEDB_SEEK_CURRENT, 1, nullptr) == second; });
    EXPECT_EQ(Seek(handle, CEDB_SEEK_CURRENT), Place(second, 1)) << "one step, however often it failed";
    BYTE* block = static_cast<BYTE*>(LocalAlloc(LMEM_FIXED, 1000));
    ExpectSurvival("read", [&] {
        WORD count = 0;
        DWORD size = 1000;
        return CeSeekDatabase(handle, CEDB_SEEK_CEOID, record, nullptr) != 0 &&
               CeReadRecordProps(handle, 0, &count, nullptr, &block, &size) == record;
    });
    LocalFree(block);
    ExpectSurvival("delete a record", [&] { return CeDeleteRecord(handle, second) != 0; });
    EXPECT_EQ(Seek(handle, CEDB_SEEK_END), Place(record, 0));
    CloseHandle(handle);
    ExpectSurvival("enumerate", restarted([&] {
                       handle = CeFindFirstDatabase(0);
                       return handle != INVALID_HANDLE_VALUE;
                   }));
    EXPECT_EQ(CeFindNextDatabase(handle), database);
    CloseHandle(handle);
    CEDBASEINFO info = InfoOf(database);
    info.rgSortSpecs[0].dwFlags = 0;
    ExpectSurvival("set", restarted([&] { return CeSetDatabaseInfo(database, &info) != 0; }));
    ExpectSurvival("delete", restarted([&] { return CeDeleteDatabase(database) != 0; }));
    EXPECT_EQ(FailureOf(FindDatabase(u"With little memory")), ERROR_FILE_NOT_FOUND);
    ExpectSurvival("create a key", restarted([&] {
                       return RegCreateKeyExW(HKEY_CURRENT_USER, u"One\\Two", 0, nullptr, 0, KEY_ALL_ACCESS,
                                              nullptr, &key, nullptr) == 0;
                   }));
    ExpectSurvival("set a value",
                   [&] { return RegSetValueExW(key, u"A name of some length", 0, REG_SZ, nullptr, 0) == 0; });
    WCHAR name[MAX_PATH];
    ExpectSurvival("enumerate values", [&] {
        DWORD length = MAX_PATH;
        return RegEnumValueW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr) == 0;
    });
    EXPECT_EQ(RegCloseKey(key), 0);
    EXPECT_EQ(RowsLeft(), 0);
}

} // namespace
