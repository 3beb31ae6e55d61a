// Backups and restores as a user makes them: from the main window, by taps and keys.
#include <QTimer>
#include <filesystem>

#include "app/application.h"
#include "app/start/mainwindow.h"
#include "app/uiservices.h"
#include "backup/backup.h"
#include "backup/restore.h"
#include "platform/controls.h"
#include "platform/text.h"
#include "platform/ui/core/windowobject.h"
#include "resources/resource.h"
#include "tests/backup/backupfixture.h"
#include "tests/support/session.h"

namespace {

constexpr const WCHAR* kArchive = u"\\My Documents\\all.bkp";
const std::u16string kUnreadable = u"Unable to read from file. File may be corrupted.";
using Names = std::vector<std::u16string>;
const QPoint kBelowTheRows(60, 300);

class BackupSession : public Session {
protected:
    BackupSession() { std::filesystem::create_directory(device.folder + "/root/My Documents"); }

    bool Enabled(int id) { return IsWindowEnabled(Control(id)); }
    bool Checked(int id) { return IsDlgButtonChecked(Window(), id) == BST_CHECKED; }

    // Up to the list of the archive's databases.
    void ChooseRestore() {
        InMainWindow();
        PickToOpen(u"all");
        Choose(u"Tools/Restore...");
        InWindow(IDD_SELECTION_LIST);
    }
    void SelectNothing() { stylus.Tap(Control(IDC_LIST), kBelowTheRows); }
    void SelectAllToRestore() {
        TapRow(IDC_SELECTION_LIST, CellText(Control(IDC_SELECTION_LIST), 0, 0));
        Press(Qt::Key_End, Qt::ShiftModifier);
    }
    void AnswerClash(const std::u16string& name, int button) {
        InWindow(IDD_DATABASE_EXISTS);
        EXPECT_EQ(Text(IDC_EXISTS_TEXT), u"Database \"" + name + u"\" already exists.");
        Tap(button);
    }
    // At the main window again.
    void ExpectDatabases(const Names& names) {
        InMainWindow();
        Window();
        EXPECT_EQ(DatabaseNames(), names);
    }
    void TryPassword(const std::u16string& password, const std::u16string& confirmation) {
        InWindow(IDD_PROTECT_BACKUP);
        TypeInto(IDC_PROTECT_PASSWORD, password);
        TypeInto(IDC_PROTECT_CONFIRMATION, confirmation);
        Tap(IDOK);
    }
};

} // namespace

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

TEST_F(BackupSession, CancelOfARestoreLeavesNoHalfDatabase) {
    Bytes archive = FromHex(kPlainArchive);
    const Bytes record = Slice(archive, kPlainRecord, archive.size());
    constexpr WORD kMany = 60'000;
    PutNumber(&archive, kPlainBlock + 76, 0x00010000 | kMany);
    for (int i = 1; i < kMany; ++i)
        archive.insert(archive.end(), record.begin(), record.end());
    PutNumber(&archive, kPlainBlock + 140, static_cast<DWORD>(archive.size()));
    WriteBytes(kArchive, archive);
    MakeSample(u"Keep");
    RunProgram([&] {
        for (const bool overwrite : {false, true}) {
            if (overwrite)
                MakeSample();
            ChooseRestore();
            Tap(IDOK);
            if (overwrite)
                AnswerClash(u"Ab", IDC_EXISTS_OVERWRITE);
            InWindow(IDD_PROGRESS);
            ExpectMessage(u"Abort database restore; Are you sure?", IDNO);
            Tap(IDCANCEL);
            const std::u16string line = Text(IDC_PROGRESS_TEXT);
            EXPECT_TRUE(line.starts_with(u"Restoring Database \"Ab\"\nRecord "));
            EXPECT_TRUE(line.ends_with(u" of 60000"));
            ExpectMessage(u"Abort database restore; Are you sure?", IDYES);
            Tap(IDCANCEL);
            ExpectDatabases({u"Keep"});
        }
    });
}

// The archive is kept as far as it got.
TEST_F(BackupSession, CancelOfABackupStopsAtTheNextRecord) {
    MakeDatabase(u"Big", std::vector<std::vector<SampleValue>>(300, {TextValue(1, u"text")}));
    const auto backUpForLong = [] {
        App().idle = 0;
        BackupEngine engine;
        engine.compress = false;
        EXPECT_TRUE(engine.BeginBackup(App().mainWindow, false, kArchive));
        DWORD complete = 0;
        while (complete < 20'000 && engine.WriteDatabase(u"Big"))
            ++complete;
        EXPECT_TRUE(engine.Finish());
        EXPECT_LT(complete, 20'000u);
        EXPECT_EQ(NumberAt(FileBytes(kArchive), 8), complete + 1); // the entry that was cut off counts
        App().idle = 1;
    };
    RunProgram([&] {
        Window();
        QTimer::singleShot(0, backUpForLong);
        InWindow(IDD_PROGRESS);
        for (const int answer : {IDNO, IDYES}) {
            ExpectMessage(u"Abort database backup; Are you sure?", answer);
            Tap(IDCANCEL);
        }
    });
}

// A second start brings the list up over the progress, and its commands run inside of the one that goes on.
TEST_F(BackupSession, CommandsInsideOfALongOneLeaveItAlone) {
    MakeSample();
    MakeSample(u"Other");
    int disturbed = 0;
    ui::TestHooks().dialog = [&, seen = ui::TestHooks().dialog](const ui::DialogSeen& dialog) {
        seen(dialog);
        if (dialog.dialogTemplate != FindDialogTemplate(IDD_PROGRESS))
            return;
        PostMessageW(App().mainWindow, WM_COMMAND, IDM_REFRESH, 0);
        PostMessageW(App().mainWindow, WM_CLOSE, 0, 0);
        ++disturbed;
    };
    RunProgram([&] {
        SelectNothing();
        Choose(u"Tools/Backup...");
        InWindow(IDD_BACKUP_OPTIONS);
        Tap(IDC_BACKUP_SCRIPT);
        PickToSave(u"all");
        Tap(IDOK);
        InMainWindow();
        Window();
        EXPECT_EQ(NumberAt(FileBytes(kArchive), 8), 2u);
        ExpectMessage(u"File \"\\My Documents\\all.bkp\" already exists; overwrite?", IDYES);
        ExpectMessage(
            u"Backup is complete. Backup file \"\\My Documents\\all.bkp\" has been successfully created.");
        Choose(u"Tools/Autobackup");
        Window();
        DeleteAllBut(u"");
        ChooseRestore();
        SelectAllToRestore();
        Tap(IDOK);
        ExpectDatabases({u"Ab", u"Other"});
    });
    EXPECT_EQ(disturbed, 3);
}

WNDPROC mainProcedure;
LRESULT DestroyOnUserMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return message == WM_USER ? DestroyWindow(window)
                              : CallWindowProcW(mainProcedure, window, message, wParam, lParam);
}

// The program's end is no long command's to keep from its loop, and the command gets by without the window.
TEST_F(BackupSession, EndOfTheProgramEndsALongCommand) {
    MakeSample();
    MakeSample(u"Other");
    WriteBytes(u"\\two.bkp", ArchiveOf(u"XY"));
    RunProgram([] {}); // registers the window's class
    for (const int job : {0, 1, 2, 3}) {
        const bool destroy = job & 1;
        SCOPED_TRACE(job);
        App() = Application();
        ASSERT_TRUE(CreateMainWindow());
        const HWND window = App().mainWindow;
        App().settings->interactive = 0;
        BackupEngine engine;
        engine.generateScript = true;
        ASSERT_TRUE(BackUp(engine, kArchive, {u"Ab", u"Other"}));
        mainProcedure = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(DestroyOnUserMessage)));
        ui::TestHooks().dialog = [=](const ui::DialogSeen&) {
            if (destroy)
                PostMessageW(window, WM_USER, 0, 0);
            else
                PostQuitMessage(0);
        };
        if (job < 2) {
            EXPECT_FALSE(RunAutobackup(window));
            EXPECT_FALSE(FileExists(kArchive));
        } else {
            RestoreCommand(window, u"\\two.bkp");
            EXPECT_EQ(DatabaseNames(), (Names{u"Ab", u"Other"}));
        }
        MSG message;
        EXPECT_FALSE(GetMessageW(&message, nullptr, 0, 0));
        EXPECT_EQ(IsWindow(window), !destroy);
        ui::TestHooks().dialog = nullptr;
        DestroyWindow(window);
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        }
    }
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
