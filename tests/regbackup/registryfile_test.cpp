// Registry backup files: against bytes written down by hand, and with everything that a file may hold.
#include <algorithm>
#include <cstring>

#include "platform/ui/core/testhooks.h"
#include "regbackup/registrybackup.h"
#include "tests/regbackup/registryfixture.h"
#include "tests/support/quiettest.h"

namespace {

constexpr const WCHAR* kPath = u"\\all.rbk";
constexpr std::size_t kFirstLength = kHeaderEnd + 8;  // of the path
constexpr std::size_t kClassLength = kHeaderEnd + 18; // of the class
constexpr std::size_t kNameLength = kHeaderEnd + 26;  // of the first value's name
constexpr std::size_t kDataLength = kNameLength + 10; // of its data
const std::u16string kUnreadable = u"Unable to read from registry backup file. File may be corrupted.";
const std::u16string kNotRead = u"Unable to read registry database.";
const std::u16string kSoftReset = u"You must soft reset your mobile device for changes to take effect.";

class RegistryFileTest : public QuietTest {
protected:
    static bool Restore(const Bytes& bytes) {
        WriteBytes(kPath, bytes);
        RegistryBackup restore(nullptr, kPath);
        return restore.Open() && restore.Restore();
    }
    // The time is that of the test's run: it is looked at, then put back to that of the bytes by hand.
    static Bytes WithSampleTime(Bytes written) {
        SYSTEMTIME now, stored = {};
        FILETIME time;
        GetLocalTime(&now);
        std::memcpy(&time, written.data() + 56, sizeof time);
        EXPECT_TRUE(FileTimeToSystemTime(&time, &stored));
        EXPECT_EQ(now.wYear, stored.wYear);
        const Bytes sample = FromHex(kSampleFile);
        std::copy_n(sample.begin() + 56, sizeof time, written.begin() + 56);
        return written;
    }
    // Says in the end whether the file was refused with the message for it, or restored.
    void ExpectCleanEnd(const Bytes& bytes) {
        std::u16string told;
        ui::TestHooks().messageBox = [&](const ui::MessageBoxSeen& box) {
            told += box.text;
            ui::AnswerMessageBox(IDOK);
        };
        EXPECT_EQ(Restore(bytes) ? kSoftReset : kUnreadable, told);
    }
};

TEST_F(RegistryFileTest, FileHasTheDocumentedBytes) {
    MakeSampleKey();
    SetText(HKEY_LOCAL_MACHINE, u"a\\b", u"", u"not chosen");
    RegistryBackup backup(nullptr, kPath);
    backup.saveClassesRoot = backup.saveLocalMachine = false;
    ASSERT_TRUE(backup.Save());
    EXPECT_EQ(WithSampleTime(FileBytes(kPath)), FromHex(kSampleFile));

    RegistryBackup protectedOne(nullptr, u"\\protected.rbk");
    protectedOne.saveClassesRoot = protectedOne.saveCurrentUser = false;
    protectedOne.password = {u"open"};
    ScramblePassword(&protectedOne.password);
    ASSERT_TRUE(protectedOne.Save());
    const Bytes bytes = FileBytes(u"\\protected.rbk");
    EXPECT_EQ(Slice(bytes, 8, 12), FromHex("55 5c 4a 5c 5f 5c 54 5c 00 00 00 00"));
    EXPECT_EQ(NumberAt(bytes, 48), kLocalMachineSaved);
    EXPECT_EQ(NumberAt(bytes, 64), 1u); // "a" has no values of its own
    EXPECT_EQ(NumberAt(bytes, kHeaderEnd + 4), 0x80000002);

    RegistryBackup nothing(nullptr, u"\\nothing.rbk");
    nothing.saveCurrentUser = nothing.saveLocalMachine = false;
    ASSERT_TRUE(nothing.Save());
    EXPECT_EQ(FileBytes(u"\\nothing.rbk").size(), kHeaderEnd);
}

TEST_F(RegistryFileTest, EveryTruncationIsRefused) {
    const Bytes file = FromHex(kSampleFile);
    for (std::size_t length = 0; length < file.size(); ++length) {
        SCOPED_TRACE(length);
        ExpectMessage(kUnreadable);
        EXPECT_FALSE(Restore(Slice(file, 0, length)));
    }
    EXPECT_EQ(Listing(HKEY_CURRENT_USER), "");
}

TEST_F(RegistryFileTest, EveryChangedByteIsRestoredOrRefused) {
    const Bytes file = FromHex(kSampleFile);
    for (std::size_t offset = 0; offset < file.size(); ++offset) {
        if (offset == 8 || offset == 9) // there begins a password, which is asked for
            continue;
        for (const BYTE change : {0x01, 0xFF}) {
            SCOPED_TRACE(testing::Message() << offset << " by " << int(change));
            Bytes changed = file;
            changed[offset] ^= change;
            if (NumberAt(changed, 64) == 0) // no keys: nothing to tell
                continue;
            ExpectCleanEnd(changed);
        }
    }
}

TEST_F(RegistryFileTest, LengthsAndOffsetsThatLieAreRefused) {
    const Bytes file = FromHex(kSampleFile);
    Bytes longPath = Slice(file, 0, kFirstLength + 4);
    PutNumber(&longPath, kFirstLength, 520); // 259 characters and a terminator have 520 bytes
    longPath.resize(longPath.size() + 518, 'a');
    longPath.resize(longPath.size() + 2, 0);
    const Bytes rest = Slice(file, kClassLength, file.size());
    longPath.insert(longPath.end(), rest.begin(), rest.end());

    Bytes unended = file;
    unended[kFirstLength + 8] = 'c'; // where the path's terminator was
    Bytes endedEarly = file;
    endedEarly[kFirstLength + 6] = 0;

    const Bytes wrong[] = {
        longPath,
        unended,
        endedEarly,
        Changed(file, kFirstLength, 5), // half a character
        Changed(file, kFirstLength, 4), // without its terminator
        Changed(file, kClassLength, 0), // not even a terminator
        Changed(file, kNameLength, 0xFFFFFFFE),
        Changed(file, kDataLength, 0xFFFFFFFF),
        Changed(file, kDataLength, 0x7FFFFFF0),
        Changed(file, kHeaderEnd, 0xFFFFFFFF), // values
        Changed(file, kHeaderEnd, 0x7FFFFFFF),
        Changed(file, kHeaderEnd, 0),
        Changed(file, kHeaderEnd + 4, 0x80000003), // no main key
        Changed(file, 64, 0xFFFFFFFF),             // keys
        Changed(file, 52, 0xFFFFFFFF),             // offset of the keys
        Changed(file, 52, 0x7FFFFFFF),
        Changed(file, 52, static_cast<DWORD>(file.size())),
    };
    for (std::size_t i = 0; i < std::size(wrong); ++i) {
        SCOPED_TRACE(i);
        ExpectMessage(kUnreadable);
        EXPECT_FALSE(Restore(wrong[i]));
    }

    // A count of no keys is no failure that anybody is told of, and no success either.
    EXPECT_FALSE(Restore(Changed(file, 64, 0)));
}

TEST_F(RegistryFileTest, ValueThatIsTooLongLeavesNoFile) {
    SetBytes(HKEY_LOCAL_MACHINE, u"a", u"just fits", REG_BINARY, std::string(16384, 'x'));
    ASSERT_TRUE(RegistryBackup(nullptr, kPath).Save());
    EXPECT_TRUE(FileExists(kPath));
    const std::string before = WholeRegistry();
    DeleteValue(HKEY_LOCAL_MACHINE, u"a", u"just fits");
    ExpectMessage(kSoftReset);
    EXPECT_TRUE(Restore(FileBytes(kPath)));
    EXPECT_EQ(WholeRegistry(), before);

    SetBytes(HKEY_LOCAL_MACHINE, u"a", u"too long", REG_BINARY, std::string(16385, 'x'));
    ExpectMessage(kNotRead);
    EXPECT_FALSE(RegistryBackup(nullptr, u"\\other.rbk").Save());
    EXPECT_FALSE(FileExists(u"\\other.rbk"));
}

} // namespace
