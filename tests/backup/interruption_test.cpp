// Backups and restores that are cancelled, disturbed, or cut off by the program's end.
#include <QTimer>

#include "app/start/mainwindow.h"
#include "app/uiservices.h"
#include "backup/backup.h"
#include "backup/restore.h"
#include "platform/ui/core/windowobject.h"
#include "tests/backup/backupsession.h"

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
