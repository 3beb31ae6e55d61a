// Autobackup scripts, written and replayed, against bytes written down by hand.
#include <cstring>

#include "backup/backup.h"
#include "platform/text.h"
#include "tests/backup/backupfixture.h"

namespace {

constexpr const WCHAR* kArchive = u"\\My Documents\\all.bkp";
constexpr const WCHAR* kScript = u"\\backup.abk";

// The script of a compressed backup of "Ab" into that archive with the password "open".
constexpr const char* kScriptStart = "4c 02 00 00 20 01 00 00 01 00 00 00 00 00 00 00"
                                     "5c 00 4d 00 79 00 20 00 44 00 6f 00 63 00 75 00"
                                     "6d 00 65 00 6e 00 74 00 73 00 5c 00 61 00 6c 00"
                                     "6c 00 2e 00 62 00 6b 00 70 00";

Bytes HandMadeScript() {
    Bytes script = FromHex(kScriptStart);
    script.resize(588 + 72);
    const Bytes password = FromHex("55 5c 4a 5c 5f 5c 54 5c");
    std::copy(password.begin(), password.end(), script.begin() + 536);
    PutNumber(&script, 576, 1);
    PutNumber(&script, 588, 0x00620041); // "Ab"
    return script;
}

class AutobackupTest : public BackupTest {
protected:
    AutobackupTest() {
        std::filesystem::create_directory(device.folder + "/root/My Documents");
        CopyText(settings.scriptName, kScript);
        MakeSample();
    }

    static std::u16string Missing() {
        return u"Autobackup script file doesn't exist or corrupted. Please use backup command to create a "
               u"new "
               u"Autobackup script.";
    }
};

TEST_F(AutobackupTest, BackupLeavesTheDocumentedScript) {
    BackupEngine engine;
    engine.generateScript = true;
    engine.passwordFlag = true;
    std::memcpy(engine.password.text, u"open", sizeof u"open");
    ScramblePassword(&engine.password);
    ASSERT_TRUE(engine.BeginBackup(nullptr, false, kArchive));
    EXPECT_TRUE(engine.WriteDatabase(u"Ab"));
    EXPECT_TRUE(engine.Finish());
    EXPECT_EQ(FileBytes(kScript), HandMadeScript());
}

TEST_F(AutobackupTest, ReplayMakesTheSameBackupAgain) {
    WriteBytes(kScript, HandMadeScript());
    for (int run = 0; run < 2; run++) { // the second one replaces the first one's archive
        ASSERT_TRUE(RunAutobackup(nullptr));
        const Bytes archive = FileBytes(kArchive);
        EXPECT_EQ(Slice(archive, 0, 64), Slice(FromHex(kCompressedArchive), 0, 64));
        EXPECT_EQ(NumberAt(archive, 64), archive.size());
    }

    Bytes nothing = Slice(HandMadeScript(), 0, 588);
    PutNumber(&nothing, 536, 0); // no password
    PutNumber(&nothing, 576, 0);
    WriteBytes(kScript, nothing);
    EXPECT_TRUE(RunAutobackup(nullptr));
    EXPECT_EQ(FileBytes(kArchive).size(), 24u);
}

TEST_F(AutobackupTest, BadScriptsLeaveNoArchive) {
    Bytes wrongMark = HandMadeScript();
    PutNumber(&wrongMark, 4, 289);
    Bytes endlessPath = HandMadeScript();
    std::fill(endlessPath.begin() + 16, endlessPath.begin() + 536, BYTE('a'));
    Bytes countTooLarge = HandMadeScript();
    PutNumber(&countTooLarge, 576, 0xFFFFFFFF);
    Bytes noFolder = HandMadeScript();
    noFolder[18] = 'X';
    Bytes noDatabase = HandMadeScript();
    std::fill(noDatabase.begin() + 588, noDatabase.end(), BYTE('a')); // nor an end of its name
    const std::u16string longName(31, 0x6161);
    const struct {
        const char* what;
        Bytes script;
        std::u16string message;
    } cases[] = {
        {"empty", {}, Missing()},
        {"short", Slice(HandMadeScript(), 0, 587), Missing()},
        {"wrong mark", wrongMark, Missing()},
        {"path without an end", endlessPath, Missing()},
        {"fewer entries than it says", countTooLarge, Missing()},
        {"cut entry", Slice(HandMadeScript(), 0, 659), Missing()},
        {"archive that cannot be made", noFolder,
         u"Couldn't create a new backup file \"\\Xy Documents\\all.bkp\"."},
        {"database that is gone", noDatabase,
         u"Couldn't open \"" + longName + u"\" database: The system cannot find the file specified"},
    };
    for (const auto& bad : cases) {
        SCOPED_TRACE(bad.what);
        WriteBytes(kScript, bad.script);
        ExpectMessage(bad.message);
        EXPECT_FALSE(RunAutobackup(nullptr));
        EXPECT_FALSE(FileExists(kArchive));
    }
    settings.unattended = 1;
    CopyText(settings.scriptName, u"\\missing.abk");
    EXPECT_FALSE(RunAutobackup(nullptr));
}

TEST_F(AutobackupTest, TroubleWithTheScriptDoesNotStopTheBackup) {
    CopyText(settings.scriptName, u"\\no folder\\backup.abk");
    BackupEngine engine;
    engine.generateScript = true;
    ExpectMessage(u"Unable to create Autobackup script, however backup file will be created.");
    ASSERT_TRUE(engine.BeginBackup(nullptr, false, kArchive));
    EXPECT_TRUE(engine.WriteDatabase(u"Ab"));
    EXPECT_TRUE(engine.Finish());
    EXPECT_EQ(NumberAt(FileBytes(kArchive), 8), 1u);
}

} // namespace
