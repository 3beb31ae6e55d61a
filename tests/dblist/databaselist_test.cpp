// The list of databases, its views and orders, and the commands on whole databases, as a user works with
// them.
#include <filesystem>
#include <fstream>

#include "app/application.h"
#include "dblist/databaselist.h"
#include "platform/controls.h"
#include "platform/datetime.h"
#include "platform/menu.h"
#include "platform/shell.h"
#include "resources/resource.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/usersession.h"

namespace {

using Names = std::vector<std::u16string>;

class DatabaseListTest : public UserSession {
protected:
    DatabaseListTest() {
        MakeDatabase(u"beta", {{TextValue(1, std::u16string(2000, u'x'))}});
        MakeDatabase(u"Alpha", {{TextValue(1, u"short")}});
        MakeDatabase(u"gamma.new", {});
        MakeDatabase(u"\\System", {{NumberValue(1, CEVT_I4, 1)}});
    }
    void ExpectNames(Names names) {
        Do([names](HWND window) { EXPECT_EQ(Column(GetDlgItem(window, IDC_LIST), 0), names); });
    }
    void TapColumn(int column) {
        Do([column](HWND window) {
            NMLISTVIEW click = {};
            click.hdr = {GetDlgItem(window, IDC_LIST), IDC_LIST, LVN_COLUMNCLICK};
            click.iSubItem = column;
            SendMessageW(window, WM_NOTIFY, IDC_LIST, reinterpret_cast<LPARAM>(&click));
        });
    }
    static FILETIME ModifiedTime(const WCHAR* name) {
        DbHandle database(nullptr);
        CEDBASEINFO info;
        database.Open(name, 0, 0);
        EXPECT_TRUE(database.GetInfo(&info));
        return info.ftLastModified;
    }
    // Greyed or not: a greyed item is found so by trying to grey it again.
    static bool IsEnabled(UINT command) {
        const HMENU menu = reinterpret_cast<HMENU>(SendMessageW(App().menuBar, SHCMBM_GETMENU, 0, 0));
        const int before = EnableMenuItem(menu, command, MF_BYCOMMAND | MF_GRAYED);
        EnableMenuItem(menu, command, MF_BYCOMMAND | static_cast<UINT>(before));
        return before == static_cast<int>(MF_ENABLED);
    }
};

} // namespace

TEST_F(DatabaseListTest, ShowsSortsAndRemembers) {
    ExpectNames({u"Alpha", u"beta", u"gamma.new"});
    Do([](HWND window) {
        const HWND list = GetDlgItem(window, IDC_LIST);
        EXPECT_EQ(RowText(list, 2, 1), u"0.00KB");
        LVITEMW item = {};
        item.mask = LVIF_IMAGE;
        item.iItem = 2;
        SendMessageW(list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        EXPECT_EQ(item.iImage, 4); // empty
    });
    TapColumn(1);
    ExpectNames({u"gamma.new", u"Alpha", u"beta"});
    TapColumn(1);
    ExpectNames({u"beta", u"Alpha", u"gamma.new"});
    Choose(IDM_ARRANGE_BY_SIZE); // the key already: the direction stays
    ExpectNames({u"beta", u"Alpha", u"gamma.new"});
    Choose(IDM_ARRANGE_BY_NAME);
    ExpectNames({u"gamma.new", u"beta", u"Alpha"});
    Do([](HWND) { App().settings->sortKey = 3; }); // names too, in settings of older versions
    Choose(IDM_REFRESH);
    ExpectNames({u"gamma.new", u"beta", u"Alpha"});
    Choose(IDM_ARRANGE_BY_NAME);
    Choose(IDM_VIEW_LARGE_ICONS);
    TapRow(IDC_LIST, u"beta");
    RunProgram();

    // The next start has order, view and selection.
    ExpectNames({u"gamma.new", u"beta", u"Alpha"});
    Do([](HWND window) {
        EXPECT_EQ(SelectedRow(GetDlgItem(window, IDC_LIST)), 1);
        EXPECT_EQ(CurrentListStyle(), LVS_ICON);
    });
    RunProgram();
}

TEST_F(DatabaseListTest, MenusFollowTheSelection) {
    TapRow(IDC_LIST, u"beta");
    Do([](HWND) {
        for (const UINT command :
             {IDM_DELETE, IDM_RENAME, IDM_COPY, IDM_EMPTY, IDM_PROPERTIES, IDM_EXPORT, IDM_SEND})
            EXPECT_TRUE(IsEnabled(command)) << command;
    });
    Press(Qt::Key_Down, Qt::ShiftModifier); // two rows
    Do([](HWND) {
        for (const UINT command :
             {IDM_DELETE, IDM_RENAME, IDM_COPY, IDM_EMPTY, IDM_PROPERTIES, IDM_EXPORT, IDM_SEND})
            EXPECT_FALSE(IsEnabled(command)) << command;
        for (const UINT command : {IDM_VIEW_MODIFY, IDM_BACKUP, IDM_RESTORE, IDM_AUTOBACKUP})
            EXPECT_TRUE(IsEnabled(command)) << command;
    });
    Press(Qt::Key_Return); // two databases open no viewer
    RunProgram();
}

TEST_F(DatabaseListTest, OptionsShowSystemDatabasesAtOnce) {
    Choose(IDM_OPTIONS);
    InWindow(IDD_OPTIONS);
    Tap(IDC_OPTIONS_SHOW_SYSTEM);
    Tap(IDC_OPTIONS_BOLD);
    Tap(IDOK);
    InMainWindow();
    ExpectNames({u"\\System", u"Alpha", u"beta", u"gamma.new"});
    Do([](HWND) { App().settings->fullRow = 2; }); // as a registry of other hands may have it
    Choose(IDM_OPTIONS);
    InWindow(IDD_OPTIONS);
    Do([](HWND dialog) { EXPECT_TRUE(IsDlgButtonChecked(dialog, IDC_OPTIONS_FULL_ROW)); });
    Tap(IDC_OPTIONS_SHOW_SYSTEM);
    Press(Qt::Key_Escape);
    InMainWindow();
    ExpectNames({u"\\System", u"Alpha", u"beta", u"gamma.new"}); // nothing was confirmed
    RunProgram();
}

TEST_F(DatabaseListTest, CopiesAndRenames) {
    TapRow(IDC_LIST, u"Alpha");
    Press(Qt::Key_C, Qt::ControlModifier);
    InWindow(IDD_NEW_NAME);
    Do([](HWND dialog) {
        EXPECT_EQ(Text(dialog, IDC_FRAME_TITLE), u"New Database Name");
        EXPECT_EQ(Text(dialog, IDC_NEW_NAME_FROM), u"Alpha");
    });
    Type(u"BETA");
    ExpectMessage(u"Database 'BETA' already exists! Please choose another name.");
    Tap(IDOK);
    Type(u"copy"); // over the selected name
    Press(Qt::Key_Return);
    InMainWindow();
    ExpectNames({u"Alpha", u"beta", u"copy", u"gamma.new"});
    TapRow(IDC_LIST, u"copy");
    Press(Qt::Key_N, Qt::ControlModifier);
    InWindow(IDD_NEW_NAME);
    Do([](HWND dialog) { EXPECT_EQ(Text(dialog, IDC_FRAME_TITLE), u"Rename Database"); });
    Tap(IDOK); // empty is Cancel
    InMainWindow();
    Press(Qt::Key_N, Qt::ControlModifier);
    InWindow(IDD_NEW_NAME);
    Type(u"zeta");
    Tap(IDOK);
    InMainWindow();
    ExpectNames({u"Alpha", u"beta", u"gamma.new", u"zeta"});
    // A copy without all records is not made in silence.
    TapRow(IDC_LIST, u"beta");
    Press(Qt::Key_C, Qt::ControlModifier);
    InWindow(IDD_NEW_NAME);
    Type(u"cut");
    Do([this](HWND) { device.BreakTable("records"); });
    ExpectMessage(u"Couldn't find record in \"beta\" database: Unknown error");
    Press(Qt::Key_Return);
    InMainWindow();
    Do([this](HWND) { device.MendTable("records"); });
    ExpectNames({u"Alpha", u"beta", u"cut", u"gamma.new", u"zeta"});
    RunProgram();
    EXPECT_EQ(Contents(u"zeta"), Contents(u"Alpha"));
}

TEST_F(DatabaseListTest, RenamesInPlace) {
    const auto editTo = [this](const std::u16string& text) {
        Press(Qt::Key_F2);
        Press(Qt::Key_A, Qt::ControlModifier);
        Type(text);
    };
    const auto expectSelected = [this](const std::u16string& name) {
        Do([name](HWND window) {
            const HWND list = GetDlgItem(window, IDC_LIST);
            EXPECT_EQ(RowText(list, SelectedRow(list), 0), name);
            const UINT state = LVIS_SELECTED | LVIS_FOCUSED;
            EXPECT_EQ(SendMessageW(list, LVM_GETITEMSTATE, SelectedRow(list), state), state);
        });
    };
    TapRow(IDC_LIST, u"beta");
    Choose(IDM_REFRESH); // the keyboard stays with what is selected
    expectSelected(u"beta");
    editTo(u"Zeta");
    Press(Qt::Key_Return);
    ExpectNames({u"Alpha", u"gamma.new", u"Zeta"});
    expectSelected(u"Zeta"); // and not its old row
    // A name that another database has is the store's to refuse.
    ExpectMessage(u"Couldn't update parameters of 'Zeta' database: A duplicate name exists on the network");
    editTo(u"gamma.new");
    Press(Qt::Key_Return);
    ExpectNames({u"Alpha", u"gamma.new", u"Zeta"});
    // What was not changed is not renamed: the time of modification stays.
    FILETIME before = {};
    Do([&before](HWND) { before = ModifiedTime(u"Zeta"); });
    editTo(u"Zeta");
    Press(Qt::Key_Return);
    Do([&before](HWND) {
        const FILETIME after = ModifiedTime(u"Zeta");
        EXPECT_EQ(CompareFileTime(&before, &after), 0);
    });
    // A touch ends the edit, and opens the row that was touched although the rename moves it.
    editTo(u"aaa");
    TouchRow(IDC_LIST, u"Alpha");
    InWindow(IDD_VIEWER);
    Do([](HWND viewer) { EXPECT_EQ(Text(viewer, IDC_FRAME_TITLE), u"Database: \"Alpha\""); });
    Press(Qt::Key_Escape);
    InMainWindow();
    ExpectNames({u"aaa", u"Alpha", u"gamma.new"});
    expectSelected(u"Alpha");
    RunProgram();
}

TEST_F(DatabaseListTest, BacksUpWhatWasSelectedBeforeTheQuestions) {
    std::filesystem::create_directory(device.folder + "/root/My Documents");
    stylus.AllowDialog(IDD_PROGRESS);
    TapRow(IDC_LIST, u"beta");
    Choose(IDM_BACKUP);
    InWindow(IDD_BACKUP_OPTIONS);
    Do([](HWND) {
        MakeDatabase(u"Aaa", {});
        SendMessageW(App().mainWindow, WM_COMMAND, IDM_REFRESH, 0); // selects the row's new holder
    });
    Tap(IDC_BACKUP_COMPRESS); // no
    PickToSave(u"one");
    Tap(IDOK);
    RunProgram();
    std::ifstream file(device.folder + "/root/My Documents/one.bkp", std::ios::binary);
    const std::string archive{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(archive.find(std::string("b\0e\0t\0a", 7)), std::string::npos);
    EXPECT_EQ(archive.find(std::string("A\0l\0p\0h", 7)), std::string::npos);
}

TEST_F(DatabaseListTest, SaysThatTheStoreCannotBeRead) {
    const std::u16string unreadable = u"Couldn't open \"*\" database: Unknown error";
    device.BreakTable("databases");
    ExpectMessage(unreadable); // at the start
    ExpectNames({});
    ExpectMessage(unreadable);
    Choose(IDM_REFRESH);
    ExpectNames({});
    Do([this](HWND) { device.MendTable("databases"); });
    Choose(IDM_REFRESH);
    ExpectNames({u"Alpha", u"beta", u"gamma.new"});
    RunProgram();
}

TEST_F(DatabaseListTest, EmptiesAndDeletesOnlyOnYes) {
    const auto question = [](const std::u16string& verb, const std::u16string& doing) {
        return u"You are about to " + verb +
               u" 'beta' database!\nThis operation can not be undone. If you choose to continue all data in "
               u"this database will "
               u"be lost permanently. We recommend that you make a complete backup before " +
               doing + u" the database.\nDo you still want to " + verb + u" the database?";
    };
    TapRow(IDC_LIST, u"beta");
    ExpectMessage(question(u"empty", u"emptying"), IDNO);
    Press(Qt::Key_E, Qt::ControlModifier);
    Do([](HWND) { EXPECT_NE(Contents(u"beta"), u""); });
    ExpectMessage(question(u"empty", u"emptying"), IDYES);
    Press(Qt::Key_E, Qt::ControlModifier);
    Do([](HWND window) {
        EXPECT_EQ(Contents(u"beta"), u"");
        EXPECT_EQ(SelectedRow(GetDlgItem(window, IDC_LIST)), 1); // still the same one
    });
    ExpectMessage(question(u"delete", u"deleting"), IDYES);
    Press(Qt::Key_D, Qt::ControlModifier);
    ExpectNames({u"Alpha", u"gamma.new"});
    RunProgram();
}

TEST_F(DatabaseListTest, PropertiesLeaveAnEmptySizeBlank) {
    TapRow(IDC_LIST, u"gamma.new");
    Press(Qt::Key_P, Qt::ControlModifier);
    InWindow(IDD_DATABASE_PROPERTIES);
    Do([](HWND dialog) {
        EXPECT_EQ(Text(dialog, IDC_PROPERTIES_NAME), u"gamma.new");
        EXPECT_EQ(Text(dialog, IDC_PROPERTIES_SIZE), u"");
        EXPECT_EQ(Text(dialog, IDC_PROPERTIES_RECORDS), u"0");
    });
    Press(Qt::Key_Return);
    InMainWindow();
    TapRow(IDC_LIST, u"beta");
    Press(Qt::Key_P, Qt::ControlModifier);
    InWindow(IDD_DATABASE_PROPERTIES);
    Do([](HWND dialog) {
        EXPECT_EQ(Text(dialog, IDC_PROPERTIES_SIZE),
                  u"3.92KB (4018 Bytes)"); // one entry and 2,001 characters
        EXPECT_EQ(Text(dialog, IDC_PROPERTIES_TYPE), u"1");
    });
    Tap(IDOK);
    RunProgram();
}
