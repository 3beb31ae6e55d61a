// Records shown, walked, sorted and searched in the record viewer, and changed behind its back.
#include "platform/storage/watch.h"
#include "store/dbhandle.h"
#include "tests/platform/otherprocess.h"
#include "tests/viewer/viewerfixture.h"
#include "viewer/recordviewer.h"

namespace {

constexpr char16_t kModifiedByOthers[] =
    u"Database \"People\" has been modified by another process; it will be re-loaded.";
constexpr char16_t kSearchAgain[] =
    u"Search has reached the end of the database, do you want to start from the beginning?";

} // namespace

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
        Press(Qt::Key_Tab, Qt::ShiftModifier);
        EXPECT_TRUE(HasFocus(IDC_VALUE_TEXT)); // past the start of the chain
        Press(Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_TRUE(HasFocus(IDC_VIEWER_LIST)); // and past its end
        for (const int next : {IDC_VIEWER_ADD, IDC_VIEWER_DELETE, IDC_VALUE_TEXT}) {
            Press(Qt::Key_Tab, Qt::ControlModifier);
            EXPECT_TRUE(HasFocus(next));
        }
        Type(u"+"); // where the caret was: nothing is selected, as it is after Tab alone
        EXPECT_EQ(Shown(IDC_VALUE_TEXT), u"+Ann");
        Press(Qt::Key_Tab, Qt::ShiftModifier);
        Press(Qt::Key_Tab);
        Type(u"x");
        EXPECT_EQ(Shown(IDC_VALUE_TEXT), u"x");
        Press(Qt::Key_Tab);
        Press(Qt::Key_Tab, Qt::ShiftModifier);
        Type(u"y");
        EXPECT_EQ(Shown(IDC_VALUE_TEXT), u"xy");
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
        ExpectMessage(u"Couldn't read record in \"People\" database: Unknown error");
        Tap(IDOK);
        InWindow(IDD_VIEWER);
        EXPECT_EQ(ShownTypes(), Rows{});
        device.MendTable("records");
        Choose(u"Record/Reload");
        Press(Qt::Key_K, Qt::ControlModifier);
        EXPECT_EQ(Position(), u"Record\n2 of 2");
        CloseViewer();
    });
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
