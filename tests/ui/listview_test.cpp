// The list view and its header.
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <functional>

#include "platform/errors.h"
#include "platform/ui/menus/menubarwidget.h"
#include "platform/ui/screen/screen.h"
#include "resources/resource.h"
#include "tests/support/scarcememory.h"
#include "tests/ui/windowfixture.h"

namespace {

constexpr UINT kList = 10001;

struct Change {
    int row;
    UINT before;
    UINT after;
    bool operator==(const Change&) const = default;
};

constexpr UINT kBoth = LVIS_SELECTED | LVIS_FOCUSED;

std::u16string TextAt(HWND list, int row) {
    WCHAR text[64];
    LVITEMW item{};
    item.pszText = text;
    item.cchTextMax = 64;
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
}

int RowOf(HWND list, LPARAM param) {
    LVFINDINFOW find{LVFI_PARAM, nullptr, param};
    return static_cast<int>(
        SendMessageW(list, LVM_FINDITEMW, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&find)));
}

class ListTest : public WindowTest {
protected:
    void Make(DWORD style = LVS_REPORT | LVS_SHOWSELALWAYS | LVS_EDITLABELS, int rows = 5) {
        list = Add(u"SysListView32", u"List", style, kList, {0, 0, 400, 300});
        Send(list, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_FULLROWSELECT, LVS_EX_FULLROWSELECT);
        for (int column = 0; column < 3; ++column) {
            std::u16string title = u"Column";
            const int format = column == 2 ? LVCFMT_RIGHT : LVCFMT_LEFT;
            LVCOLUMNW info{LVCF_TEXT | LVCF_WIDTH | LVCF_FMT, format, 120, title.data(), 0, 0};
            Send(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(column), &info);
        }
        for (int row = 0; row < rows; ++row)
            Insert(row);
        Focus(list);
        changes.clear();
    }

    void Insert(int row) {
        std::u16string text = u"row " + Digits(row);
        LVITEMW item{};
        item.mask = LVIF_TEXT | LVIF_PARAM;
        item.iItem = row;
        item.pszText = text.data();
        item.lParam = 1000 + row;
        EXPECT_EQ(Send(list, LVM_INSERTITEMW, 0, &item), row);
        for (item.iSubItem = 1; item.iSubItem < 3; ++item.iSubItem)
            Send(list, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), &item);
    }

    static std::u16string Digits(int number) {
        std::string digits = std::to_string(number);
        return {digits.begin(), digits.end()};
    }

    void SetState(int row, UINT state, UINT mask) {
        LVITEMW item{};
        item.state = state;
        item.stateMask = mask;
        Send(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), &item);
    }

    std::vector<int> Selected() {
        std::vector<int> rows;
        for (int row = -1; (row = Next(row)) >= 0;)
            rows.push_back(row);
        EXPECT_EQ(Send(list, LVM_GETSELECTEDCOUNT), static_cast<LRESULT>(rows.size()));
        return rows;
    }
    int Next(int row) {
        return static_cast<int>(Send(list, LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED));
    }

    // Until the edit that a tap begins would have begun.
    void AwaitEdit() {
        bool rung = false;
        QTimer::singleShot(
            QApplication::doubleClickInterval() + 100, [&rung] { rung = true; });
        stylus.WaitFor([&rung] { return rung; }, "the later timer");
    }

    static QPoint OnDisplay(HWND window, QPoint point) {
        return window->widget->mapTo(ui::ScreenArea()->window(), point);
    }
    void TapWith(Qt::KeyboardModifier modifier, QPoint point) {
        QTest::mouseClick(ui::ScreenArea()->window()->windowHandle(), Qt::LeftButton, modifier,
                          OnDisplay(list, point));
        stylus.Settle();
    }

    // A point on the row's first column: rows are looked for as a user does, by where they are.
    QPoint Spot(int row) {
        RECT header{};
        GetClientRect(reinterpret_cast<HWND>(Send(list, LVM_GETHEADER)), &header);
        int height = (300 - header.bottom) / static_cast<int>(Send(list, LVM_GETCOUNTPERPAGE));
        int top = static_cast<int>(Send(list, LVM_GETTOPINDEX));
        return {12, header.bottom + (row - top) * height + height / 2};
    }

    std::optional<LRESULT> Handle(HWND, UINT message, WPARAM, LPARAM lParam) override {
        if (message != WM_NOTIFY)
            return std::nullopt;
        if (instead)
            return instead();
        auto* info = reinterpret_cast<NMLISTVIEW*>(lParam);
        const NMHDR* header = &info->hdr;
        if (header->idFrom != kList)
            return 0;
        EXPECT_EQ(header->hwndFrom, list);
        if (header->code == LVN_ITEMCHANGED)
            changes.push_back({info->iItem, info->uOldState, info->uNewState});
        else if (header->code == LVN_COLUMNCLICK)
            clicked.push_back(info->iSubItem);
        else if (header->code == NM_DBLCLK)
            ++doubleTaps;
        else if (header->code == LVN_ENDLABELEDITW) {
            auto* edit = reinterpret_cast<NMLVDISPINFOW*>(lParam);
            commandsAtEdit = static_cast<int>(commands.size());
            labels.push_back(edit->item.pszText ? edit->item.pszText : u"(cancelled)");
            return acceptLabel;
        }
        return 0;
    }

    HWND list = nullptr;
    std::vector<Change> changes;
    std::vector<int> clicked;
    std::vector<std::u16string> labels;
    int doubleTaps = 0;
    int commandsAtEdit = -1; // commands that had run when a label's edit ended
    bool acceptLabel = true;
    std::function<LRESULT()> instead; // of writing notifications down
};

TEST_F(ListTest, TapsSelectAndEveryRowTellsItsChangeOnce) {
    Make();
    stylus.Tap(list, Spot(1));
    EXPECT_EQ(Selected(), std::vector<int>{1});
    changes.clear();
    stylus.Tap(list, Spot(3));
    EXPECT_EQ(changes, (std::vector<Change>{{1, kBoth, 0}, {3, 0, kBoth}}));
    TapWith(Qt::ShiftModifier, Spot(1));
    EXPECT_EQ(Selected(), (std::vector<int>{1, 2, 3}));
    TapWith(Qt::ControlModifier, Spot(2));
    EXPECT_EQ(Selected(), (std::vector<int>{1, 3}));
    stylus.Tap(list, Spot(4));
    EXPECT_EQ(Selected(), std::vector<int>{4});
    stylus.Key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(Selected(), (std::vector<int>{3, 4}));
    stylus.Key(Qt::Key_Home);
    EXPECT_EQ(Selected(), std::vector<int>{0});
    stylus.Tap(list, {390, 290});
    EXPECT_TRUE(Selected().empty());
    const QPoint secondColumn(200, Spot(2).y());
    stylus.Tap(list, secondColumn);
    EXPECT_EQ(Selected(), std::vector<int>{2});
    // Without full rows only the first column is hit.
    Send(list, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_FULLROWSELECT, 0);
    stylus.Tap(list, secondColumn);
    EXPECT_TRUE(Selected().empty());
    stylus.Tap(list, Spot(2));
    EXPECT_EQ(Selected(), std::vector<int>{2});
}

TEST_F(ListTest, SelectionByMessageTellsTheSameAndTheKeyboardGoesOnFromIt) {
    Make(LVS_REPORT | LVS_SINGLESEL);
    SetState(1, kBoth, kBoth);
    changes.clear();
    SetState(2, kBoth, kBoth);
    EXPECT_EQ(changes, (std::vector<Change>{{1, kBoth, 0}, {2, 0, kBoth}}));
    SetState(2, kBoth, kBoth);
    stylus.Settle();
    EXPECT_EQ(changes.size(), 2u);
    stylus.Key(Qt::Key_Down);
    EXPECT_EQ(Selected(), std::vector<int>{3});
    SetState(-1, 0, LVIS_SELECTED);
    EXPECT_TRUE(Selected().empty());
}

// The parent may fill the list anew from inside a notification, or do away with it.
TEST_F(ListTest, RowsMayGoWhileTheirChangeIsTold) {
    Make();
    SetState(0, kBoth, kBoth);
    bool refill = true, destroy = false;
    instead = [&]() -> LRESULT {
        if (std::exchange(refill, false)) {
            Send(list, LVM_DELETEALLITEMS);
            Insert(0);
            SetState(0, kBoth, kBoth);
        }
        if (destroy)
            DestroyWindow(list);
        return 0;
    };
    stylus.Tap(list, Spot(4));
    EXPECT_EQ(Selected(), std::vector<int>{0});
    destroy = true;
    stylus.Key(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_FALSE(IsWindow(list));
}

TEST_F(ListTest, AllViewsShareTheSelection) {
    Make();
    stylus.Tap(list, Spot(2));
    for (DWORD view : {LVS_ICON, LVS_SMALLICON, LVS_LIST, LVS_REPORT}) {
        LONG_PTR style = GetWindowLongPtrW(list, GWL_STYLE);
        SetWindowLongPtrW(list, GWL_STYLE, (style & ~LONG_PTR{LVS_TYPEMASK}) | view);
        stylus.Settle();
        EXPECT_EQ(Selected(), std::vector<int>{2}) << view;
        EXPECT_EQ(GetFocus(), list);
        stylus.Key(Qt::Key_Home);
        EXPECT_EQ(Selected(), std::vector<int>{0}) << view;
        SetState(0, 0, LVIS_SELECTED);
        SetState(2, kBoth, kBoth);
    }
}

TEST_F(ListTest, CheckBoxesAreToggledByTapAndSpace) {
    Make(LVS_REPORT | LVS_SINGLESEL, 3);
    Send(list, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
    auto state = [this](int row) {
        return Send(list, LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_STATEIMAGEMASK) >> 12;
    };
    EXPECT_EQ(state(1), 1);
    stylus.Tap(list, Spot(1));
    EXPECT_EQ(state(1), 2);
    EXPECT_TRUE(Selected().empty());
    EXPECT_EQ(changes.back(), (Change{1, 1u << 12, 2u << 12}));
    SetState(2, kBoth, kBoth);
    stylus.Key(Qt::Key_Space);
    EXPECT_EQ(state(2), 2);
    SetState(1, 1u << 12, LVIS_STATEIMAGEMASK);
    EXPECT_EQ(state(1), 1);
}

TEST_F(ListTest, LabelsAreEditedInPlace) {
    Make();
    auto editor = [this] { return list->widget->findChild<QLineEdit*>(); };
    auto edit = [this](int row) {
        Focus(list);
        SetState(row, kBoth, kBoth);
        stylus.Key(Qt::Key_F2);
    };
    stylus.Tap(list, Spot(1));
    EXPECT_EQ(editor(), nullptr);
    stylus.Tap(list, Spot(1));
    ASSERT_TRUE(stylus.WaitFor([&editor] { return editor() != nullptr; }, "the editor"));
    stylus.Type(u"new");
    stylus.Key(Qt::Key_Return);
    EXPECT_EQ(labels, std::vector<std::u16string>{u"new"});
    EXPECT_EQ(TextAt(list, 1), u"new");
    ASSERT_TRUE(stylus.WaitFor([&editor] { return editor() == nullptr; }, "its end"));

    stylus.Key(Qt::Key_F2);
    ASSERT_NE(editor(), nullptr);
    stylus.Type(u"other");
    stylus.Key(Qt::Key_Escape);
    EXPECT_EQ(labels.back(), u"(cancelled)");
    ASSERT_TRUE(stylus.WaitFor([&editor] { return editor() == nullptr; }, "its end"));

    // Leaving the edit ends it; the focus stays where it went.
    HWND other = Add(u"BUTTON", u"Other", 0, 1, {0, 310, 80, 340});
    acceptLabel = false;
    edit(2);
    stylus.Type(u"refused");
    Focus(other);
    EXPECT_EQ(labels.back(), u"refused");
    EXPECT_EQ(TextAt(list, 2), u"row 2");
    EXPECT_EQ(GetFocus(), other);
    edit(2);
    stylus.Tap(list, Spot(4));
    EXPECT_EQ(labels.size(), 4u);
    EXPECT_EQ(Selected(), std::vector<int>{4});
}

// What is chosen without moving the focus finds the label as it was typed.
TEST_F(ListTest, AMenuOrABarsButtonEndsTheEditFirst) {
    Make();
    SHInitMainWindow(main);
    SHMENUBARINFO info{sizeof info, main, 0, IDR_MAIN_MENU, nullptr, IDB_MAIN_BUTTONS, 2, nullptr};
    ASSERT_TRUE(SHCreateMenuBar(&info));
    const auto& buttons = qobject_cast<ui::MenuBarWidget*>(info.hwndMB->widget)->Buttons();
    const HMENU menu = LoadMenuW(nullptr, MAKEINTRESOURCEW(IDR_LIST_MENU));
    ui::TestHooks().menu = [this](QMenu* shown) {
        labels.push_back(u"(menu)");
        shown->close();
    };
    std::vector<std::u16string> expected;
    const auto check = [&](const std::function<void()>& choose, bool opensMenu) {
        const std::u16string text = u"new " + Digits(static_cast<int>(expected.size()));
        SetForegroundWindow(main); // this host's popups take the activation with them
        stylus.WaitFor([] { return ui::ScreenArea()->window()->isActiveWindow(); }, "the active display");
        stylus.Key(Qt::Key_F2);
        stylus.Type(text);
        commandsAtEdit = -1;
        commands.clear();
        choose();
        stylus.Settle();
        expected.push_back(text);
        if (opensMenu)
            expected.push_back(u"(menu)");
        EXPECT_EQ(labels, expected);
        EXPECT_EQ(commandsAtEdit, 0); // none had run when the edit ended
    };
    SetState(1, kBoth, kBoth);
    check([&] { QTest::mouseClick(buttons.back(), Qt::LeftButton); }, false);
    EXPECT_EQ(commands.size(), 1u);
    check([&] { QTest::mouseClick(buttons.front(), Qt::LeftButton); }, true);
    check([&] { TrackPopupMenuEx(GetSubMenu(menu, 0), 0, 50, 50, main, nullptr); }, true);
    check([&] { stylus.TapTitleButton(); }, false);
    DestroyMenu(menu);
}

// The keyboard's cursor is where the program has put it, whatever the views have been doing meanwhile.
TEST_F(ListTest, TheCursorIsTheRowThatTheProgramFocuses) {
    Make(LVS_REPORT | LVS_EDITLABELS, 8);
    HWND other = Add(u"BUTTON", u"Other", 0, 1, {0, 310, 80, 340});
    stylus.Tap(list, Spot(4));
    const auto focused = [this] {
        std::vector<int> rows;
        for (int row = 0; row < Send(list, LVM_GETITEMCOUNT); ++row)
            if (Send(list, LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_FOCUSED))
                rows.push_back(row);
        return rows;
    };
    for (const bool redraws : {true, false}) {
        for (const DWORD view : {LVS_REPORT, LVS_ICON}) {
            SetWindowLongPtrW(list, GWL_STYLE, (list->style & ~LVS_TYPEMASK) | view);
            Send(list, WM_SETREDRAW, redraws);
            Send(list, LVM_DELETEALLITEMS);
            EXPECT_TRUE(focused().empty());
            for (int row = 0; row < 6; ++row)
                Insert(row);
            SetState(2, kBoth, kBoth);
            Send(list, WM_SETREDRAW, TRUE);
            Focus(other); // the host looks for a place of its own when the list gets the focus again
            Focus(list);
            EXPECT_EQ(focused(), std::vector<int>{2}) << redraws << view;
            stylus.Key(Qt::Key_F2);
            stylus.Type(u"x");
            stylus.Key(Qt::Key_Return);
            EXPECT_EQ(TextAt(list, 2), u"x");
            stylus.Key(view == LVS_ICON ? Qt::Key_Right : Qt::Key_Down);
            EXPECT_EQ(focused(), std::vector<int>{3}) << redraws << view;
        }
    }
    // A row that is only selected is where the keyboard begins, too.
    Send(list, LVM_DELETEALLITEMS);
    Focus(other);
    for (int row = 0; row < 6; ++row)
        Insert(row);
    SetState(4, LVIS_SELECTED, LVIS_SELECTED);
    Focus(list);
    EXPECT_EQ(focused(), std::vector<int>{4});
    EXPECT_EQ(Selected(), std::vector<int>{4});
}

TEST_F(ListTest, ADoubleTapOnADividerFitsTheColumnToItsContents) {
    Make();
    std::u16string text(16, u'W');
    LVITEMW item{};
    item.iSubItem = 1;
    item.pszText = text.data();
    Send(list, LVM_SETITEMTEXTW, 4, &item);
    HWND header = reinterpret_cast<HWND>(Send(list, LVM_GETHEADER));
    auto* const view = qobject_cast<QHeaderView*>(header->widget);
    const QFontMetrics metrics(view->font());
    stylus.TapTwice(header, QPoint(239, 10)); // the third column's left edge
    EXPECT_GT(view->sectionSize(1), metrics.horizontalAdvance(QString::fromStdU16String(text)));
    text = u"1";
    for (int row = 0; row < 5; ++row)
        Send(list, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), &item);
    stylus.TapTwice(header, QPoint(view->sectionPosition(2) - 1, 10));
    EXPECT_GT(view->sectionSize(1),
              metrics.horizontalAdvance(QStringLiteral("Column"))); // its title is cut never
    EXPECT_LT(view->sectionSize(1), 100);
    // The width stays when the program fits another column.
    const int fitted = view->sectionSize(1);
    Send(list, LVM_SETCOLUMNWIDTH, 2, 90);
    EXPECT_EQ(view->sectionSize(1), fitted);
    // Every text of the first column is whole; an empty list has its titles.
    stylus.TapTwice(header, QPoint(119, 10));
    EXPECT_GT(view->sectionSize(0), metrics.horizontalAdvance(QStringLiteral("row 0")));
    Send(list, LVM_DELETEALLITEMS);
    stylus.TapTwice(header, QPoint(view->sectionPosition(1) - 1, 10));
    EXPECT_GT(view->sectionSize(0), metrics.horizontalAdvance(QStringLiteral("Column")));
    EXPECT_TRUE(clicked.empty());
}

TEST_F(ListTest, ADoubleTapIsToldAndEditsNothing) {
    Make();
    stylus.Tap(list, Spot(1));
    stylus.TapTwice(list, Spot(1));
    EXPECT_EQ(doubleTaps, 1);
    AwaitEdit();
    EXPECT_EQ(list->widget->findChild<QLineEdit*>(), nullptr);
    // Nor does a tap that only gives the list the focus.
    Focus(main);
    stylus.Tap(list, Spot(1));
    AwaitEdit();
    EXPECT_EQ(list->widget->findChild<QLineEdit*>(), nullptr);
}

int CompareParams(LPARAM first, LPARAM second, LPARAM descending) {
    int order = static_cast<int>(first % 10 - second % 10);
    return descending ? -order : order;
}

TEST_F(ListTest, SortingIsStableAndRowsKeepTheirStates) {
    Make(LVS_REPORT, 30);
    SetState(13, kBoth, kBoth);
    changes.clear();
    Send(list, LVM_SORTITEMS, TRUE, &CompareParams);
    for (int row = 0; row < 30; ++row)
        EXPECT_EQ(TextAt(list, row), u"row " + Digits(9 - row / 3 + row % 3 * 10));
    EXPECT_EQ(Selected(), std::vector<int>{19});
    EXPECT_EQ(Send(list, LVM_GETITEMSTATE, 19, kBoth), kBoth);
    stylus.Settle();
    EXPECT_TRUE(changes.empty());
    EXPECT_EQ(RowOf(list, 1013), 19);
    EXPECT_EQ(RowOf(list, 5), -1);
}

// A rebuild with the redrawing off leaves the list where it was, as far as the rows allow.
TEST_F(ListTest, ARebuildKeepsTheScrolledPlace) {
    Make(LVS_REPORT, 100);
    Send(list, LVM_ENSUREVISIBLE, 60);
    stylus.Settle();
    int top = static_cast<int>(Send(list, LVM_GETTOPINDEX));
    int page = static_cast<int>(Send(list, LVM_GETCOUNTPERPAGE));
    EXPECT_EQ(top, 60 - page + 1);
    Send(list, WM_SETREDRAW, FALSE);
    EXPECT_EQ(Send(list, LVM_GETTOPINDEX), top);
    Send(list, LVM_DELETEALLITEMS);
    for (int row = 0; row < 90; ++row)
        Insert(row);
    stylus.Settle(); // the host may look at the list in between
    SetState(50, kBoth, kBoth);
    Send(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(top + page - 1));
    Send(list, LVM_ENSUREVISIBLE, 50);
    Send(list, WM_SETREDRAW, TRUE);
    stylus.Settle();
    EXPECT_EQ(Send(list, LVM_GETTOPINDEX), 50 < top ? 50 : top);
    EXPECT_EQ(Selected(), std::vector<int>{50});
    stylus.Key(Qt::Key_Down);
    EXPECT_EQ(Selected(), std::vector<int>{51});
}

TEST_F(ListTest, TheHeaderIsAWindowWhoseItemsTheListDraws) {
    Make();
    HWND header = reinterpret_cast<HWND>(Send(list, LVM_GETHEADER));
    EXPECT_EQ(GetParent(header), list);
    ASSERT_EQ(Send(header, HDM_GETITEMCOUNT), 3);
    WCHAR title[20];
    HDITEMW item{HDI_TEXT | HDI_FORMAT, title, 20, 0};
    ASSERT_TRUE(Send(header, HDM_GETITEMW, 2, &item));
    EXPECT_EQ(std::u16string(title), u"Column");
    EXPECT_EQ(item.fmt & HDF_JUSTIFYMASK, HDF_RIGHT);

    static std::vector<std::pair<UINT, UINT>> drawn; // item, state
    static WNDPROC previous;
    drawn.clear();
    previous = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
        list, GWLP_WNDPROC,
        reinterpret_cast<LONG_PTR>(+[](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
            if (message != WM_DRAWITEM)
                return CallWindowProcW(previous, window, message, wParam, lParam);
            auto* draw = reinterpret_cast<DRAWITEMSTRUCT*>(lParam);
            EXPECT_EQ(draw->CtlType, ODT_HEADER);
            EXPECT_EQ(draw->rcItem.left, static_cast<LONG>(draw->itemID) * 120);
            drawn.emplace_back(draw->itemID, draw->itemState);
            return TRUE;
        })));
    item.mask = HDI_FORMAT;
    item.fmt |= HDF_OWNERDRAW;
    Send(header, HDM_SETITEMW, 2, &item);
    ASSERT_TRUE(stylus.WaitFor([] { return !drawn.empty(); }, "drawing"));
    EXPECT_EQ(drawn.back(), (std::pair<UINT, UINT>{2, 0}));
    QWindow* const display = ui::ScreenArea()->window()->windowHandle();
    const QPoint point = OnDisplay(header, {300, 10});
    QTest::mousePress(display, Qt::LeftButton, {}, point);
    ASSERT_TRUE(stylus.WaitFor([] { return drawn.back().second == ODS_SELECTED; }, "a pressed item"));
    QTest::mouseRelease(display, Qt::LeftButton, {}, point);
    stylus.Settle();
    EXPECT_EQ(clicked, std::vector<int>{2});
    EXPECT_EQ(GetFocus(), list);
}

// Whichever allocation fails, the row is not there and the list goes on.
TEST_F(ListTest, NoMemoryForARowIsAFailedInsertion) {
    Make(LVS_REPORT, 16); // the next one asks for more room
    Send(list, WM_SETREDRAW, FALSE);
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_PARAM;
    item.iItem = 16;
    item.pszText = const_cast<WCHAR*>(u"row 16");
    item.lParam = 1016;
    LRESULT row = -1;
    int failures = 0;
    for (; row == -1; ++failures) {
        SetLastError(0);
        {
            const ScarceMemory scarce(failures);
            row = Send(list, LVM_INSERTITEMW, 0, &item);
        }
        EXPECT_EQ(Send(list, LVM_GETITEMCOUNT), row == -1 ? 16 : 17);
        EXPECT_EQ(GetLastError(), row == -1 ? ERROR_NOT_ENOUGH_MEMORY : 0);
        EXPECT_EQ(RowOf(list, 1016), row);
    }
    EXPECT_GT(failures, 3);
    Send(list, WM_SETREDRAW, TRUE);
    EXPECT_EQ(TextAt(list, 16), u"row 16");
    EXPECT_EQ(RowOf(list, 1015), 15);

    {
        const ScarceMemory scarce(0);
        EXPECT_EQ(CreateWindowExW(0, u"STATIC", u"", WS_CHILD, 0, 0, 9, 9, main, nullptr, nullptr, nullptr),
                  nullptr);
    }
    EXPECT_EQ(GetWindow(main, GW_CHILD), list);
}

// As the program compares: both rows are looked up and both texts read.
int CompareByText(LPARAM first, LPARAM second, LPARAM sorted) {
    const auto list = reinterpret_cast<HWND>(sorted);
    return TextAt(list, RowOf(list, first)).compare(TextAt(list, RowOf(list, second)));
}

// Looking rows up one by one would take many seconds here, and telling the views of each row nearly one.
TEST_F(ListTest, ManyRowsAreQuick) {
    Make(LVS_REPORT, 0);
    std::clock_t start = std::clock();
    Send(list, WM_SETREDRAW, FALSE);
    for (int row = 0; row < 10000; ++row)
        Insert(row);
    Send(list, LVM_SORTITEMS, reinterpret_cast<WPARAM>(list), &CompareByText);
    Send(list, WM_SETREDRAW, TRUE);
    stylus.Settle();
    double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    RecordProperty("seconds", std::to_string(seconds));
    EXPECT_LT(seconds, 2.0);
    EXPECT_EQ(TextAt(list, 9999), u"row 9999");
    EXPECT_EQ(TextAt(list, 1), u"row 1");
}

} // namespace
