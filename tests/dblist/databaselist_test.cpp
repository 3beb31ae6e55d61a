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
#include "tests/support/session.h"

namespace {

using Names = std::vector<std::u16string>;

constexpr int kSystemIcon = 1;
constexpr int kEmptyIcon = 4;

class DatabaseListTest : public Session {
protected:
    DatabaseListTest() {
        MakeDatabase(u"beta", {{TextValue(1, std::u16string(2000, u'x'))}});
        MakeDatabase(u"Alpha", {{TextValue(1, u"short")}});
        MakeDatabase(u"gamma.new", {});
        MakeDatabase(u"\\System", {{NumberValue(1, CEVT_I4, 1)}});
    }
    Names ShownNames() { return ColumnTexts(Control(IDC_LIST), 0); }
    std::u16string Selected() { return SelectedText(IDC_LIST); }
    int IconOf(int row) {
        LVITEMW item = {};
        item.mask = LVIF_IMAGE;
        item.iItem = row;
        EXPECT_TRUE(ListView_GetItem(Control(IDC_LIST), &item));
        return item.iImage;
    }
    HeaderArrow Arrow(const std::u16string& title) { return ArrowBeside(Control(IDC_LIST), title); }
    void ExpectViewerOf(const std::u16string& name) {
        InWindow(IDD_VIEWER);
        EXPECT_EQ(Text(IDC_FRAME_TITLE), u"Database: \"" + name + u"\"");
        Press(Qt::Key_Escape);
        InMainWindow();
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
    RunProgram([&] {
        EXPECT_EQ(ShownNames(), (Names{u"Alpha", u"beta", u"gamma.new"}));
        EXPECT_EQ(CellText(Control(IDC_LIST), 2, kSizeColumn), u"0.00KB");
        EXPECT_EQ(IconOf(2), kEmptyIcon);
        EXPECT_EQ(Arrow(u"Name"), HeaderArrow::Up);
        EXPECT_EQ(Arrow(u"Size"), HeaderArrow::None);
        TapHeader(IDC_LIST, u"Modified");
        EXPECT_EQ(ShownNames(), (Names{u"beta", u"Alpha", u"gamma.new"})); // as they were made
        TapHeader(IDC_LIST, u"Size");
        EXPECT_EQ(ShownNames(), (Names{u"gamma.new", u"Alpha", u"beta"}));
        TapHeader(IDC_LIST, u"Size");
        EXPECT_EQ(ShownNames(), (Names{u"beta", u"Alpha", u"gamma.new"}));
        EXPECT_EQ(Arrow(u"Size"), HeaderArrow::Down);
        EXPECT_EQ(Arrow(u"Name"), HeaderArrow::None);
        Choose(u"View/Arrange by Size"); // the key already: the direction stays
        EXPECT_EQ(ShownNames(), (Names{u"beta", u"Alpha", u"gamma.new"}));
        Choose(u"View/Arrange by Name");
        EXPECT_EQ(ShownNames(), (Names{u"gamma.new", u"beta", u"Alpha"}));
        App().settings->sortKey = kSortByNameToo; // in settings of older versions
        Choose(u"View/Refresh");
        EXPECT_EQ(ShownNames(), (Names{u"gamma.new", u"beta", u"Alpha"}));
        EXPECT_EQ(Arrow(u"Name"), HeaderArrow::None);
        Choose(u"View/Arrange by Name");
        SelectRow(IDC_LIST, u"beta");
        Choose(u"View/Large Icons");
    });
    // The next start has order, view and selection.
    RunProgram([&] {
        EXPECT_EQ(ShownNames(), (Names{u"gamma.new", u"beta", u"Alpha"}));
        EXPECT_EQ(Selected(), u"beta");
        EXPECT_EQ(CurrentListStyle(), LVS_ICON);
    });
}

TEST_F(DatabaseListTest, OpensAndOffersItsMenuByTouch) {
    RunProgram([&] {
        TapRow(IDC_LIST, u"beta");
        ExpectViewerOf(u"beta");
        ChooseFromPopup(IDC_LIST, u"Alpha", u"Properties...");
        InWindow(IDD_DATABASE_PROPERTIES); // and not the viewer, although the row was touched
        EXPECT_EQ(Text(IDC_PROPERTIES_NAME), u"Alpha");
        Press(Qt::Key_Return);
        InMainWindow();
        Choose(u"Tools/Options...");
        InWindow(IDD_OPTIONS);
        Tap(IDC_OPTIONS_DOUBLE_TAP);
        Tap(IDOK);
        InMainWindow();
        TapRow(IDC_LIST, u"beta");
        EXPECT_EQ(Selected(), u"beta"); // and no more
        TapRowTwice(IDC_LIST, u"Alpha");
        ExpectViewerOf(u"Alpha");
        ChooseByRightButton(IDC_LIST, u"beta", u"View/Modify");
        ExpectViewerOf(u"beta");
    });
}

TEST_F(DatabaseListTest, MenusFollowTheSelection) {
    constexpr UINT kOneDatabaseCommands[] = {IDM_DELETE,     IDM_RENAME, IDM_COPY, IDM_EMPTY,
                                             IDM_PROPERTIES, IDM_EXPORT, IDM_SEND};
    RunProgram([&] {
        SelectRow(IDC_LIST, u"beta");
        for (const UINT command : kOneDatabaseCommands)
            EXPECT_TRUE(IsEnabled(command)) << command;
        Press(Qt::Key_Down, Qt::ShiftModifier); // two rows
        for (const UINT command : kOneDatabaseCommands)
            EXPECT_FALSE(IsEnabled(command)) << command;
        Choose(u"View/Refresh");
        EXPECT_EQ(ListView_GetSelectedCount(Control(IDC_LIST)), 2);
        for (const UINT command : {IDM_VIEW_MODIFY, IDM_BACKUP, IDM_RESTORE, IDM_AUTOBACKUP})
            EXPECT_TRUE(IsEnabled(command)) << command;
        Press(Qt::Key_Return); // two databases open no viewer
    });
}

TEST_F(DatabaseListTest, OptionsShowSystemDatabasesAtOnce) {
    const Names all = {u"\\System", u"Alpha", u"beta", u"gamma.new"};
    RunProgram([&] {
        Choose(u"Tools/Options...");
        InWindow(IDD_OPTIONS);
        Tap(IDC_OPTIONS_SHOW_SYSTEM);
        Tap(IDC_OPTIONS_BOLD);
        Tap(IDOK);
        InMainWindow();
        EXPECT_EQ(ShownNames(), all);
        EXPECT_EQ(IconOf(0), kSystemIcon);
        App().settings->fullRow = 2; // as a registry of other hands may have it
        Choose(u"Tools/Options...");
        // The shell may ask the main window to close, which a running command refuses.
        PostMessageW(App().mainWindow, WM_CLOSE, 0, 0);
        InWindow(IDD_OPTIONS);
        EXPECT_TRUE(IsDlgButtonChecked(Window(), IDC_OPTIONS_FULL_ROW));
        Tap(IDC_OPTIONS_SHOW_SYSTEM);
        Press(Qt::Key_Escape);
        InMainWindow();
        EXPECT_EQ(ShownNames(), all); // nothing was confirmed
    });
}

TEST_F(DatabaseListTest, CopiesAndRenames) {
    RunProgram([&] {
        SelectRow(IDC_LIST, u"Alpha");
        Press(Qt::Key_C, Qt::ControlModifier);
        InWindow(IDD_NEW_NAME);
        EXPECT_EQ(Text(IDC_FRAME_TITLE), u"New Database Name");
        EXPECT_EQ(Text(IDC_NEW_NAME_FROM), u"Alpha");
        Type(u"BETA");
        ExpectMessage(u"Database 'BETA' already exists! Please choose another name.");
        Tap(IDOK);
        Type(u"copy"); // over the selected name
        Press(Qt::Key_Return);
        InMainWindow();
        EXPECT_EQ(ShownNames(), (Names{u"Alpha", u"beta", u"copy", u"gamma.new"}));
        SelectRow(IDC_LIST, u"copy");
        Press(Qt::Key_N, Qt::ControlModifier);
        InWindow(IDD_NEW_NAME);
        EXPECT_EQ(Text(IDC_FRAME_TITLE), u"Rename Database");
        Tap(IDOK); // empty is Cancel
        InMainWindow();
        Choose(u"Edit/Rename...");
        InWindow(IDD_NEW_NAME);
        Type(u"zeta");
        Tap(IDOK);
        InMainWindow();
        EXPECT_EQ(ShownNames(), (Names{u"Alpha", u"beta", u"gamma.new", u"zeta"}));
        EXPECT_EQ(Contents(u"zeta"), Contents(u"Alpha"));
        // A copy without all records is not made in silence.
        SelectRow(IDC_LIST, u"beta");
        Press(Qt::Key_C, Qt::ControlModifier);
        InWindow(IDD_NEW_NAME);
        Type(u"cut");
        device.BreakTable("records");
        ExpectMessage(u"Couldn't find record in \"beta\" database: Unknown error");
        Press(Qt::Key_Return);
        InMainWindow();
        device.MendTable("records");
        EXPECT_EQ(ShownNames(), (Names{u"Alpha", u"beta", u"cut", u"gamma.new", u"zeta"}));
    });
}

TEST_F(DatabaseListTest, RenamesInPlace) {
    const auto editTo = [this](const std::u16string& text) {
        Press(Qt::Key_F2);
        Press(Qt::Key_A, Qt::ControlModifier);
        Type(text);
    };
    const auto expectSelected = [this](const std::u16string& name) {
        const HWND list = Control(IDC_LIST);
        EXPECT_EQ(Selected(), name);
        const UINT state = LVIS_SELECTED | LVIS_FOCUSED;
        EXPECT_EQ(ListView_GetItemState(list, SelectedRow(list), state), state);
    };
    RunProgram([&] {
        SelectRow(IDC_LIST, u"beta");
        Choose(u"View/Refresh"); // the keyboard stays with what is selected
        expectSelected(u"beta");
        editTo(u"Zeta");
        Press(Qt::Key_Return);
        EXPECT_EQ(ShownNames(), (Names{u"Alpha", u"gamma.new", u"Zeta"}));
        expectSelected(u"Zeta"); // and not its old row
        // A name that another database has is the store's to refuse.
        ExpectMessage(
            u"Couldn't update parameters of 'Zeta' database: A duplicate name exists on the network");
        editTo(u"gamma.new");
        Press(Qt::Key_Return);
        EXPECT_EQ(ShownNames(), (Names{u"Alpha", u"gamma.new", u"Zeta"}));
        // What was not changed is not renamed: the time of modification stays.
        const FILETIME before = ModifiedTime(u"Zeta");
        editTo(u"Zeta");
        Press(Qt::Key_Return);
        const FILETIME after = ModifiedTime(u"Zeta");
        EXPECT_EQ(CompareFileTime(&before, &after), 0);
        // A touch ends the edit, and opens the row that was touched although the rename moves it.
        editTo(u"aaa");
        TapRow(IDC_LIST, u"Alpha");
        ExpectViewerOf(u"Alpha");
        EXPECT_EQ(ShownNames(), (Names{u"aaa", u"Alpha", u"gamma.new"}));
        expectSelected(u"Alpha");
    });
}

TEST_F(DatabaseListTest, BacksUpWhatWasSelectedBeforeTheQuestions) {
    std::filesystem::create_directory(device.folder + "/root/My Documents");
    RunProgram([&] {
        SelectRow(IDC_LIST, u"beta");
        Choose(u"Tools/Backup...");
        InWindow(IDD_BACKUP_OPTIONS);
        MakeDatabase(u"Aaa", {});
        RebuildDatabaseList(); // selects the row's new holder
        Tap(IDC_BACKUP_COMPRESS);
        PickToSave(u"one");
        Tap(IDOK);
    });
    std::ifstream file(device.folder + "/root/My Documents/one.bkp", std::ios::binary);
    const std::string archive{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(archive.find(std::string("b\0e\0t\0a", 7)), std::string::npos);
    EXPECT_EQ(archive.find(std::string("A\0l\0p\0h", 7)), std::string::npos);
}

TEST_F(DatabaseListTest, SaysThatTheStoreCannotBeRead) {
    const std::u16string unreadable = u"Couldn't open \"*\" database: Unknown error";
    device.BreakTable("databases");
    ExpectMessage(unreadable); // at the start
    RunProgram([&] {
        EXPECT_EQ(ShownNames(), Names{});
        ExpectMessage(unreadable);
        Choose(u"View/Refresh");
        EXPECT_EQ(ShownNames(), Names{});
        device.MendTable("databases");
        Choose(u"View/Refresh");
        EXPECT_EQ(ShownNames(), (Names{u"Alpha", u"beta", u"gamma.new"}));
    });
}

TEST_F(DatabaseListTest, EmptiesAndDeletesOnlyOnYes) {
    const auto question = [](const std::u16string& verb, const std::u16string& doing) {
        return u"You are about to " + verb +
               u" 'beta' database!\nThis operation can not be undone. If you choose to continue all data in "
               u"this database will "
               u"be lost permanently. We recommend that you make a complete backup before " +
               doing + u" the database.\nDo you still want to " + verb + u" the database?";
    };
    RunProgram([&] {
        SelectRow(IDC_LIST, u"beta");
        ExpectMessage(question(u"empty", u"emptying"), IDNO);
        Press(Qt::Key_E, Qt::ControlModifier);
        ExpectMessage(question(u"delete", u"deleting"), IDNO);
        Choose(u"Delete"); // a button of the bar
        EXPECT_NE(Contents(u"beta"), u"");
        ExpectMessage(question(u"empty", u"emptying"), IDYES);
        Press(Qt::Key_E, Qt::ControlModifier);
        EXPECT_EQ(Contents(u"beta"), u"");
        EXPECT_EQ(Selected(), u"beta");
        EXPECT_EQ(IconOf(1), kEmptyIcon);
        ExpectMessage(question(u"delete", u"deleting"), IDYES);
        Press(Qt::Key_D, Qt::ControlModifier);
        EXPECT_EQ(ShownNames(), (Names{u"Alpha", u"gamma.new"}));
    });
    EXPECT_EQ(DatabaseNames(), (Names{u"Alpha", u"gamma.new", u"\\System"}));
}

TEST_F(DatabaseListTest, PropertiesLeaveAnEmptySizeBlank) {
    RunProgram([&] {
        SelectRow(IDC_LIST, u"gamma.new");
        Press(Qt::Key_P, Qt::ControlModifier);
        InWindow(IDD_DATABASE_PROPERTIES);
        EXPECT_EQ(Text(IDC_PROPERTIES_NAME), u"gamma.new");
        EXPECT_EQ(Text(IDC_PROPERTIES_SIZE), u"");
        EXPECT_EQ(Text(IDC_PROPERTIES_RECORDS), u"0");
        Press(Qt::Key_Return);
        InMainWindow();
        SelectRow(IDC_LIST, u"beta");
        Press(Qt::Key_P, Qt::ControlModifier);
        InWindow(IDD_DATABASE_PROPERTIES);
        EXPECT_EQ(Text(IDC_PROPERTIES_SIZE), u"3.92KB (4018 Bytes)"); // one entry and 2,001 characters
        EXPECT_EQ(Text(IDC_PROPERTIES_TYPE), u"1");
        Tap(IDOK);
    });
}
