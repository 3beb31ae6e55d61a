// The list view's rows: selection, order, scrolling, the room they take.
#include <ctime>

#include "platform/errors.h"
#include "tests/support/scarcememory.h"
#include "tests/ui/listfixture.h"

namespace {

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
    ListView_SetExtendedListViewStyleEx(list, LVS_EX_FULLROWSELECT, 0);
    stylus.Tap(list, secondColumn);
    EXPECT_TRUE(Selected().empty());
    stylus.Tap(list, Spot(2));
    EXPECT_EQ(Selected(), std::vector<int>{2});
}

TEST_F(ListTest, SelectionByMessageTellsTheSameAndTheKeyboardGoesOnFromIt) {
    Make(LVS_REPORT | LVS_SINGLESEL);
    ListView_SetItemState(list, 1, kBoth, kBoth);
    changes.clear();
    ListView_SetItemState(list, 2, kBoth, kBoth);
    EXPECT_EQ(changes, (std::vector<Change>{{1, kBoth, 0}, {2, 0, kBoth}}));
    ListView_SetItemState(list, 2, kBoth, kBoth);
    stylus.Settle();
    EXPECT_EQ(changes.size(), 2u);
    stylus.Key(Qt::Key_Down);
    EXPECT_EQ(Selected(), std::vector<int>{3});
    ListView_SetItemState(list, -1, 0, LVIS_SELECTED);
    EXPECT_TRUE(Selected().empty());
}

// The parent may fill the list anew from inside a notification, or do away with it.
TEST_F(ListTest, RowsMayGoWhileTheirChangeIsTold) {
    Make();
    ListView_SetItemState(list, 0, kBoth, kBoth);
    bool refill = true, destroy = false;
    instead = [&]() -> LRESULT {
        if (std::exchange(refill, false)) {
            ListView_DeleteAllItems(list);
            Insert(0);
            ListView_SetItemState(list, 0, kBoth, kBoth);
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

TEST_F(ListTest, CheckBoxesAreToggledByTapAndSpace) {
    Make(LVS_REPORT | LVS_SINGLESEL, 3);
    ListView_SetExtendedListViewStyleEx(list, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
    const auto state = [this](int row) {
        return ListView_GetItemState(list, row, LVIS_STATEIMAGEMASK) >> 12;
    };
    EXPECT_EQ(state(1), 1u);
    stylus.Tap(list, Spot(1));
    EXPECT_EQ(state(1), 2u);
    EXPECT_TRUE(Selected().empty());
    EXPECT_EQ(changes.back(), (Change{1, 1u << 12, 2u << 12}));
    ListView_SetItemState(list, 2, kBoth, kBoth);
    stylus.Key(Qt::Key_Space);
    EXPECT_EQ(state(2), 2u);
    ListView_SetItemState(list, 1, 1u << 12, LVIS_STATEIMAGEMASK);
    EXPECT_EQ(state(1), 1u);
}

int CompareParams(LPARAM first, LPARAM second, LPARAM descending) {
    const int order = static_cast<int>(first % 10 - second % 10);
    return descending ? -order : order;
}

TEST_F(ListTest, SortingIsStableAndRowsKeepTheirStates) {
    Make(LVS_REPORT, 30);
    ListView_SetItemState(list, 13, kBoth, kBoth);
    changes.clear();
    ListView_SortItems(list, &CompareParams, TRUE);
    for (int row = 0; row < 30; ++row)
        EXPECT_EQ(TextAt(list, row), u"row " + Digits(9 - row / 3 + row % 3 * 10));
    EXPECT_EQ(Selected(), std::vector<int>{19});
    EXPECT_EQ(ListView_GetItemState(list, 19, kBoth), kBoth);
    stylus.Settle();
    EXPECT_TRUE(changes.empty());
    EXPECT_EQ(RowOf(list, 1013), 19);
    EXPECT_EQ(RowOf(list, 5), -1);
}

// A rebuild with the redrawing off leaves the list where it was, as far as the rows allow.
TEST_F(ListTest, ARebuildKeepsTheScrolledPlace) {
    Make(LVS_REPORT, 100);
    ListView_EnsureVisible(list, 60);
    stylus.Settle();
    const int top = ListView_GetTopIndex(list);
    const int page = ListView_GetCountPerPage(list);
    EXPECT_EQ(top, 60 - page + 1);
    Send(list, WM_SETREDRAW, FALSE);
    EXPECT_EQ(ListView_GetTopIndex(list), top);
    ListView_DeleteAllItems(list);
    for (int row = 0; row < 90; ++row)
        Insert(row);
    stylus.Settle(); // the host may look at the list in between
    ListView_SetItemState(list, 50, kBoth, kBoth);
    ListView_EnsureVisible(list, top + page - 1);
    ListView_EnsureVisible(list, 50);
    Send(list, WM_SETREDRAW, TRUE);
    stylus.Settle();
    EXPECT_EQ(ListView_GetTopIndex(list), 50 < top ? 50 : top);
    EXPECT_EQ(Selected(), std::vector<int>{50});
    stylus.Key(Qt::Key_Down);
    EXPECT_EQ(Selected(), std::vector<int>{51});
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
    int row = -1;
    int failures = 0;
    for (; row == -1; ++failures) {
        SetLastError(0);
        {
            const ScarceMemory scarce(failures);
            row = ListView_InsertItem(list, item);
        }
        EXPECT_EQ(ListView_GetItemCount(list), row == -1 ? 16 : 17);
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
    ListView_SortItems(list, &CompareByText, reinterpret_cast<LPARAM>(list));
    Send(list, WM_SETREDRAW, TRUE);
    stylus.Settle();
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    RecordProperty("seconds", std::to_string(seconds));
    EXPECT_LT(seconds, 2.0);
    EXPECT_EQ(TextAt(list, 9999), u"row 9999");
    EXPECT_EQ(TextAt(list, 1), u"row 1");
}

} // namespace
