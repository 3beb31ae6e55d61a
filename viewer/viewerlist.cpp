// The viewer's list of properties as a control: its columns, its header, and what its keys do.
#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "lists/contextmenu.h"
#include "lists/header.h"
#include "platform/dialog.h"
#include "platform/menu.h"
#include "platform/shell.h"
#include "resources/resource.h"
#include "viewer/recordviewer.h"

namespace {

constexpr int kEditMenu = 1; // its place in the menu
constexpr int kColumns = 3;
constexpr UINT kColumnTitles[kColumns] = {IDS_VIEWER_COLUMN_TYPE, IDS_VIEWER_COLUMN_SIZE,
                                          IDS_VIEWER_COLUMN_ID};
constexpr int kColumnFormats[kColumns] = {LVCFMT_LEFT, LVCFMT_RIGHT, LVCFMT_RIGHT};

// The Edit menu, whose commands are those of the selected property.
void ShowEditMenu(HWND list, POINT screenPoint) {
    const HWND dialog = GetParent(list);
    const HWND bar = DialogState<RecordViewer>(dialog)->menuBar;
    const auto menu = reinterpret_cast<HMENU>(SendMessageW(bar, SHCMBM_GETMENU, 0, 0));
    TrackPopupMenuEx(GetSubMenu(menu, kEditMenu), 0, screenPoint.x, screenPoint.y, dialog, nullptr);
}

// Selects first, which may ask whether the edited value is to be saved, and so end in a closed viewer.
LRESULT OnRightButtonDown(HWND list, WPARAM wParam, LPARAM lParam) {
    const LRESULT result = CallWindowProcW(App().listViewProc, list, WM_RBUTTONDOWN, wParam, lParam);
    POINT point = {SignedLoWord(lParam), SignedHiWord(lParam)};
    if (IsWindow(list) && ClientToScreen(list, &point))
        ShowEditMenu(list, point);
    return result;
}

// Comes before the list view's own procedure, to draw the header and to take some keys.
LRESULT PropertyListProcedure(HWND list, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_DRAWITEM:
        DrawHeaderItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
        return TRUE;
    case WM_CONTEXTMENU:
        ShowEditMenu(list, MenuPointOfFocusedRow(list));
        return 0;
    case WM_RBUTTONDOWN:
        return OnRightButtonDown(list, wParam, lParam);
    case WM_KEYDOWN:
        if (wParam != VK_DELETE)
            break;
        if (IsWindowEnabled(GetDlgItem(GetParent(list), IDC_VIEWER_DELETE)))
            PostMessageW(GetParent(list), WM_COMMAND, IDC_VIEWER_DELETE, 0);
        return 0;
    }
    return CallWindowProcW(App().listViewProc, list, message, wParam, lParam);
}

} // namespace

void RecordViewer::InitList() {
    const HWND list = Control(IDC_VIEWER_LIST);
    RECT client;
    GetClientRect(list, &client);
    for (int column = 0; column < kColumns; ++column) {
        WCHAR title[kTitleCapacity];
        LoadText(kColumnTitles[column], title);
        LVCOLUMNW item = {};
        item.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
        item.fmt = kColumnFormats[column];
        item.cx = (client.right - GetSystemMetrics(SM_CXVSCROLL) - 1) / kColumns;
        item.pszText = title;
        item.iSubItem = column;
        ListView_InsertColumn(list, column, item);
    }
    NameWindow(list, IDS_NAME_PROPERTIES);
    ListView_SetExtendedListViewStyleEx(list, LVS_EX_FULLROWSELECT, LVS_EX_FULLROWSELECT);
    Header_SetImageList(ListView_GetHeader(list), App().headerImages);
    MakeHeaderOwnerDrawn(list);
    SetWindowLongPtrW(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(PropertyListProcedure));
}
