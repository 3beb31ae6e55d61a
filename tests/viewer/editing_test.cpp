// Properties changed, undone, moved, added and deleted in the record viewer.
#include "tests/support/scarcememory.h"
#include "tests/viewer/viewerfixture.h"

namespace {

constexpr char16_t kDeleteProperty[] =
    u"Do you want to delete the selected property?\n\nWARNING: deleting a property from a "
    u"system database may cause your device to stop functioning property and require a hard "
    u"reset!";
constexpr char16_t kPasteOver[] =
    u"Property with the same ID already exists in this record, do you want to overwrite the "
    u"existing property?";

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
        ChooseByRightButton(IDC_VIEWER_LIST, u"TEXT", u"Copy");
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
        {
            const FullHeap full;
            ExpectMessage(kOutOfMemory);
            Tap(IDC_VIEWER_ADD);
        }
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
