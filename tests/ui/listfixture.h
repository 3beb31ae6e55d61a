// A list view of three columns whose notifications are written down.
#pragma once

#include <QTest>
#include <QTimer>
#include <QWindow>
#include <functional>

#include "tests/ui/windowfixture.h"

constexpr UINT kList = 10001;

struct Change {
    int row;
    UINT before;
    UINT after;
    bool operator==(const Change&) const = default;
};

constexpr UINT kBoth = LVIS_SELECTED | LVIS_FOCUSED;

inline std::u16string TextAt(HWND list, int row) {
    WCHAR text[64];
    ListView_GetItemText(list, row, 0, text);
    return text;
}

inline int RowOf(HWND list, LPARAM param) {
    return ListView_FindItem(list, {LVFI_PARAM, nullptr, param});
}

class ListTest : public WindowTest {
protected:
    void Make(DWORD style = LVS_REPORT | LVS_SHOWSELALWAYS | LVS_EDITLABELS, int rows = 5) {
        list = Add(u"SysListView32", u"List", style, kList, {0, 0, 400, 300});
        ListView_SetExtendedListViewStyleEx(list, LVS_EX_FULLROWSELECT, LVS_EX_FULLROWSELECT);
        for (int column = 0; column < 3; ++column) {
            std::u16string title = u"Column";
            const int format = column == 2 ? LVCFMT_RIGHT : LVCFMT_LEFT;
            const LVCOLUMNW info{LVCF_TEXT | LVCF_WIDTH | LVCF_FMT, format, 120, title.data(), 0, 0};
            ListView_InsertColumn(list, column, info);
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
        EXPECT_EQ(ListView_InsertItem(list, item), row);
        for (const int column : {1, 2})
            ListView_SetItemText(list, row, column, text.c_str());
    }

    static std::u16string Digits(int number) {
        std::string digits = std::to_string(number);
        return {digits.begin(), digits.end()};
    }

    std::vector<int> Selected() {
        std::vector<int> rows;
        for (int row = -1; (row = ListView_GetNextItem(list, row, LVNI_SELECTED)) >= 0;)
            rows.push_back(row);
        EXPECT_EQ(ListView_GetSelectedCount(list), static_cast<int>(rows.size()));
        return rows;
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
        GetClientRect(ListView_GetHeader(list), &header);
        int height = (300 - header.bottom) / ListView_GetCountPerPage(list);
        int top = ListView_GetTopIndex(list);
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
