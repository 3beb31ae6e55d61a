// What a restore changes in the registry, and what it leaves.
#include <algorithm>
#include <csignal>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/ui/core/testhooks.h"
#include "regbackup/registrybackup.h"
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
    static void Save() { ASSERT_TRUE(RegistryBackup(nullptr, kPath).Save()); }
    void Restore() {
        ExpectMessage(kSoftReset);
        EXPECT_TRUE(RestoreQuietly());
    }
    static bool RestoreQuietly() {
        RegistryBackup restore(nullptr, kPath);
        return restore.Open() && restore.Restore();
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

// At each of a restore's writes to the store it is killed once; then each key has both of its values of
// before, or both of the file.
TEST_F(RegistryRestoreTest, KilledRestoreLeavesNoKeyHalfWay) {
    constexpr int kKeys = 4;
    const auto setAll = [](const std::u16string& text) {
        for (WCHAR letter = u'a'; letter < u'a' + kKeys; ++letter) {
            SetText(HKEY_LOCAL_MACHINE, std::u16string(1, letter), u"first", text);
            SetText(HKEY_LOCAL_MACHINE, std::u16string(1, letter), u"second", text);
        }
    };
    setAll(u"new");
    const std::string saved = WholeRegistry();
    Save();
    bool killed = true;
    bool partial = false;
    for (int writes = 0; killed; ++writes) {
        setAll(u"old");
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
