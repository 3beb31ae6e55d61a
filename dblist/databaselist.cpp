#include "dblist/databaselist.h"

#include <new>

#include "app/application.h"
#include "app/uiservices.h"
#include "dblist/listprocedure.h"
#include "lists/header.h"
#include "platform/gdi.h"
#include "platform/shell.h"
#include "resources/resource.h"

namespace {

// The columns share the width in sixteenths.
constexpr int kColumnParts[kDatabaseColumnCount] = {7, 4, 4};
constexpr UINT kColumnTitles[kDatabaseColumnCount] = {IDS_COLUMN_NAME, IDS_COLUMN_SIZE, IDS_COLUMN_MODIFIED};
constexpr int kPartsOfWidth = 16;

constexpr COLORREF kIconMask = RGB(0xC0, 0xC0, 0xC0);
constexpr COLORREF kHeaderMask = RGB(0xFF, 0xFF, 0xFF);

struct IconStrip {
    UINT bitmap;
    int width; // of one image, pixels
};

int ColumnWidth(int width, int column) {
    // Quirk: only the low 16 bits of the width count, as on the handheld.
    return static_cast<WORD>(width / kPartsOfWidth * kColumnParts[column]);
}

HIMAGELIST LoadStrip(const IconStrip& strip, COLORREF mask) {
    return ImageList_LoadImageW(AppInstance(), MAKEINTRESOURCEW(static_cast<WORD>(strip.bitmap)), strip.width,
                                0, mask, IMAGE_BITMAP, 0);
}

void LoadImageLists() {
    const bool high = App().highResolution;
    App().largeIcons =
        LoadStrip(high ? IconStrip{IDB_LIST_ICONS_64, 64} : IconStrip{IDB_LIST_ICONS_32, 32}, kIconMask);
    App().smallIcons =
        LoadStrip(high ? IconStrip{IDB_LIST_ICONS_32, 32} : IconStrip{IDB_LIST_ICONS_16, 16}, kIconMask);
    App().headerImages = LoadStrip(
        high ? IconStrip{IDB_HEADER_IMAGES_HIGH, 20} : IconStrip{IDB_HEADER_IMAGES, 10}, kHeaderMask);
}

void InsertColumns(HWND list) {
    const int screenWidth = GetSystemMetrics(SM_CXSCREEN);
    for (int column = 0; column < kDatabaseColumnCount; ++column) {
        WCHAR title[kTitleCapacity];
        LoadText(kColumnTitles[column], title);
        LVCOLUMNW info = {};
        info.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
        info.fmt = LVCFMT_LEFT;
        info.cx = ColumnWidth(screenWidth, column);
        info.pszText = title;
        info.iSubItem = column;
        ListView_InsertColumn(list, column, info);
    }
    MakeHeaderOwnerDrawn(list);
}

bool CreateMenuBar(HWND mainWindow) {
    SHMENUBARINFO bar = {};
    bar.cbSize = sizeof(bar);
    bar.hwndParent = mainWindow;
    bar.nToolBarId = IDR_MAIN_MENU;
    bar.hInstRes = AppInstance();
    bar.nBmpId = App().highResolution ? IDB_MAIN_BUTTONS_HIGH : IDB_MAIN_BUTTONS;
    bar.cBmpImages = 2;
    if (!SHCreateMenuBar(&bar))
        return false;
    App().menuBar = bar.hwndMB;
    return true;
}

void SetImageLists(HWND list) {
    LoadImageLists();
    ListView_SetImageList(list, App().largeIcons, LVSIL_NORMAL);
    ListView_SetImageList(list, App().smallIcons, LVSIL_SMALL);
    Header_SetImageList(ListView_GetHeader(list), App().headerImages);
}

} // namespace

bool CreateDatabaseList(HWND mainWindow) {
    App().settings = new (std::nothrow) Settings;
    if (!App().settings || !CreateMenuBar(mainWindow))
        return false;
    App().listView =
        CreateWindowExW(0, u"SysListView32", u"List View Control",
                        WS_CHILD | WS_VISIBLE | WS_TABSTOP | LVS_REPORT | LVS_SHOWSELALWAYS | LVS_EDITLABELS,
                        0, 0, 0, 0, mainWindow, ChildId(IDC_LIST), AppInstance(), nullptr);
    const HWND list = App().listView;
    if (!list)
        return false;
    LayOutDatabaseList(mainWindow);
    App().listViewProc = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(DatabaseListProcedure)));
    SetImageLists(list);
    NameWindow(list, IDS_NAME_DATABASES);
    NameRowIcons(list);
    ApplyListOptions();
    InsertColumns(list);
    SetListStyle(App().settings->listStyle);
    RebuildDatabaseList();
    return true;
}

void ApplyListOptions() {
    ListView_SetExtendedListViewStyleEx(App().listView, LVS_EX_FULLROWSELECT,
                                        App().settings->fullRow ? LVS_EX_FULLROWSELECT : 0);
    if (App().settings->listFont)
        SendMessageW(App().listView, WM_SETFONT, reinterpret_cast<WPARAM>(App().settings->listFont), TRUE);
}

DWORD CurrentListStyle() {
    return static_cast<DWORD>(GetWindowLongPtrW(App().listView, GWL_STYLE)) & LVS_TYPEMASK;
}

void SetListStyle(DWORD listStyle) {
    const DWORD style = static_cast<DWORD>(GetWindowLongPtrW(App().listView, GWL_STYLE));
    if ((style & LVS_TYPEMASK) != (listStyle & LVS_TYPEMASK))
        SetWindowLongPtrW(App().listView, GWL_STYLE, (style & ~LVS_TYPEMASK) | (listStyle & LVS_TYPEMASK));
}

void LayOutDatabaseList(HWND mainWindow) {
    App().menuBarHeight = static_cast<LONG>(SendMessageW(App().menuBar, SHCMBM_GETHEIGHT, 0, 0));
    RECT client;
    GetClientRect(mainWindow, &client);
    const int top = App().menuBarHeight + 1;
    MoveWindow(App().listView, 0, top, client.right, client.bottom - top, TRUE);
}

void SetListColumnWidths(int width) {
    for (int column = 0; column < kDatabaseColumnCount; ++column)
        ListView_SetColumnWidth(App().listView, column, ColumnWidth(width, column));
}
