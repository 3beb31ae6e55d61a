// What a restore changes in the registry, and what it leaves.
#include <algorithm>
#include <csignal>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/ui/core/testhooks.h"
#include "regbackup/registrybackup.h"
#include "tests/platform/otherprocess.h"
#include "tests/regbackup/registryfixture.h"
#include "tests/support/quiettest.h"

namespace {

int writesToDeath = -1; // none: lives on

} // namespace

// In place of the C library's, as the store calls it.
extern "C" ssize_t pwrite64(int descriptor, const void* bytes, size_t count, off64_t offset) {
    if (writesToDeath >= 0 && writesToDeath-- == 0)
        kill(getpid(), SIGKILL);
    return syscall(SYS_pwrite64, descriptor, bytes, count, offset);
}

namespace {

constexpr const WCHAR* kPath = u"\\all.rbk";
const std::u16string kSoftReset = u"You must soft reset your mobile device for changes to take effect.";
const std::u16string kNotStored =
    u"Unable to store registry key. Error code: [0x570 (1392)].\nWarning: If you abort, you may need to "
    u"hard-reset your device!";

class RegistryRestoreTest : public QuietTest {
protected:
    static constexpr int kKeys = 4;

    static constexpr int kBackups = 100;

    static void Save(const WCHAR* path = kPath) { ASSERT_TRUE(RegistryBackup(nullptr, path).Save()); }
    // The same for both values of each of some keys.
    static void SetPairs(const std::u16string& text) {
        for (WCHAR letter = u'a'; letter < u'a' + kKeys; ++letter) {
            SetText(HKEY_LOCAL_MACHINE, std::u16string(1, letter), u"first", text);
            SetText(HKEY_LOCAL_MACHINE, std::u16string(1, letter), u"second", text);
        }
    }
    void Restore(const WCHAR* path = kPath) {
        ExpectMessage(kSoftReset);
        EXPECT_TRUE(RestoreQuietly(path));
    }
    static bool RestoreQuietly(const WCHAR* path = kPath) {
        RegistryBackup restore(nullptr, path);
        return restore.Open() && restore.Restore();
    }
    // No key has one of two values that are set together as it was, and the other as it was to be.
    static void ExpectWholeKeys(const WCHAR* path) {
        const Bytes bytes = FileBytes(path);
        const HANDLE file = CreateFileW(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, 0);
        auto reader = std::make_unique<RecordReader>(file, kHeaderEnd);
        RegKeyRecord record;
        const auto value = [&](const WCHAR* name) {
            for (const auto& held : record.values)
                if (held->name == name)
                    return Bytes(held->data.get(), held->data.get() + held->length);
            return Bytes();
        };
        const DWORD keys = NumberAt(bytes, 64);
        EXPECT_GE(keys, DWORD{kKeys});
        for (DWORD key = 0; key < keys; ++key) {
            ASSERT_TRUE(record.Read(*reader));
            EXPECT_EQ(value(u"first"), value(u"second"));
            EXPECT_EQ(value(u"MatchCase"), value(u"SearchNumProp"));
        }
        CloseHandle(file);
    }
    // From here on no value can be written, or deleted.
    void LockValues() {
        device.RunSql("CREATE TRIGGER locked_in BEFORE INSERT ON vals BEGIN SELECT RAISE(ABORT, ''); END;"
                      "CREATE TRIGGER locked_out BEFORE DELETE ON vals BEGIN SELECT RAISE(ABORT, ''); END");
    }
};

TEST_F(RegistryRestoreTest, EverythingComesBackFromAnEmptyRegistry) {
    MakeSampleKey();
    SetText(HKEY_CLASSES_ROOT, u".тест\\日本", u"ключ", u"значение");
    SetBytes(HKEY_LOCAL_MACHINE, u"deep\\deeper\\deepest", u"", 0xFFFF1234, std::string("\0\xFF", 2));
    SetBytes(HKEY_LOCAL_MACHINE, u"deep", u"no data", REG_MULTI_SZ, "");
    SetBytes(HKEY_LOCAL_MACHINE, u"many", u"long", REG_BINARY, std::string(16384, 'x'));
    const std::string before = WholeRegistry();
    Save();
    device.RunSql("DELETE FROM vals; DELETE FROM keys");
    Restore();
    EXPECT_EQ(WholeRegistry(), before);
}

TEST_F(RegistryRestoreTest, UnchangedRegistryIsNotWritten) {
    MakeSampleKey();
    SetBytes(HKEY_LOCAL_MACHINE, u"a", u"no data", REG_NONE, "");
    Save();
    LockValues();
    Restore();
}

// Quirk: after a deletion the enumeration goes on behind the value that moved up.
TEST_F(RegistryRestoreTest, AddedValuesGoFromKeysThatAreOtherwiseUnchanged) {
    MakeSampleKey();
    const std::string before = WholeRegistry();
    Save();
    for (const WCHAR* name : {u"x1", u"x2", u"x3"})
        SetText(HKEY_CURRENT_USER, u"Ab", name, u"added");
    Restore();
    std::string withSecond = WholeRegistry();
    EXPECT_NE(withSecond.find("x2"), std::string::npos);
    EXPECT_EQ(withSecond.find("x1"), std::string::npos);
    EXPECT_EQ(withSecond.find("x3"), std::string::npos);
    Restore();
    EXPECT_EQ(WholeRegistry(), before);
}

TEST_F(RegistryRestoreTest, ChangedKeyGetsItsValuesAndKeepsWhatWasAdded) {
    MakeSampleKey();
    SetText(HKEY_CURRENT_USER, u"other", u"a", u"b");
    Save();
    SetBytes(HKEY_CURRENT_USER, u"Ab", u"n", REG_BINARY, {"\7\0\0\0", 4}); // the type alone
    SetText(HKEY_CURRENT_USER, u"Ab", u"added", u"stays");
    SetText(HKEY_CURRENT_USER, u"Ab\\below", u"added", u"stays");
    SetText(HKEY_CURRENT_USER, u"beside", u"added", u"stays");
    DeleteValue(HKEY_CURRENT_USER, u"other", u"a");
    Restore();

    const std::string restored = WholeRegistry();
    MakeSampleKey();
    SetText(HKEY_CURRENT_USER, u"other", u"a", u"b");
    EXPECT_EQ(WholeRegistry(), restored);
    EXPECT_EQ(std::count(restored.begin(), restored.end(), '\n'), 3 + 4 + 6); // main keys, keys, values
    EXPECT_NE(restored.find("added"), std::string::npos);
}

// Two values whose names differ only by case meet in one: the first of the file is written last.
TEST_F(RegistryRestoreTest, ValuesAreWrittenFromTheLastToTheFirst) {
    MakeSampleKey();
    const std::string before = WholeRegistry();
    Bytes file = FromHex(kSampleFile);
    const Bytes value = Slice(file, file.size() - 20, 20);
    PutNumber(&file, kHeaderEnd, 3);
    file.insert(file.end(), value.begin(), value.end());
    file[file.size() - 16] = 'N';
    file[file.size() - 4] = 9;
    WriteBytes(kPath, file);
    SetBytes(HKEY_CURRENT_USER, u"Ab", u"n", REG_DWORD, "changed");
    Restore();
    EXPECT_EQ(WholeRegistry(), before);
}

TEST_F(RegistryRestoreTest, KeyThatCannotBeWrittenIsAskedAbout) {
    MakeSampleKey();
    SetText(HKEY_LOCAL_MACHINE, u"later", u"a", u"saved");
    const std::string saved = WholeRegistry();
    Save();
    SetText(HKEY_CURRENT_USER, u"Ab", u"", u"changed");
    SetText(HKEY_CURRENT_USER, u"Ab", u"n", u"changed");
    const std::string laterSaved = WholeRegistry();
    SetText(HKEY_LOCAL_MACHINE, u"later", u"a", u"changed");
    const std::string changed = WholeRegistry();
    // The key's last value is written first, so one could stand there without the other.
    device.RunSql("CREATE TRIGGER locked BEFORE UPDATE ON vals WHEN old.name = '' AND old.key = "
                  "(SELECT id FROM keys WHERE name = 'Ab') BEGIN SELECT RAISE(ABORT, ''); END");

    ExpectMessage(kNotStored, IDABORT);
    EXPECT_FALSE(RestoreQuietly());
    EXPECT_EQ(WholeRegistry(), changed);

    ExpectMessage(kNotStored, IDRETRY);
    ExpectMessage(kNotStored, IDIGNORE);
    Restore();
    EXPECT_EQ(WholeRegistry(), laterSaved);

    ui::TestHooks().messageBox = [&](const ui::MessageBoxSeen& box) {
        const bool asks = box.text == kNotStored;
        EXPECT_EQ(storage::TheStore()->connection.Execute("DROP TRIGGER IF EXISTS locked"), 0);
        ui::AnswerMessageBox(asks ? IDRETRY : IDOK);
    };
    EXPECT_TRUE(RestoreQuietly());
    EXPECT_EQ(WholeRegistry(), saved);
}

TEST_F(RegistryRestoreTest, RefusedValueLeavesItsKeyAsItWas) {
    constexpr std::size_t kTooLong = (1 << 20) + 1;
    Bytes file = FromHex(kSampleFile);
    const std::size_t lengthAt =
        kHeaderEnd + 36; // of the first value's data; the second one is set before it
    file.insert(file.begin() + lengthAt + 4, kTooLong - NumberAt(file, lengthAt), 'x');
    WriteBytes(kPath, Changed(file, lengthAt, kTooLong));
    SetText(HKEY_CURRENT_USER, u"Ab", u"n", u"of before");
    const std::string before = WholeRegistry();
    ExpectMessage(
        u"Unable to store registry key. Error code: [0x57 (87)].\nWarning: If you abort, you may need to "
        u"hard-reset your device!",
        IDIGNORE);
    Restore();
    EXPECT_EQ(WholeRegistry(), before);
}

// Beside another process that saves settings and restores keys, which both change as a whole.
TEST_F(RegistryRestoreTest, BackupsBesideOtherProcessesHaveWholeKeys) {
    SetPairs(u"old");
    Save(u"\\old.rbk");
    SetPairs(u"new");
    Save();
    const std::string saved = Listing(HKEY_LOCAL_MACHINE);
    device.Restart();
    OtherProcess other({[this] {
        for (DWORD generation = 1; generation <= 100; ++generation) {
            Settings window;
            window.matchCase = window.searchNumProp = generation;
            Restore(u"\\old.rbk");
            Restore();
        }
        return !HasFailure();
    }});
    const std::u16string name = u"\\beside";
    other.Start(0);
    for (int i = 0; i < kBackups; ++i)
        Save((name + std::u16string(i, u'x')).c_str());
    EXPECT_TRUE(other.Await());
    EXPECT_EQ(Listing(HKEY_LOCAL_MACHINE), saved);
    for (int i = 0; i < kBackups; ++i)
        ExpectWholeKeys((name + std::u16string(i, u'x')).c_str());
}

// At each of a restore's writes to the store it is killed once; then each key has both of its values of
// before, or both of the file.
TEST_F(RegistryRestoreTest, KilledRestoreLeavesNoKeyHalfWay) {
    SetPairs(u"new");
    const std::string saved = WholeRegistry();
    Save();
    bool killed = true;
    bool partial = false;
    for (int writes = 0; killed; ++writes) {
        SetPairs(u"old");
        device.Restart();
        int status = 0;
        const pid_t child = fork();
        if (child == 0) {
            writesToDeath = writes;
            Restore();
            _exit(0);
        }
        ASSERT_EQ(waitpid(child, &status, 0), child);
        killed = WIFSIGNALED(status);
        device.Restart();
        const std::string now = Listing(HKEY_LOCAL_MACHINE);
        int restored = 0;
        for (std::size_t at = now.find("\\0w"); at != std::string::npos; at = now.find("\\0w", at + 1))
            ++restored;
        EXPECT_EQ(restored % 2, 0) << now;
        partial = partial || (restored > 0 && restored < 2 * kKeys);
    }
    EXPECT_TRUE(partial);
    EXPECT_EQ(WholeRegistry(), saved);
}

} // namespace
