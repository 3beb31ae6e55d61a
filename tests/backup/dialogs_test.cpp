// Backups and restores as a user makes them: from the main window, by taps and keys.
#include <filesystem>

#include "platform/text.h"
#include "tests/backup/backupsession.h"

TEST_F(BackupSession, ProtectedBackupItsRestoreUnderAnotherNameAndItsScript) {
    MakeSample();
    MakeSample(u"Other");
    RunProgram([&] {
        CatchHelp();
        SelectRow(IDC_LIST, u"Ab");
        Choose(u"Tools/Backup...");
        InWindow(IDD_BACKUP_OPTIONS);
        EXPECT_TRUE(Checked(IDC_BACKUP_SELECTED) && Enabled(IDC_BACKUP_SELECTED));
        EXPECT_TRUE(Checked(IDC_BACKUP_COMPRESS));
        EXPECT_FALSE(Enabled(IDC_BACKUP_SCRIPT_PATH) || Enabled(IDC_BACKUP_SCRIPT_BROWSE));
        Tap(IDC_FRAME_HELP);
        EXPECT_EQ(HelpShown(), "tarnwickscope.htm#backup");
        Tap(IDC_BACKUP_PASSWORD);
        Tap(IDC_BACKUP_SCRIPT);
        EXPECT_TRUE(Enabled(IDC_BACKUP_SCRIPT_PATH) && Enabled(IDC_BACKUP_SCRIPT_BROWSE));
        PickToSave(u"nightly");
        Tap(IDC_BACKUP_SCRIPT_BROWSE);
        Tap(IDOK);
        InWindow(IDD_PROTECT_BACKUP); // without a password the options stay
        Tap(IDCANCEL);
        InWindow(IDD_BACKUP_OPTIONS);
        Tap(IDOK);
        ExpectMessage(u"Password must be minimum 4 characters long.");
        TryPassword(u"abc", u"abc");
        ExpectMessage(u"The new password was not correctly confirmed!");
        TryPassword(u"open", u"Open");
        PickToSave(u"all");
        TryPassword(u"open", u"open");
        InMainWindow();
        Window();
        EXPECT_EQ(Slice(FileBytes(kArchive), 0, 64), Slice(FromHex(kCompressedArchive), 0, 64));
        EXPECT_EQ(std::u16string(App().settings->scriptName), u"\\My Documents\\nightly.abk");

        PickToOpen(u"all");
        Choose(u"Tools/Restore...");
        InWindow(IDD_ENTER_PASSWORD);
        TypeInto(IDC_ENTER_PASSWORD, u"OPEN");
        ExpectMessage(u"The password is incorrect!");
        Tap(IDOK);
        Type(u"open"); // over the wrong one, which is selected
        Press(Qt::Key_Return);
        InWindow(IDD_SELECTION_LIST);
        const std::u16string summary = Text(IDC_SELECTION_SUMMARY);
        EXPECT_TRUE(summary.starts_with(u"Compressed; Size 0.03 KB; Stored "));
        EXPECT_TRUE(summary.ends_with(u"; Records 1"));
        Tap(IDOK);
        AnswerClash(u"Ab", IDOK);
        InWindow(IDD_NEW_NAME);
        TypeInto(IDC_NEW_NAME_TO, u"Second");
        Tap(IDOK);
        ExpectDatabases({u"Ab", u"Other", u"Second"});
        EXPECT_EQ(Contents(u"Second"), kSampleContents);

        // The script makes the same archive again.
        ExpectMessage(u"File \"\\My Documents\\all.bkp\" already exists; overwrite?", IDYES);
        ExpectMessage(
            u"Backup is complete. Backup file \"\\My Documents\\all.bkp\" has been successfully created.");
        Choose(u"Tools/Autobackup");
        EXPECT_EQ(Slice(FileBytes(kArchive), 0, 64), Slice(FromHex(kCompressedArchive), 0, 64));
    });
}

TEST_F(BackupSession, AllDatabasesWhenNoneIsSelectedAndCancelAnywhere) {
    MakeSample();
    MakeSample(u"Other");
    RunProgram([&] {
        SelectNothing();
        Choose(u"Tools/Backup...");
        InWindow(IDD_BACKUP_OPTIONS);
        EXPECT_TRUE(Checked(IDC_BACKUP_ALL));
        EXPECT_FALSE(Enabled(IDC_BACKUP_ALL) || Enabled(IDC_BACKUP_SELECTED));
        Press(Qt::Key_Escape);
        InMainWindow();
        Choose(u"Tools/Backup...");
        InWindow(IDD_BACKUP_OPTIONS);
        PickToSave(u"");
        Tap(IDOK);
        InMainWindow();
        Window();
        EXPECT_FALSE(FileExists(kArchive));
        Choose(u"Tools/Backup...");
        InWindow(IDD_BACKUP_OPTIONS);
        PickToSave(u"all");
        Press(Qt::Key_Return);
        InMainWindow();
        Window();
        EXPECT_EQ(NumberAt(FileBytes(kArchive), 8), 2u);
        DeleteAllBut(u"");
        ChooseRestore();
        Tap(IDCANCEL);
        ExpectDatabases({});
    });
}

TEST_F(BackupSession, OnlySelectedRowsAreRestored) {
    WriteBytes(kArchive, ArchiveOf(u"ABC"));
    RunProgram([&] {
        ChooseRestore();
        const HWND list = Control(IDC_SELECTION_LIST);
        EXPECT_EQ(ColumnTexts(list, 0), (Names{u"Ab", u"Bb", u"Cb"}));
        EXPECT_EQ(CellText(list, 0, 1), u"0.03KB");
        EXPECT_EQ(SelectedRow(list), 0);
        TapRow(IDC_SELECTION_LIST, u"Cb");
        const std::u16string summary = Text(IDC_SELECTION_SUMMARY);
        EXPECT_TRUE(summary.starts_with(u"Not compressed; Size 0.03 KB; Stored "));
        EXPECT_TRUE(summary.ends_with(u"2003 09:30; Records 1"));
        Press(Qt::Key_Return);
        ExpectDatabases({u"Cb"});
    });
}

// Each turn comes back to the database that was skipped.
TEST_F(BackupSession, CancelledClashAsksAgainForEachDatabase) {
    MakeSample();
    WriteBytes(kArchive, ArchiveOf(u"ABC"));
    RunProgram([&] {
        ChooseRestore();
        SelectAllToRestore();
        Tap(IDOK);
        for (int i = 0; i < 3; ++i)
            AnswerClash(u"Ab", IDCANCEL);
        ExpectDatabases({u"Ab"});
        // Given up once, the last one stays unvisited.
        ChooseRestore();
        SelectAllToRestore();
        Tap(IDOK);
        AnswerClash(u"Ab", IDOK);
        InWindow(IDD_NEW_NAME);
        Tap(IDCANCEL);
        AnswerClash(u"Ab", IDC_EXISTS_OVERWRITE);
        ExpectDatabases({u"Ab", u"Bb"});
    });
}

TEST_F(BackupSession, DatabaseInUseIsEmptiedOnlyWhenTheUserSaysSo) {
    WriteBytes(kArchive, FromHex(kPlainArchive));
    MakeDatabase(u"Ab", {{TextValue(9, u"mine")}});
    DbHandle other(nullptr);
    ASSERT_NE(other.Open(u"Ab", 0, 0), INVALID_HANDLE_VALUE);
    RunProgram([&] {
        for (const int answer : {IDNO, IDCANCEL, IDYES}) {
            ChooseRestore();
            ExpectMessage(u"Database \"Ab\" is in use by another application. You may need to soft-reset "
                          u"your mobile device after restoring this database. Do you want to restore now?",
                          answer);
            Tap(IDOK);
            AnswerClash(u"Ab", IDC_EXISTS_OVERWRITE);
            InMainWindow();
            Window();
            EXPECT_EQ(Contents(u"Ab"), answer == IDYES ? kSampleContents : u"9=mine\n");
        }
    });
}

TEST_F(BackupSession, DamagedArchives) {
    Bytes archive = FromHex(kPlainArchive);
    PutNumber(&archive, 8, 2);
    WriteBytes(kArchive, archive);
    RunProgram([&] {
        PickToOpen(u"all");
        ExpectMessage(kUnreadable);
        Choose(u"Tools/Restore...");
        // One that shrinks while it is listed fails when it is read again.
        WriteBytes(kArchive, FromHex(kPlainArchive));
        ChooseRestore();
        Window();
        std::filesystem::resize_file(device.folder + "/root/My Documents/all.bkp", 100);
        ExpectMessage(kUnreadable);
        Tap(IDOK);
        ExpectDatabases({});
    });
}

TEST_F(BackupSession, WideScreensHaveTheirOwnTemplates) {
    MakeSample();
    WriteBytes(kArchive, FromHex(kPlainArchive));
    stylus.Resize(840, 640);
    RunProgram([&] {
        Choose(u"Tools/Backup...");
        InWindow(IDD_BACKUP_OPTIONS_LANDSCAPE);
        Tap(IDCANCEL);
        InMainWindow();
        PickToOpen(u"all");
        Choose(u"Tools/Restore...");
        InWindow(IDD_SELECTION_LIST_LANDSCAPE);
        Tap(IDCANCEL);
    });
    stylus.Resize(480, 640);
}
