// The list view's labels as they are edited, its keyboard cursor and its header.
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>

#include "platform/ui/menus/menubarwidget.h"
#include "resources/resource.h"
#include "tests/ui/listfixture.h"

namespace {

TEST_F(ListTest, LabelsAreEditedInPlace) {
    Make();
    auto editor = [this] { return list->widget->findChild<QLineEdit*>(); };
    const auto edit = [this](int row) {
        Focus(list);
        ListView_SetItemState(list, row, kBoth, kBoth);
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
    const HWND other = Add(u"BUTTON", u"Other", 0, 1, {0, 310, 80, 340});
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
    ListView_SetItemState(list, 1, kBoth, kBoth);
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
    const HWND other = Add(u"BUTTON", u"Other", 0, 1, {0, 310, 80, 340});
    stylus.Tap(list, Spot(4));
    const auto focused = [this] {
        std::vector<int> rows;
        for (int row = 0; row < ListView_GetItemCount(list); ++row)
            if (ListView_GetItemState(list, row, LVIS_FOCUSED))
                rows.push_back(row);
        return rows;
    };
    for (const bool redraws : {true, false}) {
        for (const DWORD view : {LVS_REPORT, LVS_SMALLICON, LVS_LIST, LVS_ICON}) {
            SetWindowLongPtrW(list, GWL_STYLE, (list->style & ~LVS_TYPEMASK) | view);
            Send(list, WM_SETREDRAW, redraws);
            ListView_DeleteAllItems(list);
            EXPECT_TRUE(focused().empty());
            for (int row = 0; row < 6; ++row)
                Insert(row);
            ListView_SetItemState(list, 2, kBoth, kBoth);
            Send(list, WM_SETREDRAW, TRUE);
            Focus(other); // the host looks for a place of its own when the list gets the focus again
            Focus(list);
            EXPECT_EQ(focused(), std::vector<int>{2}) << redraws << view;
            stylus.Key(Qt::Key_F2);
            stylus.Type(u"x");
            stylus.Key(Qt::Key_Return);
            EXPECT_EQ(TextAt(list, 2), u"x");
            stylus.Key(Qt::Key_Home);
            EXPECT_EQ(focused(), std::vector<int>{0}) << redraws << view;
            EXPECT_EQ(Selected(), std::vector<int>{0});
        }
    }
    // A row that is only selected is where the keyboard begins, too.
    ListView_DeleteAllItems(list);
    Focus(other);
    for (int row = 0; row < 6; ++row)
        Insert(row);
    ListView_SetItemState(list, 4, LVIS_SELECTED, LVIS_SELECTED);
    Focus(list);
    EXPECT_EQ(focused(), std::vector<int>{4});
    EXPECT_EQ(Selected(), std::vector<int>{4});
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

TEST_F(ListTest, ADoubleTapOnADividerFitsTheColumnToItsContents) {
    Make();
    const std::u16string text(16, u'W');
    ListView_SetItemText(list, 4, 1, text.c_str());
    const HWND header = ListView_GetHeader(list);
    auto* const view = qobject_cast<QHeaderView*>(header->widget);
    const QFontMetrics metrics(view->font());
    stylus.TapTwice(header, QPoint(239, 10)); // the third column's left edge
    EXPECT_GT(view->sectionSize(1), metrics.horizontalAdvance(QString::fromStdU16String(text)));
    for (int row = 0; row < 5; ++row)
        ListView_SetItemText(list, row, 1, u"1");
    stylus.TapTwice(header, QPoint(view->sectionPosition(2) - 1, 10));
    EXPECT_GT(view->sectionSize(1),
              metrics.horizontalAdvance(QStringLiteral("Column"))); // its title is cut never
    EXPECT_LT(view->sectionSize(1), 100);
    // The width stays when the program fits another column.
    const int fitted = view->sectionSize(1);
    ListView_SetColumnWidth(list, 2, 90);
    EXPECT_EQ(view->sectionSize(1), fitted);
    // Every text of the first column is whole; an empty list has its titles.
    stylus.TapTwice(header, QPoint(119, 10));
    EXPECT_GT(view->sectionSize(0), metrics.horizontalAdvance(QStringLiteral("row 0")));
    ListView_DeleteAllItems(list);
    stylus.TapTwice(header, QPoint(view->sectionPosition(1) - 1, 10));
    EXPECT_GT(view->sectionSize(0), metrics.horizontalAdvance(QStringLiteral("Column")));
    EXPECT_TRUE(clicked.empty());
}

TEST_F(ListTest, TheHeaderIsAWindowWhoseItemsTheListDraws) {
    Make();
    const HWND header = ListView_GetHeader(list);
    EXPECT_EQ(GetParent(header), list);
    ASSERT_EQ(Header_GetItemCount(header), 3);
    WCHAR title[20];
    HDITEMW item{HDI_TEXT | HDI_FORMAT, title, 20, 0};
    Header_GetItem(header, 2, &item);
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
    Header_SetItem(header, 2, item);
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

} // namespace
