// Autobackup scripts, written and replayed, against bytes written down by hand.
#include "platform/files.h"
#include "platform/text.h"
#include "tests/backup/backupfixture.h"
#include "tests/support/resourcelimit.h"

namespace {

constexpr const WCHAR* kArchive = u"\\My Documents\\all.bkp";
constexpr const WCHAR* kScript = u"\\backup.abk";

// The script of a compressed backup of "Ab" into that archive with the password "open".
constexpr const char* kScriptStart = "4c 02 00 00 20 01 00 00 01 00 00 00 00 00 00 00"
                                     "5c 00 4d 00 79 00 20 00 44 00 6f 00 63 00 75 00"
                                     "6d 00 65 00 6e 00 74 00 73 00 5c 00 61 00 6c 00"
                                     "6c 00 2e 00 62 00 6b 00 70 00";

const std::u16string kMissing =
    u"Autobackup script file doesn't exist or corrupted. Please use backup command "
    u"to create a new Autobackup script.";

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
};

TEST_F(AutobackupTest, BackupLeavesTheDocumentedScript) {
    BackupEngine engine;
    engine.generateScript = true;
    engine.passwordFlag = true;
    engine.password = {u"open"};
    ScramblePassword(&engine.password);
    ASSERT_TRUE(BackUp(engine, kArchive, {u"Ab"}));
    EXPECT_EQ(FileBytes(kScript), HandMadeScript());
}

TEST_F(AutobackupTest, ReplayMakesTheSameBackupAgain) {
    WriteBytes(kScript, HandMadeScript());
    for (int run = 0; run < 2; ++run) { // the second one replaces the first one's archive
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
    Bytes endlessPath = HandMadeScript();
    std::fill(endlessPath.begin() + 16, endlessPath.begin() + 536, BYTE('a'));
    Bytes noDatabase = HandMadeScript();
    std::fill(noDatabase.begin() + 588, noDatabase.end(), BYTE('a')); // nor an end of its name
    const std::u16string longName(31, 0x6161);
    const struct {
        const char* what;
        Bytes script;
        std::u16string message;
    } cases[] = {
        {"empty", {}, kMissing},
        {"short", Slice(HandMadeScript(), 0, 587), kMissing},
        {"wrong mark", Changed(HandMadeScript(), 4, 289), kMissing},
        {"path without an end", endlessPath, kMissing},
        {"fewer entries than it says", Changed(HandMadeScript(), 576, 0xFFFFFFFF), kMissing},
        {"cut entry", Slice(HandMadeScript(), 0, 659), kMissing},
        {"archive that cannot be made", Changed(HandMadeScript(), 18, 0x00790058), // "Xy"
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

TEST_F(AutobackupTest, ArchiveThatIsThereStaysUnlessAUserSaysNo) {
    const std::u16string overwrite = u"File \"" + std::u16string(kArchive) + u"\" already exists; overwrite?";
    WriteBytes(kScript, HandMadeScript());
    const Bytes older = FromHex(kPlainArchive);
    WriteBytes(kArchive, older);
    settings.interactive = 1;
    ExpectMessage(overwrite, 0); // nobody was asked
    EXPECT_FALSE(RunAutobackup(nullptr));
    EXPECT_EQ(FileBytes(kArchive), older);
    ExpectMessage(overwrite, IDNO);
    EXPECT_FALSE(RunAutobackup(nullptr));
    EXPECT_FALSE(FileExists(kArchive));
}

// Whatever a job comes to, the archive and the script that were there can still be had.
TEST_F(AutobackupTest, OlderFilesStayWhenAJobFails) {
    const std::u16string kept = std::u16string(kArchive) + u"~";
    const std::u16string keptScript = std::u16string(kScript) + u"~";
    BackupEngine first;
    first.generateScript = true;
    ASSERT_TRUE(BackUp(first, kArchive, {u"Ab"}));
    const Bytes older = FileBytes(kArchive);
    const Bytes olderScript = FileBytes(kScript);

    MakeSample(u"Other");
    BackupEngine second;
    second.generateScript = true;
    ExpectMessage(u"Couldn't open \"Missing\" database: The system cannot find the file specified");
    EXPECT_FALSE(BackUp(second, kArchive, {u"Other", u"Missing"}));
    EXPECT_EQ(NumberAt(FileBytes(kArchive), 8), 1u); // as far as it got
    EXPECT_EQ(FileBytes(kept.c_str()), older);
    EXPECT_EQ(FileBytes(keptScript.c_str()), olderScript);

    WriteBytes(kArchive, older);
    WriteBytes(kScript, olderScript);
    DeleteFileW(kept.c_str());
    DeleteFileW(keptScript.c_str());
    BackupEngine third;
    third.generateScript = true;
    ASSERT_TRUE(BackUp(third, kArchive, {u"Ab"}));
    EXPECT_FALSE(FileExists(kept.c_str()) || FileExists(keptScript.c_str()));
    DeleteAllBut(u"");
    ExpectMessage(u"Couldn't open \"Ab\" database: The system cannot find the file specified");
    EXPECT_FALSE(RunAutobackup(nullptr));
    EXPECT_FALSE(FileExists(kArchive));
    EXPECT_TRUE(FileExists(kept.c_str()));
}

TEST_F(AutobackupTest, TroubleWithTheScriptDoesNotStopTheBackup) {
    CopyText(settings.scriptName, u"\\no folder\\backup.abk");
    BackupEngine engine;
    engine.generateScript = true;
    const WCHAR* const trouble = u"Unable to create Autobackup script, however backup file will be created.";
    ExpectMessage(trouble);
    ASSERT_TRUE(BackUp(engine, kArchive, {u"Ab"}));
    EXPECT_EQ(NumberAt(FileBytes(kArchive), 8), 1u);

    // Of one that the disk has no room for nothing stays.
    CopyText(settings.scriptName, kScript);
    BackupEngine second;
    second.generateScript = true;
    ASSERT_TRUE(second.BeginBackup(nullptr, false, u"\\second.bkp"));
    {
        const ResourceLimit smallFiles(RLIMIT_FSIZE, 600); // the archive is smaller
        ExpectMessage(trouble);
        EXPECT_TRUE(second.WriteDatabase(u"Ab"));
    }
    EXPECT_TRUE(second.Finish());
    EXPECT_FALSE(FileExists(kScript));
}

} // namespace
