// A user's errands in the record viewer.
#include <QCoreApplication>
#include <QProcess>
#include <cstdlib>

#include "platform/controls.h"
#include "platform/storage/watch.h"
#include "resources/resource.h"
#include "store/dbhandle.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/usersession.h"
#include "viewer/recordviewer.h"

namespace {

constexpr char16_t kOverwrite[] =
    u"The property data has changed. Do you what to overwrite it?\n\nWARNING: changing a property "
    u"of a system database may cause your device to stop functioning property and require a hard "
    u"reset!";
constexpr char16_t kDeleteProperty[] =
    u"Do you want to delete the selected property?\n\nWARNING: deleting a property from a "
    u"system database may cause your device to stop functioning property and require a hard "
    u"reset!";
constexpr char16_t kDeleteRecord[] =
    u"Do you want to delete the current record?\n\nWARNING: deleting a record from a system "
    u"database may cause your device to stop functioning property and require a hard reset!";
constexpr char16_t kModifiedByOthers[] =
    u"Database \"People\" has been modified by another process; it will be re-loaded.";

class ViewerTest : public UserSession {
protected:
    // Opens a database in the viewer, where the steps go on.
    void View(const std::u16string& name) {
        InMainWindow();
        TapRow(IDC_LIST, name);
        Press(Qt::Key_Return);
        InWindow(IDD_VIEWER);
    }
    void SelectType(const std::u16string& typeName) { TapRow(IDC_VIEWER_LIST, typeName); }
    void ExpectPosition(std::u16string text) {
        Do([text](HWND viewer) { EXPECT_EQ(Text(viewer, IDC_VIEWER_POSITION), text); });
    }
    void ExpectEditor(int control, std::u16string text) {
        Do([control, text](HWND viewer) {
            EXPECT_TRUE(IsWindowVisible(GetDlgItem(viewer, control)));
            EXPECT_EQ(Text(viewer, control), text);
        });
    }
    void FocusList() {
        Do([](HWND viewer) { SetFocus(GetDlgItem(viewer, IDC_VIEWER_LIST)); });
    }
    void CloseViewer() { Press(Qt::Key_Escape); }
};

const std::vector<std::vector<SampleValue>> kPeople = {
    {TextValue(1, u"Ann"), TextValue(2, u"555-1234"), NumberValue(3, CEVT_I2, 30)},
    {TextValue(1, u"Bob"), TextValue(2, u"555-9876"), NumberValue(3, CEVT_I2, 20)},
    {TextValue(1, u"Cleo"), NumberValue(3, CEVT_I2, 120)}};

} // namespace

TEST_F(ViewerTest, CorrectsAPhoneNumberAndTakesItBack) {
    MakeDatabase(u"People", kPeople);
    View(u"People");
    ExpectPosition(u"Record\n1 of 3");
    Do([](HWND viewer) {
        const HWND list = GetDlgItem(viewer, IDC_VIEWER_LIST);
        EXPECT_EQ(Column(list, 0), (std::vector<std::u16string>{u"INT", u"TEXT", u"TEXT"}));
        EXPECT_EQ(Text(viewer, IDC_FRAME_TITLE), u"Database: \"People\"");
    });
    FocusList();
    Press(Qt::Key_End); // the last text: the number
    ExpectEditor(IDC_VALUE_TEXT, u"555-1234");
    ExpectMessage(kOverwrite, IDNO);
    TypeInto(IDC_VALUE_TEXT, u"refused");
    FocusList();
    Press(Qt::Key_Home);
    Do([](HWND) { EXPECT_EQ(Contents(u"People").substr(0, 20), u"1=Ann 2=555-1234 3=3"); });
    Press(Qt::Key_End);
    ExpectEditor(IDC_VALUE_TEXT, u"555-1234");
    ExpectMessage(kOverwrite, IDYES);
    TypeInto(IDC_VALUE_TEXT, u"555-43210");
    Press(Qt::Key_Left, Qt::ShiftModifier);
    Press(Qt::Key_X, Qt::ControlModifier); // greyed in the menu since before there was a selection
    FocusList();
    Press(Qt::Key_Home);
    Do([](HWND) { EXPECT_EQ(Contents(u"People").substr(0, 20), u"1=Ann 2=555-4321 3=3"); });
    Choose(IDM_EDIT_UNDO);
    Do([](HWND) { EXPECT_EQ(Contents(u"People").substr(0, 20), u"1=Ann 2=555-1234 3=3"); });
    Choose(IDM_EDIT_UNDO); // and forth again
    Do([](HWND) { EXPECT_EQ(Contents(u"People").substr(0, 20), u"1=Ann 2=555-4321 3=3"); });
    CloseViewer();
    RunProgram();
}

// A saved value can move its row: what was tapped or copied is found again by what it is.
TEST_F(ViewerTest, ShowsTheTappedPropertyWhenTheSaveMovesTheRows) {
    MakeDatabase(u"Sizes", {{TextValue(1, u"x"), NumberValue(2, CEVT_I4, 5), NumberValue(3, CEVT_R8, 1.5)},
                            {NumberValue(9, CEVT_I4, 9)}});
    Do([](HWND) {
        App().settings->sortKey = kSortBySize;
        App().settings->showWarning = 0;
    });
    View(u"Sizes");
    TouchRow(IDC_VIEWER_LIST, u"TEXT");
    TypeInto(IDC_VALUE_TEXT, u"longer");
    TouchRow(IDC_VIEWER_LIST, u"LONG"); // whose row becomes the first one
    ExpectEditor(IDC_VALUE_NUMBER, u"5");
    Do([](HWND viewer) {
        const HWND list = GetDlgItem(viewer, IDC_VIEWER_LIST);
        EXPECT_EQ(Column(list, 0), (std::vector<std::u16string>{u"LONG", u"TEXT", u"FLOAT"}));
        EXPECT_EQ(SelectedRow(list), 0);
    });
    TouchRow(IDC_VIEWER_LIST, u"TEXT");
    TypeInto(IDC_VALUE_TEXT, u"c");
    Do([](HWND) { App().settings->sortAscending = 0; });
    FocusList();
    Choose(IDM_EDIT_COPY);
    Press(Qt::Key_K, Qt::ControlModifier);
    FocusList();
    Choose(IDM_EDIT_PASTE);
    Do([](HWND) { EXPECT_EQ(Contents(u"Sizes"), u"1=c 2=5 3=1.5\n9=9 1=c\n"); });
    CloseViewer();
    RunProgram();
}

TEST_F(ViewerTest, WalksAndRefusesNumbersOutOfRange) {
    MakeDatabase(u"People", kPeople);
    View(u"People");
    Press(Qt::Key_K, Qt::ControlModifier);
    ExpectPosition(u"Record\n2 of 3");
    Press(Qt::Key_L, Qt::ControlModifier);
    ExpectPosition(u"Record\n3 of 3");
    Press(Qt::Key_K, Qt::ControlModifier); // there is no next one
    ExpectPosition(u"Record\n3 of 3");
    SelectType(u"INT");
    ExpectEditor(IDC_VALUE_NUMBER, u"120");
    TypeInto(IDC_VALUE_NUMBER, u"40000");
    ExpectMessage(u"Property data is incorrect: enter an integer number between -32768 and 32767.\nThe "
                  u"database was not changed.");
    Press(Qt::Key_H, Qt::ControlModifier);
    ExpectPosition(u"Record\n1 of 3");
    SelectType(u"INT");
    ExpectMessage(kOverwrite, IDYES);
    TypeInto(IDC_VALUE_NUMBER, u"-7");
    Press(Qt::Key_K, Qt::ControlModifier);
    ExpectPosition(u"Record\n2 of 3");
    Press(Qt::Key_J, Qt::ControlModifier);
    Do([](HWND viewer) {
        EXPECT_EQ(GetFocus(), GetDlgItem(viewer, IDC_VALUE_NUMBER)); // one types on from record to record
        EXPECT_EQ(Contents(u"People"), u"1=Ann 2=555-1234 3=-7\n1=Bob 2=555-9876 3=20\n1=Cleo 3=120\n");
    });
    ExpectMessage(kOverwrite, IDYES);
    SelectType(u"INT");
    TypeInto(IDC_VALUE_NUMBER, u"8");
    TapTitleButton(); // OK saves too
    RunProgram();
    EXPECT_EQ(Contents(u"People"), u"1=Ann 2=555-1234 3=8\n1=Bob 2=555-9876 3=20\n1=Cleo 3=120\n");
}

TEST_F(ViewerTest, SortsByEachOfItsOrders) {
    MakeDatabase(u"People", kPeople, {{3 << 16 | CEVT_I2, 0}, {1 << 16 | CEVT_LPWSTR, CEDB_SORT_DESCENDING}});
    View(u"People");
    Choose(IDM_SORT_FIRST);
    SelectType(u"TEXT");
    ExpectEditor(IDC_VALUE_TEXT, u"Bob"); // the youngest
    Choose(IDM_SORT_SECOND);
    SelectType(u"TEXT");
    ExpectEditor(IDC_VALUE_TEXT, u"Cleo");
    Choose(IDM_SORT_UNSORTED);
    ExpectPosition(u"Record\n1 of 3");
    SelectType(u"TEXT");
    ExpectEditor(IDC_VALUE_TEXT, u"Ann");
    CloseViewer();
    RunProgram();
}

TEST_F(ViewerTest, FindsAWordPastTheEnd) {
    MakeDatabase(u"People", kPeople);
    View(u"People");
    Press(Qt::Key_N, Qt::ControlModifier); // no text yet: every text has it
    ExpectPosition(u"Record\n2 of 3");
    const auto find = [this](const std::u16string& text) {
        InWindow(IDD_VIEWER);
        Press(Qt::Key_F, Qt::ControlModifier);
        InWindow(IDD_FIND);
        TypeInto(IDC_FIND_TEXT, text);
    };
    find(u"ANN");
    ExpectMessage(u"Search has reached the end of the database, do you want to start from the beginning?",
                  IDYES);
    Tap(IDOK);
    InWindow(IDD_VIEWER);
    ExpectPosition(u"Record\n1 of 3");
    ExpectEditor(IDC_VALUE_TEXT, u"Ann");
    find(u"Ann"); // only the first record has it, and the search begins behind it
    ExpectMessage(u"Unable to find any records containing text \"Ann\".");
    Tap(IDOK);
    InWindow(IDD_VIEWER);
    ExpectPosition(u"Record\n1 of 3");
    find(u"12");
    Tap(IDC_FIND_NUMERIC);
    Tap(IDOK);
    InWindow(IDD_VIEWER);
    ExpectPosition(u"Record\n3 of 3");
    ExpectEditor(IDC_VALUE_NUMBER, u"120");
    find(u"cleo");
    Tap(IDC_FIND_MATCH_CASE);
    ExpectMessage(u"Search has reached the end of the database, do you want to start from the beginning?",
                  IDYES);
    ExpectMessage(u"Unable to find any records containing text \"cleo\".");
    Tap(IDOK);
    InWindow(IDD_VIEWER);
    ExpectPosition(u"Record\n3 of 3");
    CloseViewer();
    RunProgram();
}

constexpr char16_t kOutOfMemory[] =
    u"There is not enough memory to complete this operation. Close other programs and try again.";

TEST_F(ViewerTest, SaysTwiceThatADatabaseCannotBeShown) {
    MakeDatabase(u"Short", {{TextValue(1, u"a")}});
    InMainWindow();
    TapRow(IDC_LIST, u"Short");
    // Gone since the list was read: no question, the viewer's own message, and the one on memory.
    const std::u16string gone =
        u"Couldn't open \"Short\" database: The system cannot find the file specified";
    ExpectMessage(gone);
    ExpectMessage(gone);
    ExpectMessage(kOutOfMemory);
    ExpectMessage(gone); // the row is read anew
    Do([](HWND) { EXPECT_TRUE(DbHandle(nullptr).DeleteDatabase(u"Short")); });
    Press(Qt::Key_Return);
    MakeDatabase(u"Empty", {});
    ExpectMessage(u"You have deleted the last record in the database. The database viewer will be closed.");
    ExpectMessage(kOutOfMemory);
    Do([](HWND window) {
        RecordViewer viewer;
        EXPECT_EQ(RunRecordViewer(&viewer, window, u"Empty"), kViewerCancelled);
    });
    RunProgram();
}

TEST_F(ViewerTest, ReadsNumbersAndNothingElseIntoAFloat) {
    MakeDatabase(u"Float", {{NumberValue(1, CEVT_R8, 7)}});
    Do([](HWND) { App().settings->showWarning = 0; });
    View(u"Float");
    const struct {
        const char16_t* typed;
        const char16_t* stored;
    } cases[] = {{u" -.5e1x", u"-5."}, {u"NaN", u"0."},  {u"3e0", u"3."}, {u"-Infinity", u"0."},
                 {u"+4", u"4."},       {u"0x1F", u"0."}, {u"6.", u"6."},  {u"inf", u"0."}};
    for (const auto& each : cases) {
        TypeInto(IDC_VALUE_NUMBER, each.typed);
        Press(Qt::Key_K, Qt::ControlModifier); // there is no next record, but the value is saved
        ExpectEditor(IDC_VALUE_NUMBER, each.stored);
    }
    CloseViewer();
    RunProgram();
}

TEST_F(ViewerTest, SaysThatMemoryIsShortWhenAddingAProperty) {
    MakeDatabase(u"Full", {{TextValue(1, u"a")}});
    View(u"Full");
    std::vector<void*> blocks;
    Do([&blocks](HWND) {
        for (std::size_t bytes = 256 << 20; bytes != 0; bytes /= 2)
            while (void* const block = LocalAlloc(LMEM_FIXED, bytes))
                blocks.push_back(block);
    });
    ExpectMessage(kOutOfMemory);
    Tap(IDC_VIEWER_ADD);
    Do([&blocks](HWND) {
        for (void* const block : blocks)
            LocalFree(block);
    });
    Press(Qt::Key_Escape);
    RunProgram();
}

TEST_F(ViewerTest, ABadDiskIsNotTheEndOfTheRecords) {
    const std::u16string filler(40000, u'x'); // too long to be read ahead
    MakeDatabase(u"People", {{TextValue(1, u"Ann"), TextValue(2, filler)}, {TextValue(1, filler)}});
    View(u"People");
    const std::u16string unreachable = u"Couldn't find record in \"People\" database: Unknown error";
    Do([this](HWND) { device.BreakTable("records"); });
    ExpectMessage(unreachable);
    Press(Qt::Key_K, Qt::ControlModifier);
    Press(Qt::Key_F, Qt::ControlModifier);
    InWindow(IDD_FIND);
    TypeInto(IDC_FIND_TEXT, u"yz");
    ExpectMessage(unreachable); // and not that the text is nowhere
    Tap(IDOK);
    InWindow(IDD_VIEWER);
    ExpectMessage(unreachable);
    ExpectMessage(u"Couldn't read record in \"People\" database: Unknown error");
    Choose(IDM_RECORD_RELOAD);
    Do([this](HWND viewer) {
        EXPECT_TRUE(Column(GetDlgItem(viewer, IDC_VIEWER_LIST), 0).empty());
        device.MendTable("records");
    });
    Choose(IDM_RECORD_RELOAD);
    Press(Qt::Key_K, Qt::ControlModifier);
    ExpectPosition(u"Record\n2 of 2");
    CloseViewer();
    RunProgram();
}

TEST_F(ViewerTest, MovesAPropertyToAnotherDatabase) {
    MakeDatabase(u"From", {{TextValue(1, u"moved"), NumberValue(2, CEVT_I4, 5)}});
    MakeDatabase(u"To", {{NumberValue(1, CEVT_I4, 1)}});
    View(u"From");
    SelectType(u"TEXT");
    FocusList();
    ExpectMessage(kDeleteProperty, IDYES);
    Press(Qt::Key_X, Qt::ControlModifier);
    Do([](HWND) { EXPECT_EQ(Contents(u"From"), u"2=5\n"); });
    CloseViewer();
    View(u"To");
    FocusList();
    Press(Qt::Key_V, Qt::ControlModifier); // the same id under another type is no clash
    Do([](HWND) { EXPECT_EQ(Contents(u"To"), u"1=1 1=moved\n"); });
    ExpectMessage(u"Property with the same ID already exists in this record, do you want to overwrite the "
                  u"existing property?",
                  IDYES);
    Press(Qt::Key_V, Qt::ControlModifier);
    ExpectEditor(IDC_VALUE_TEXT, u"moved");
    CloseViewer();
    RunProgram();
    EXPECT_EQ(Contents(u"To"), u"1=1 1=moved\n");
}

TEST_F(ViewerTest, DeletesDownToTheLastRecord) {
    MakeDatabase(u"Short", {{TextValue(1, u"a"), TextValue(2, u"b")}, {TextValue(1, u"c")}});
    View(u"Short");
    ExpectMessage(kDeleteProperty, IDYES);
    Press(Qt::Key_D, Qt::AltModifier);
    Do([](HWND) { EXPECT_EQ(Contents(u"Short"), u"2=b\n1=c\n"); });
    ExpectMessage(kDeleteRecord, IDYES); // its only property stands for the record
    Press(Qt::Key_D, Qt::AltModifier);
    ExpectPosition(u"Record\n1 of 1");
    ExpectMessage(kDeleteRecord, IDYES);
    ExpectMessage(u"You have deleted the last record in the database. The database viewer will be closed.");
    Choose(IDM_RECORD_DELETE);
    RunProgram();
    EXPECT_EQ(Contents(u"Short"), u"");
}

TEST_F(ViewerTest, FillsAnEmptyDatabase) {
    MakeDatabase(u"Empty", {});
    InMainWindow();
    ExpectMessage(u"The selected database is empty. Do you want to add a new record?", IDYES);
    Press(Qt::Key_Return);
    InWindow(IDD_WIZARD_TYPE);
    Do([](HWND page) {
        EXPECT_FALSE(IsWindowEnabled(GetDlgItem(page, IDC_WIZARD_NEW_RECORD)));
        EXPECT_EQ(IsDlgButtonChecked(page, IDC_WIZARD_NEW_RECORD), BST_CHECKED);
        SetFocus(GetDlgItem(page, IDC_WIZARD_TYPE));
    });
    Type(u"I"); // INT
    TypeInto(IDC_WIZARD_ID, u"65535");
    ExpectMessage(u"The property ID must be a positive integer value between 0 and 65,535.");
    Tap(IDC_WIZARD_NEXT);
    TypeInto(IDC_WIZARD_ID, u"9");
    Tap(IDC_WIZARD_NEXT);
    InWindow(IDD_WIZARD_NUMBER);
    TypeInto(IDC_VALUE_NUMBER, u"40000");
    ExpectMessage(u"Property data is incorrect: enter an integer number between -32768 and 32767.\nThe "
                  u"database was not changed.");
    Tap(IDC_WIZARD_FINISH);
    Press(Qt::Key_Backspace); // in the number
    Press(Qt::Key_Backspace);
    Tap(IDC_WIZARD_FINISH);
    InWindow(IDD_VIEWER);
    ExpectPosition(u"Record\n1 of 1");
    Tap(IDC_VIEWER_ADD);
    InWindow(IDD_WIZARD_TYPE);
    Do([](HWND page) { SetFocus(GetDlgItem(page, IDC_WIZARD_TYPE)); });
    Type(u"T");
    TypeInto(IDC_WIZARD_ID, u"9");
    ExpectMessage(u"The property ID 9 is already in use, please choose another value.");
    Tap(IDC_WIZARD_NEXT);
    Tap(IDC_WIZARD_NEW_RECORD); // another record may use it
    Tap(IDC_WIZARD_NEXT);
    InWindow(IDD_WIZARD_TEXT);
    Type(u"second");
    Tap(IDC_WIZARD_FINISH);
    InWindow(IDD_VIEWER);
    ExpectPosition(u"Record\n2 of 2");
    ExpectEditor(IDC_VALUE_TEXT, u"second");
    CloseViewer();
    InMainWindow();
    Do([](HWND window) { EXPECT_NE(RowText(GetDlgItem(window, IDC_LIST), 0, 1), u"0.00KB"); });
    RunProgram();
    EXPECT_EQ(Contents(u"Empty"), u"9=400\n9=second\n");
}

// The second process of the test below: this program again, told by its environment which device to change.
TEST(OtherProcess, AddsARecord) {
    if (const char* const folder = std::getenv("CHANGE_DEVICE")) {
        ASSERT_TRUE(UseDevice(folder));
        EXPECT_NE(AddRecord(u"People", {TextValue(1, u"Dora")}), 0u);
    }
}

TEST(OtherProcess, DeletesTheFirstRecord) {
    if (const char* const folder = std::getenv("CHANGE_DEVICE")) {
        ASSERT_TRUE(UseDevice(folder));
        DbHandle people(nullptr);
        people.Open(u"People", 0, 0);
        DWORD index = 0;
        CEOID first = 0;
        EXPECT_TRUE(people.SeekFirst(&index, &first));
        EXPECT_TRUE(people.DeleteRecord(first));
    }
}

TEST_F(ViewerTest, ReloadsWhatAnotherProcessChanged) {
    MakeDatabase(u"People", kPeople);
    View(u"People");
    Press(Qt::Key_K, Qt::ControlModifier);
    SelectType(u"INT");
    const auto runOther = [this](const char* act) {
        Do([this, act](HWND) {
            QProcess other;
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert(QStringLiteral("CHANGE_DEVICE"), QString::fromStdString(device.folder));
            other.setProcessEnvironment(environment);
            other.start(QCoreApplication::applicationFilePath(),
                        {QStringLiteral("--gtest_filter=OtherProcess.") + QLatin1String(act)});
            EXPECT_TRUE(other.waitForFinished());
            EXPECT_EQ(other.exitCode(), 0);
            PollStoreChanges(); // noticed now, not amid a save, which would not hear of it
        });
    };
    ExpectMessage(kModifiedByOthers);
    runOther("AddsARecord");
    WaitFor([](HWND viewer) { return Text(viewer, IDC_VIEWER_POSITION) == u"Record\n2 of 4"; });
    ExpectEditor(IDC_VALUE_NUMBER, u"20"); // record and property are kept
    ExpectMessage(kDeleteRecord, IDYES);
    Choose(IDM_RECORD_DELETE); // its own change is no news
    ExpectPosition(u"Record\n1 of 3");
    SelectType(u"INT");
    TypeInto(IDC_VALUE_NUMBER, u"31");
    runOther("DeletesTheFirstRecord"); // which is the one being edited
    ExpectMessage(kOverwrite, IDYES);
    ExpectMessage(u"Unable to save property: People\nThe database was not changed.");
    ExpectMessage(kModifiedByOthers);
    SelectType(u"TEXT");
    WaitFor([](HWND viewer) { return Text(viewer, IDC_VIEWER_POSITION) == u"Record\n1 of 2"; });
    ExpectEditor(IDC_VALUE_NUMBER, u"120");
    CloseViewer();
    RunProgram();
}
