// The program among the host's other programs: files that are opened, dropped and dragged out, text for their
// clipboard, the window's title and place, and the end of the user's session.
#include <QClipboard>
#include <QDropEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>
#include <QTest>
#include <QUrl>
#include <QWidget>
#include <csignal>
#include <filesystem>

#include "app/application.h"
#include "app/start/commandline.h"
#include "platform/base/instance.h"
#include "platform/controls.h"
#include "platform/ui/core/windowobject.h"
#include "resources/resource.h"
#include "tests/platform/otherprocess.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/session.h"

namespace {

class HostTest : public Session {
protected:
    HostTest() {
        MakeDatabase(u"A", {{TextValue(1, u"text")}});
        MakeDatabase(u"B", {{TextValue(1, u"other"), NumberValue(2, CEVT_I4, 5)}});
    }
    static QWidget* Display() { return App().mainWindow->widget->window(); }
    QUrl HostFile(const std::string& name) const {
        return QUrl::fromLocalFile(QString::fromStdString(device.folder + "/root/" + name));
    }
    // By the host's own events, as a file manager causes them.
    bool Drop(const QList<QUrl>& files) {
        QMimeData data;
        data.setUrls(files);
        const QPoint middle = Display()->rect().center();
        QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(Display(), &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(Display(), &drop);
        stylus.Settle();
        return true;
    }
    static void DeleteEveryDatabase() {
        const HANDLE databases = CeFindFirstDatabase(0);
        for (CEOID oid; (oid = CeFindNextDatabase(databases)) != 0;)
            CeDeleteDatabase(oid);
        CloseHandle(databases);
    }
    void ExpectRestoreOf(const std::vector<std::u16string>& names) {
        InWindow(IDD_SELECTION_LIST);
        EXPECT_EQ(ColumnTexts(Control(IDC_SELECTION_LIST), 0), names);
        Press(Qt::Key_Escape);
        InMainWindow();
        Window();
    }
};

} // namespace

TEST_F(HostTest, DroppedFilesAreOpenedByTheirKind) {
    RunCommandLine(u"-B \\all.bkp -D -P");
    RunProgram([&] {
        Window();
        EXPECT_FALSE(Drop({QUrl(u"https://example.org/all.bkp"_qs)}));
        ExpectMessage(u"File \"\\notes.txt\" is no backup, Autobackup script or registry backup.");
        EXPECT_TRUE(Drop({HostFile("all.bkp"), HostFile("notes.txt")}));
        ExpectRestoreOf({u"A", u"B"});
        ExpectMessage(u"Run Autobackup script \"\\nightly.ABK\" now?", IDNO);
        EXPECT_TRUE(Drop({HostFile("nightly.ABK")}));
        ExpectMessage(u"Unable to open registry backup file \"\\none.rbk\".");
        Window();
        EXPECT_TRUE(Drop({HostFile("none.rbk")}));
        EXPECT_NE(std::u16string(App().settings->scriptName), u"\\nightly.ABK");
    });
}

TEST_F(HostTest, FilesOpenedElsewhereWaitForTheCommandThatRuns) {
    RunCommandLine(u"-B \\all.bkp -D -P");
    SetStartDocument(u"\\all.bkp"); // what this process itself was started with
    RunProgram([&] {
        ExpectRestoreOf({u"A", u"B"});
        Choose(u"Tools/Options...");
        InWindow(IDD_OPTIONS);
        Window();
        EXPECT_FALSE(Drop({HostFile("all.bkp")})) << "the dialog takes none";
        const std::u16string known = QString::fromUtf16(kMainWindowClass).toLower().toStdU16String();
        for (int i = 0; i < 40; ++i) { // more than are heard at a time
            SetStartDocument(i % 20 ? u"" : i ? u"\\all.txt" : u"\\all.bkp");
            EXPECT_TRUE(RequestForeground(known.c_str()));
        }
        SetStartDocument(u"\\all.bkp");
        EXPECT_TRUE(RequestForeground(known.c_str()));
        SetStartDocument({});
        Tap(IDC_OPTIONS_BOLD);
        ExpectMessage(u"File \"\\all.txt\" is no backup, Autobackup script or registry backup.");
        Tap(IDCANCEL);
        InWindow(IDD_SELECTION_LIST);
        Press(Qt::Key_Escape);
        ExpectRestoreOf({u"A", u"B"});
    });
}

TEST_F(HostTest, ADatabaseDraggedOutIsAnArchiveOfIt) {
    QList<QUrl> files;
    ui::TestHooks().drag = [&](const QMimeData& data) { files = data.urls(); };
    RunProgram([&] {
        const HWND list = Control(IDC_LIST);
        stylus.DragRow(list, u"B", QPoint(0, 40));
        ASSERT_EQ(files.size(), 1);
        EXPECT_EQ(files[0].fileName().toStdString(), "B.bkp");
        EXPECT_TRUE(Drop(files));
        ExpectRestoreOf({u"B"});
        EXPECT_EQ(SelectedText(IDC_LIST), u"B");
        // Whoever is asked for a database that is gone by now reports that when the drag is over.
        ui::TestHooks().drag = [&](const QMimeData& data) {
            DeleteEveryDatabase();
            EXPECT_TRUE(data.urls().empty());
        };
        ExpectMessage(u"Unable to write the file. Possibly not enough storage space.");
        stylus.DragRow(list, u"B", QPoint(40, 0));
        Window();
    });
}

TEST_F(HostTest, AnyDatabaseCanBeDraggedOut) {
    const struct {
        const WCHAR* database;
        QString file;
    } known[] = {
        {u"a/b\\c", "a_b_c.bkp"}, {u".d", "_d.bkp"}, {u"e\xd800", "e?.bkp"}, {u"%41\n", "%41\n.bkp"}};
    QList<QUrl> files;
    ui::TestHooks().drag = [&](const QMimeData& data) { files = data.urls(); };
    for (const auto& each : known)
        MakeDatabase(each.database, {});
    RunProgram([&] {
        for (const auto& [database, file] : known) {
            stylus.DragRow(Control(IDC_LIST), database, QPoint(0, 40));
            ASSERT_EQ(files.size(), 1) << file.toStdString();
            const QFileInfo found(files[0].toLocalFile());
            EXPECT_TRUE(found.fileName() == file && found.size() > 0) << found.filePath().toStdString();
        }
    });
}

TEST_F(HostTest, RowsAndValuesAreTextForOtherPrograms) {
    RunProgram([&] {
        SelectRow(IDC_LIST, u"A");
        Press(Qt::Key_Down, Qt::ShiftModifier);
        Press(Qt::Key_Insert, Qt::ControlModifier);
        const QString text = QGuiApplication::clipboard()->text();
        EXPECT_TRUE(text.startsWith(QStringLiteral("A\t0.0")) && text.contains(QStringLiteral("\r\nB\t")))
            << text.toStdString();
        EXPECT_EQ(text.count(u'\t'), 4);
        TapRow(IDC_LIST, u"B");
        InWindow(IDD_VIEWER);
        SelectRow(IDC_VIEWER_LIST, u"LONG");
        Press(Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), "5");
        EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->formats().size(), 2);
        Press(Qt::Key_Escape);
        InMainWindow();
    });
}

TEST_F(HostTest, TheWindowIsNamedAndFoundAgain) {
    const QString device = QString::fromStdString(this->device.folder).section('/', -1);
    QSize size;
    RunProgram([&] {
        Window();
        EXPECT_EQ(Display()->windowTitle(), QStringLiteral("Pocket Strandview \u2013 ") + device);
        Choose(u"Tools/About...");
        InWindow(IDD_ABOUT);
        EXPECT_TRUE(Text(IDC_ABOUT_DISK).starts_with(u"The store takes ")) << Text(IDC_ABOUT_DISK).size();
        Tap(IDOK);
        InMainWindow();
        stylus.Resize(400, 500);
        TapRow(IDC_LIST, u"B");
        InWindow(IDD_VIEWER);
        Window();
        EXPECT_EQ(Display()->windowTitle(),
                  QStringLiteral("Database: \"B\" \u2013 Pocket Strandview \u2013 ") + device);
        // The host's own way to close a window keeps what is typed, if the user says so.
        SelectRow(IDC_VIEWER_LIST, u"TEXT");
        TypeInto(IDC_VALUE_TEXT, u"typed");
        ExpectMessage(
            u"The property data has changed. Do you what to overwrite it?\n\nWARNING: changing a property of "
            u"a system database may cause your device to stop functioning property and require a hard reset!",
            IDYES);
        stylus.CloseDisplay();
        InMainWindow();
        Window();
    });
    EXPECT_EQ(Contents(u"B"), u"1=typed 2=5\n");
    EXPECT_TRUE(std::filesystem::exists(this->device.folder + "/config/pocket-strandview/display.ini"));
}

TEST_F(HostTest, ASignalToEndSavesTheSettings) {
    if (testing::UnitTest::GetInstance()->test_to_run_count() > 1)
        GTEST_SKIP() << "the display of a test before this one would be shared with the other process";
    const std::string temporary = device.folder + "/tmp";
    std::filesystem::create_directory(temporary);
    OtherProcess program({[&] {
        qputenv("TMPDIR", temporary.c_str());
        ui::TestHooks().drag = [&](const QMimeData& data) { EXPECT_EQ(data.urls().size(), 1); };
        RunProgram([&] {
            stylus.DragRow(Control(IDC_LIST), u"B", QPoint(0, 40));
            EXPECT_FALSE(std::filesystem::is_empty(temporary));
            Choose(u"View/Arrange by Size");
            std::raise(SIGTERM);
            WaitFor([] { return false; }, "the end");
        });
        return true;
    }});
    EXPECT_FALSE(program.Run(0));
    EXPECT_TRUE(std::filesystem::is_empty(temporary)) << "what was dragged out";
    const Settings settings;
    EXPECT_EQ(settings.sortKey, kSortBySize);
    EXPECT_NE(settings.selection[0], kNoSelection);
}
