// A user's errands in the record viewer.
#include "platform/controls.h"
#include "platform/storage/watch.h"
#include "resources/resource.h"
#include "store/dbhandle.h"
#include "tests/platform/otherprocess.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/session.h"
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

constexpr char16_t kOutOfMemory[] =
    u"There is not enough memory to complete this operation. Close other programs and try again.";
constexpr char16_t kSearchAgain[] =
    u"Search has reached the end of the database, do you want to start from the beginning?";
constexpr char16_t kIntOutOfRange[] =
    u"Property data is incorrect: enter an integer number between -32768 and 32767.\nThe "
    u"database was not changed.";

constexpr char16_t kPasteOver[] =
    u"Property with the same ID already exists in this record, do you want to overwrite the "
    u"existing property?";

using Rows = std::vector<std::u16string>;

class ViewerTest : public Session {
protected:
    // Opens a database in the viewer, where the steps go on.
    void View(const std::u16string& name) {
        InMainWindow();
        TapRow(IDC_LIST, name);
        InWindow(IDD_VIEWER);
    }
    void SelectType(const std::u16string& typeName) { TapRow(IDC_VIEWER_LIST, typeName); }
    // The row below, which may have the same type.
    void SelectNext() { Press(Qt::Key_Down); }
    Rows ShownTypes() { return ColumnTexts(Control(IDC_VIEWER_LIST), 0); }
    HeaderArrow Arrow(const std::u16string& title) { return ArrowBeside(Control(IDC_VIEWER_LIST), title); }
    std::u16string Position() { return Text(IDC_VIEWER_POSITION); }
    std::u16string Shown(int editor) { return IsWindowVisible(Control(editor)) ? Text(editor) : u"(hidden)"; }
    bool HasFocus(int controlId) { return GetFocus() == Control(controlId); }
    void CloseViewer() { Press(Qt::Key_Escape); }
};

const std::vector<std::vector<SampleValue>> kPeople = {
    {TextValue(1, u"Ann"), TextValue(2, u"555-1234"), NumberValue(3, CEVT_I2, 30)},
    {TextValue(1, u"Bob"), TextValue(2, u"555-9876"), NumberValue(3, CEVT_I2, 20)},
    {TextValue(1, u"Cleo"), NumberValue(3, CEVT_I2, 120)}};

std::u16string FirstLine(const WCHAR* database) {
    const std::u16string contents = Contents(database);
    return contents.substr(0, contents.find(u'\n'));
}

} // namespace

TEST_F(ViewerTest, CorrectsAPhoneNumberAndTakesItBack) {
    MakeDatabase(u"People", kPeople);
    RunProgram([&] {
        View(u"People");
        EXPECT_EQ(Position(), u"Record\n1 of 3");
        EXPECT_EQ(ShownTypes(), (Rows{u"INT", u"TEXT", u"TEXT"}));
        EXPECT_EQ(Text(IDC_FRAME_TITLE), u"Database: \"People\"");
        SelectType(u"TEXT");
        SelectNext();
        EXPECT_EQ(Shown(IDC_VALUE_TEXT), u"555-1234");
        ExpectMessage(kOverwrite, IDNO);
        TypeInto(IDC_VALUE_TEXT, u"refused");
        SelectType(u"INT");
        EXPECT_EQ(FirstLine(u"People"), u"1=Ann 2=555-1234 3=30");
        Press(Qt::Key_End);
        EXPECT_EQ(Shown(IDC_VALUE_TEXT), u"555-1234");
        ExpectMessage(kOverwrite, IDYES);
        TypeInto(IDC_VALUE_TEXT, u"555-43210");
        Press(Qt::Key_Left, Qt::ShiftModifier);
        Press(Qt::Key_X, Qt::ControlModifier); // greyed in the menu since before there was a selection
        Press(Qt::Key_Z, Qt::ControlModifier); // the editor's own undo
        EXPECT_EQ(Shown(IDC_VALUE_TEXT), u"555-43210");
        Press(Qt::Key_Backspace);
        SelectType(u"INT");
        EXPECT_EQ(FirstLine(u"People"), u"1=Ann 2=555-4321 3=30");
        Choose(u"Edit/Undo");
        EXPECT_EQ(FirstLine(u"People"), u"1=Ann 2=555-1234 3=30");
        Choose(u"Edit/Undo"); // and forth again
        EXPECT_EQ(FirstLine(u"People"), u"1=Ann 2=555-4321 3=30");
        CloseViewer();
    });
}

// A saved value can move its row: what was tapped or copied is found again by what it is.
TEST_F(ViewerTest, ShowsTheTappedPropertyWhenTheSaveMovesTheRows) {
    MakeDatabase(u"Sizes", {{TextValue(1, u"x"), NumberValue(20, CEVT_I4, 5), NumberValue(3, CEVT_R8, 1.5)},
                            {NumberValue(9, CEVT_I4, 9)}});
    RunProgram([&] {
        App().settings->showWarning = 0;
        View(u"Sizes");
        TapHeader(IDC_VIEWER_LIST, u"Size");
        EXPECT_EQ(ShownTypes(), (Rows{u"TEXT", u"LONG", u"FLOAT"}));
        EXPECT_EQ(Arrow(u"Size"), HeaderArrow::Up);
        EXPECT_EQ(Arrow(u"ID"), HeaderArrow::None);
        SelectType(u"TEXT");
        TypeInto(IDC_VALUE_TEXT, u"longer");
        SelectType(u"LONG"); // whose row becomes the first one
        EXPECT_EQ(Shown(IDC_VALUE_NUMBER), u"5");
        EXPECT_EQ(ShownTypes(), (Rows{u"LONG", u"TEXT", u"FLOAT"}));
        EXPECT_EQ(SelectedText(IDC_VIEWER_LIST), u"LONG");
        SelectType(u"TEXT");
        TypeInto(IDC_VALUE_TEXT, u"c");
        TapHeader(IDC_VIEWER_LIST, u"Size"); // the largest first
        EXPECT_EQ(Arrow(u"Size"), HeaderArrow::Down);
        SelectType(u"TEXT");
        Choose(u"Edit/Copy");
        Choose(u"Next Record"); // a button of the bar
        Choose(u"Edit/Paste");
        EXPECT_EQ(Contents(u"Sizes"), u"1=c 20=5 3=1.5\n9=9 1=c\n");
        Choose(u"Edit/Undo");
        EXPECT_EQ(Contents(u"Sizes"), u"1=c 20=5 3=1.5\n9=9\n");
        Choose(u"Record/Previous");
        TapHeader(IDC_VIEWER_LIST, u"ID");
        EXPECT_EQ(ShownTypes(), (Rows{u"LONG", u"FLOAT", u"TEXT"})); // by number, and not by its digits
        CloseViewer();
    });
}

TEST_F(ViewerTest, WalksAndRefusesNumbersOutOfRange) {
    MakeDatabase(u"People", kPeople);
    RunProgram([&] {
        View(u"People");
        Press(Qt::Key_K, Qt::ControlModifier);
        EXPECT_EQ(Position(), u"Record\n2 of 3");
        Press(Qt::Key_L, Qt::ControlModifier);
        EXPECT_EQ(Position(), u"Record\n3 of 3");
        Press(Qt::Key_K, Qt::ControlModifier); // there is no next one
        EXPECT_EQ(Position(), u"Record\n3 of 3");
        SelectType(u"TEXT"); // for what was selected is no longer edited
        SelectType(u"INT");
        EXPECT_EQ(Shown(IDC_VALUE_NUMBER), u"120");
        TypeInto(IDC_VALUE_NUMBER, u"40000");
        ExpectMessage(kIntOutOfRange);
        Press(Qt::Key_H, Qt::ControlModifier);
        EXPECT_EQ(Position(), u"Record\n1 of 3");
        SelectType(u"INT");
        ExpectMessage(kOverwrite, IDYES);
        TypeInto(IDC_VALUE_NUMBER, u"-7");
        Press(Qt::Key_K, Qt::ControlModifier);
        EXPECT_EQ(Position(), u"Record\n2 of 3");
        Press(Qt::Key_J, Qt::ControlModifier);
        EXPECT_TRUE(HasFocus(IDC_VALUE_NUMBER)); // one types on from record to record
        EXPECT_EQ(Contents(u"People"), u"1=Ann 2=555-1234 3=-7\n1=Bob 2=555-9876 3=20\n1=Cleo 3=120\n");
        ExpectMessage(kOverwrite, IDYES);
        TypeInto(IDC_VALUE_NUMBER, u"8");
        TapTitleButton(); // OK saves too
    });
    EXPECT_EQ(Contents(u"People"), u"1=Ann 2=555-1234 3=8\n1=Bob 2=555-9876 3=20\n1=Cleo 3=120\n");
}

TEST_F(ViewerTest, SortsByEachOfItsOrders) {
    MakeDatabase(u"People", kPeople, {{3 << 16 | CEVT_I2, 0}, {1 << 16 | CEVT_LPWSTR, CEDB_SORT_DESCENDING}});
    RunProgram([&] {
        View(u"People");
        Choose(u"Record/Sort By/Int (3)");
        SelectType(u"TEXT");
        EXPECT_EQ(Shown(IDC_VALUE_TEXT), u"Bob"); // the youngest
        Choose(u"Record/Sort By/Text (1)");
        SelectType(u"TEXT");
        EXPECT_EQ(Shown(IDC_VALUE_TEXT), u"Cleo");
        Choose(u"Record/Sort By/Unsorted");
        EXPECT_EQ(Position(), u"Record\n1 of 3");
        SelectType(u"TEXT");
        EXPECT_EQ(Shown(IDC_VALUE_TEXT), u"Ann");
        CloseViewer();
    });
}

TEST_F(ViewerTest, FindsAWordPastTheEnd) {
    MakeDatabase(u"People", kPeople);
    const auto find = [this](const std::u16string& text) {
        InWindow(IDD_VIEWER);
        Press(Qt::Key_F, Qt::ControlModifier);
        InWindow(IDD_FIND);
        TypeInto(IDC_FIND_TEXT, text);
    };
    const auto startSearch = [this] {
        Tap(IDOK);
        InWindow(IDD_VIEWER);
    };
    RunProgram([&] {
        View(u"People");
        Press(Qt::Key_N, Qt::ControlModifier); // no text yet: every text has it
        EXPECT_EQ(Position(), u"Record\n2 of 3");
        find(u"ANN");
        ExpectMessage(kSearchAgain, IDYES);
        startSearch();
        EXPECT_EQ(Position(), u"Record\n1 of 3");
        EXPECT_EQ(Shown(IDC_VALUE_TEXT), u"Ann");
        find(u"Ann"); // only the first record has it, and the search begins behind it
        ExpectMessage(u"Unable to find any records containing text \"Ann\".");
        startSearch();
        EXPECT_EQ(Position(), u"Record\n1 of 3");
        find(u"12");
        Tap(IDC_FIND_NUMERIC);
        startSearch();
        EXPECT_EQ(Position(), u"Record\n3 of 3");
        EXPECT_EQ(Shown(IDC_VALUE_NUMBER), u"120");
        find(u"cleo");
        Tap(IDC_FIND_MATCH_CASE);
        ExpectMessage(kSearchAgain, IDYES);
        ExpectMessage(u"Unable to find any records containing text \"cleo\".");
        startSearch();
        EXPECT_EQ(Position(), u"Record\n3 of 3");
        CloseViewer();
    });
}

TEST_F(ViewerTest, MovesTheFocusByKeysAndOpensItsHelp) {
    MakeDatabase(u"People", kPeople);
    RunProgram([&] {
        View(u"People");
        SelectType(u"TEXT");
        Tap(IDC_VALUE_TEXT); // which keeps Tab for itself
        Press(Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_TRUE(HasFocus(IDC_VIEWER_LIST)); // past the end of the chain
        Press(Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_TRUE(HasFocus(IDC_VIEWER_ADD));
        Tap(IDC_VALUE_TEXT);
        Press(Qt::Key_Tab, Qt::ShiftModifier);
        EXPECT_TRUE(HasFocus(IDC_VIEWER_DELETE));
        CatchHelp();
        Choose(u"Record/Help");
        EXPECT_EQ(HelpShown(), "tarnwickscope.htm#fieldview");
        CloseViewer();
    });
}

TEST_F(ViewerTest, SaysTwiceThatADatabaseCannotBeShown) {
    MakeDatabase(u"Short", {{TextValue(1, u"a")}});
    // Gone since the list was read: no question, the viewer's own message, and the one on memory.
    const std::u16string gone =
        u"Couldn't open \"Short\" database: The system cannot find the file specified";
    RunProgram([&] {
        EXPECT_TRUE(DbHandle(nullptr).DeleteDatabase(u"Short"));
        ExpectMessage(gone);
        ExpectMessage(gone);
        ExpectMessage(kOutOfMemory);
        ExpectMessage(gone); // the row is read anew
        TapRow(IDC_LIST, u"Short");
        MakeDatabase(u"Empty", {});
        ExpectMessage(
            u"You have deleted the last record in the database. The database viewer will be closed.");
        ExpectMessage(kOutOfMemory);
        RecordViewer viewer;
        EXPECT_EQ(RunRecordViewer(&viewer, Window(), u"Empty"), kViewerCancelled);
    });
}

TEST_F(ViewerTest, ReadsNumbersAndNothingElseIntoAFloat) {
    MakeDatabase(u"Float", {{NumberValue(1, CEVT_R8, 7)}});
    const struct {
        const char16_t* typed;
        const char16_t* stored;
    } cases[] = {{u" -.5e1x", u"-5."}, {u"NaN", u"0."},  {u"3e0", u"3."}, {u"-Infinity", u"0."},
                 {u"+4", u"4."},       {u"0x1F", u"0."}, {u"6.", u"6."},  {u"inf", u"0."}};
    RunProgram([&] {
        App().settings->showWarning = 0;
        View(u"Float");
        for (const auto& each : cases) {
            TypeInto(IDC_VALUE_NUMBER, each.typed);
            Press(Qt::Key_K, Qt::ControlModifier); // there is no next record, but the value is saved
            EXPECT_EQ(Shown(IDC_VALUE_NUMBER), each.stored);
        }
        CloseViewer();
    });
}

TEST_F(ViewerTest, ChangesTruthValuesAndDates) {
    MakeDatabase(u"Mixed", {{NumberValue(1, CEVT_BOOL, 1), NumberValue(2, CEVT_FILETIME, 0)}});
    RunProgram([&] {
        App().settings->showWarning = 0;
        View(u"Mixed");
        SelectType(u"BOOLEAN");
        EXPECT_EQ(IsDlgButtonChecked(Window(), IDC_VALUE_TRUE), BST_CHECKED);
        Tap(IDC_VALUE_FALSE);
        SelectType(u"DATE");
        EXPECT_EQ(Contents(u"Mixed"), u"1=False 2=1 Jan 1601 00:00\n");
        Tap(IDC_VALUE_DATE);
        Press(Qt::Key_Up);
        SelectType(u"BOOLEAN");
        EXPECT_EQ(Contents(u"Mixed"), u"1=False 2=2 Jan 1601 00:00\n");
        CloseViewer();
    });
}

TEST_F(ViewerTest, SaysThatMemoryIsShortWhenAddingAProperty) {
    MakeDatabase(u"Full", {{TextValue(1, u"a")}});
    RunProgram([&] {
        View(u"Full");
        std::vector<void*> blocks;
        for (std::size_t bytes = 256 << 20; bytes != 0; bytes /= 2)
            while (void* const block = LocalAlloc(LMEM_FIXED, bytes))
                blocks.push_back(block);
        ExpectMessage(kOutOfMemory);
        Tap(IDC_VIEWER_ADD);
        for (void* const block : blocks)
            LocalFree(block);
        CloseViewer();
    });
}

TEST_F(ViewerTest, ABadDiskIsNotTheEndOfTheRecords) {
    const std::u16string filler(40000, u'x'); // too long to be read ahead
    MakeDatabase(u"People", {{TextValue(1, u"Ann"), TextValue(2, filler)}, {TextValue(1, filler)}});
    const std::u16string unreachable = u"Couldn't find record in \"People\" database: Unknown error";
    RunProgram([&] {
        View(u"People");
        device.BreakTable("records");
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
        Choose(u"Record/Reload");
        EXPECT_EQ(ShownTypes(), Rows{});
        device.MendTable("records");
        Choose(u"Record/Reload");
        Press(Qt::Key_K, Qt::ControlModifier);
        EXPECT_EQ(Position(), u"Record\n2 of 2");
        CloseViewer();
    });
}

TEST_F(ViewerTest, MovesAPropertyToAnotherDatabase) {
    MakeDatabase(u"From", {{TextValue(1, u"moved"), NumberValue(2, CEVT_I4, 5)}});
    MakeDatabase(u"To", {{NumberValue(1, CEVT_I4, 1)}});
    RunProgram([&] {
        View(u"From");
        SelectType(u"TEXT");
        ExpectMessage(kDeleteProperty, IDNO);
        Press(Qt::Key_X, Qt::ControlModifier);
        EXPECT_EQ(Contents(u"From"), u"1=moved 2=5\n");
        ExpectMessage(kDeleteProperty, IDYES);
        Press(Qt::Key_X, Qt::ControlModifier);
        EXPECT_EQ(Contents(u"From"), u"2=5\n");
        CloseViewer();
        View(u"To");
        Press(Qt::Key_V, Qt::ControlModifier); // the same id under another type is no clash
        EXPECT_EQ(Contents(u"To"), u"1=1 1=moved\n");
        ExpectMessage(kOverwrite, IDYES);
        TypeInto(IDC_VALUE_TEXT, u"own");
        SelectType(u"LONG");
        ExpectMessage(kPasteOver, IDNO);
        Press(Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(Contents(u"To"), u"1=1 1=own\n");
        ExpectMessage(kPasteOver, IDYES);
        Press(Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(Shown(IDC_VALUE_TEXT), u"moved");
        CloseViewer();
    });
    EXPECT_EQ(Contents(u"To"), u"1=1 1=moved\n");
}

TEST_F(ViewerTest, DeletesDownToTheLastRecord) {
    MakeDatabase(u"Short", {{TextValue(1, u"a"), TextValue(2, u"b")}, {TextValue(1, u"c")}});
    RunProgram([&] {
        View(u"Short");
        ExpectMessage(kDeleteProperty, IDNO);
        Tap(IDC_VIEWER_DELETE);
        EXPECT_EQ(Contents(u"Short"), u"1=a 2=b\n1=c\n");
        ExpectMessage(kDeleteProperty, IDYES);
        Press(Qt::Key_D, Qt::AltModifier);
        EXPECT_EQ(Contents(u"Short"), u"2=b\n1=c\n");
        SelectType(u"TEXT"); // the focus into the list, whose undo is meant
        Choose(u"Edit/Undo");
        EXPECT_EQ(Contents(u"Short"), u"2=b 1=a\n1=c\n");
        Choose(u"Edit/Undo"); // and forth again
        EXPECT_EQ(Contents(u"Short"), u"2=b\n1=c\n");
        ExpectMessage(kDeleteRecord, IDNO);
        Choose(u"Record/Delete");
        EXPECT_EQ(Contents(u"Short"), u"2=b\n1=c\n");
        ExpectMessage(kDeleteRecord, IDYES); // its only property stands for the record
        Press(Qt::Key_D, Qt::AltModifier);
        EXPECT_EQ(Position(), u"Record\n1 of 1");
        ExpectMessage(kDeleteRecord, IDYES);
        ExpectMessage(
            u"You have deleted the last record in the database. The database viewer will be closed.");
        Choose(u"Record/Delete");
    });
    EXPECT_EQ(Contents(u"Short"), u"");
}

TEST_F(ViewerTest, FillsAnEmptyDatabase) {
    MakeDatabase(u"Empty", {});
    RunProgram([&] {
        ExpectMessage(u"The selected database is empty. Do you want to add a new record?", IDNO);
        TapRow(IDC_LIST, u"Empty");
        ExpectMessage(u"The selected database is empty. Do you want to add a new record?", IDYES);
        Press(Qt::Key_Return);
        InWindow(IDD_WIZARD_TYPE);
        EXPECT_FALSE(IsWindowEnabled(Control(IDC_WIZARD_NEW_RECORD)));
        EXPECT_EQ(IsDlgButtonChecked(Window(), IDC_WIZARD_NEW_RECORD), BST_CHECKED);
        EXPECT_TRUE(HasFocus(IDC_WIZARD_TYPE));
        Type(u"I"); // INT
        TypeInto(IDC_WIZARD_ID, u"65535");
        ExpectMessage(u"The property ID must be a positive integer value between 0 and 65,535.");
        Tap(IDC_WIZARD_NEXT);
        TypeInto(IDC_WIZARD_ID, u"9");
        Tap(IDC_WIZARD_NEXT);
        InWindow(IDD_WIZARD_NUMBER);
        TypeInto(IDC_VALUE_NUMBER, u"40000");
        ExpectMessage(kIntOutOfRange);
        Tap(IDC_WIZARD_FINISH);
        Press(Qt::Key_Backspace); // in the number
        Press(Qt::Key_Backspace);
        Tap(IDC_WIZARD_FINISH);
        InWindow(IDD_VIEWER);
        EXPECT_EQ(Position(), u"Record\n1 of 1");
        Tap(IDC_VIEWER_ADD);
        InWindow(IDD_WIZARD_TYPE);
        EXPECT_EQ(Text(IDC_WIZARD_ID), u"10"); // behind the largest
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
        EXPECT_EQ(Position(), u"Record\n2 of 2");
        EXPECT_EQ(Shown(IDC_VALUE_TEXT), u"second");
        CloseViewer();
        InMainWindow();
        EXPECT_NE(CellText(Control(IDC_LIST), 0, 1), u"0.00KB");
    });
    EXPECT_EQ(Contents(u"Empty"), u"9=400\n9=second\n");
}

TEST_F(ViewerTest, ReloadsWhatAnotherProcessChanged) {
    const auto addARecord = [] { return AddRecord(u"People", {TextValue(1, u"Dora")}) != 0; };
    const auto deleteTheFirst = [] {
        DbHandle people(nullptr);
        people.Open(u"People", 0, 0);
        DWORD index = 0;
        CEOID first = 0;
        return people.SeekFirst(&index, &first) && people.DeleteRecord(first);
    };
    OtherProcess other({addARecord, deleteTheFirst});
    const auto runOther = [&other](char errand) {
        EXPECT_TRUE(other.Run(errand));
        PollStoreChanges(); // noticed now, not amid a save, which would not hear of it
    };
    MakeDatabase(u"People", kPeople);
    RunProgram([&] {
        View(u"People");
        Press(Qt::Key_K, Qt::ControlModifier);
        SelectType(u"INT");
        ExpectMessage(kModifiedByOthers);
        runOther(0);
        WaitFor([&] { return Position() == u"Record\n2 of 4"; }, "the reload");
        EXPECT_EQ(Shown(IDC_VALUE_NUMBER), u"20"); // record and property are kept
        ExpectMessage(kDeleteRecord, IDYES);
        Choose(u"Record/Delete"); // its own change is no news
        EXPECT_EQ(Position(), u"Record\n1 of 3");
        SelectType(u"INT");
        TypeInto(IDC_VALUE_NUMBER, u"31");
        runOther(1); // deletes the record that is being edited
        ExpectMessage(kOverwrite, IDYES);
        ExpectMessage(u"Unable to save property: People\nThe database was not changed.");
        ExpectMessage(kModifiedByOthers);
        SelectType(u"TEXT");
        WaitFor([&] { return Position() == u"Record\n1 of 2"; }, "the reload");
        EXPECT_EQ(Shown(IDC_VALUE_NUMBER), u"120");
        CloseViewer();
    });
}
