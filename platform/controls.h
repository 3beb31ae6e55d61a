// The built-in controls: "BUTTON", "STATIC", "EDIT", "ComboBox", "SysDateTimePick32", "SysListView32" with
// its "SysHeader32", "msctls_progress32". Messages, styles and notifications in the platform's own names and
// numbers.
#pragma once

#include "platform/window.h"

// ---- button ----
constexpr DWORD BS_PUSHBUTTON = 0x0;
constexpr DWORD BS_DEFPUSHBUTTON = 0x1;
constexpr DWORD BS_AUTOCHECKBOX = 0x3;
constexpr DWORD BS_GROUPBOX = 0x7;
constexpr DWORD BS_AUTORADIOBUTTON = 0x9;
constexpr DWORD BS_OWNERDRAW = 0xB;
constexpr DWORD BS_TYPEMASK = 0xF;
constexpr UINT BM_GETCHECK = 0xF0;
constexpr UINT BM_SETCHECK = 0xF1;
constexpr UINT BST_UNCHECKED = 0;
constexpr UINT BST_CHECKED = 1;
constexpr UINT BN_CLICKED = 0;

// ---- owner drawing ----
constexpr UINT ODT_BUTTON = 4;
constexpr UINT ODT_HEADER = 100;
constexpr UINT ODS_SELECTED = 0x0001;
struct DRAWITEMSTRUCT {
    UINT CtlType;
    UINT CtlID;
    UINT itemID; // header: the item's index
    UINT itemAction;
    UINT itemState;
    HWND hwndItem;
    HDC hDC;
    RECT rcItem; // in the coordinates of hDC
    LONG_PTR itemData;
};

// ---- static ----
constexpr DWORD SS_CENTER = 0x1;
constexpr DWORD SS_NOPREFIX = 0x80;

// ---- edit ----
constexpr DWORD ES_MULTILINE = 0x0004;
constexpr DWORD ES_PASSWORD = 0x0020;
constexpr DWORD ES_AUTOHSCROLL = 0x0080;
constexpr DWORD ES_READONLY = 0x0800;
constexpr DWORD ES_WANTRETURN = 0x1000;
constexpr UINT EM_GETSEL = 0xB0;
constexpr UINT EM_SETSEL = 0xB1;       // 0, -1: everything
constexpr UINT EM_SETMODIFY = 0xB9;    // without effect: nobody can ask for the mark
constexpr UINT EM_SETLIMITTEXT = 0xC5; // characters typed into a single line; WM_SETTEXT is never cut
constexpr UINT EM_CANUNDO = 0xC6;
constexpr UINT EM_EMPTYUNDOBUFFER = 0xCD;
constexpr UINT EN_CHANGE = 0x0300; // after typing and after WM_SETTEXT alike

// ---- drop-down list: "ComboBox" ----
constexpr DWORD CBS_DROPDOWNLIST = 0x0003;
constexpr DWORD CBS_SORT = 0x0100;
constexpr UINT CB_ADDSTRING = 0x0143; // lParam text; returns the item's index
constexpr UINT CB_GETCOUNT = 0x0146;
constexpr UINT CB_GETCURSEL = 0x0147; // CB_ERR for none
constexpr UINT CB_SETCURSEL = 0x014E; // wParam index, -1 for none
constexpr UINT CB_GETITEMDATA = 0x0150;
constexpr UINT CB_SETITEMDATA = 0x0151; // wParam index, lParam data
constexpr LRESULT CB_ERR = -1;
constexpr UINT CBN_SELCHANGE = 1;

// ---- date and time pickers: "SysDateTimePick32" ----
constexpr DWORD DTS_TIMEFORMAT = 0x0009;   // a time of day; otherwise a date
constexpr UINT DTM_GETSYSTEMTIME = 0x1001; // lParam SYSTEMTIME; all of it is filled
constexpr UINT DTM_SETSYSTEMTIME = 0x1002; // wParam GDT_VALID, lParam SYSTEMTIME
constexpr WPARAM GDT_VALID = 0;

// ---- progress bar ----
constexpr UINT PBM_SETPOS = WM_USER + 2;
constexpr UINT PBM_SETSTEP = WM_USER + 4;
constexpr UINT PBM_STEPIT = WM_USER + 5;
constexpr UINT PBM_SETRANGE32 = WM_USER + 6; // wParam low, lParam high

// ---- header ----
constexpr UINT HDM_GETITEMCOUNT = 0x1200;
constexpr UINT HDM_SETIMAGELIST = 0x1208; // lParam HIMAGELIST, not owned
constexpr UINT HDM_GETITEMW = 0x120B;
constexpr UINT HDM_SETITEMW = 0x120C;
constexpr UINT HDI_TEXT = 0x02;
constexpr UINT HDI_FORMAT = 0x04;
constexpr int HDF_RIGHT = 0x0001;
constexpr int HDF_CENTER = 0x0002;
constexpr int HDF_JUSTIFYMASK = 0x0003;
constexpr int HDF_SORTDOWN = 0x0200; // told to assistive programs; the owner draws the arrow
constexpr int HDF_SORTUP = 0x0400;
constexpr int HDF_OWNERDRAW = 0x8000; // WM_DRAWITEM to the header's parent, the list view
struct HDITEMW {
    UINT mask;
    WCHAR* pszText;
    int cchTextMax;
    int fmt;
};

// ---- list view ----
constexpr DWORD LVS_ICON = 0x0;
constexpr DWORD LVS_REPORT = 0x1;
constexpr DWORD LVS_SMALLICON = 0x2;
constexpr DWORD LVS_LIST = 0x3;
constexpr DWORD LVS_TYPEMASK = 0x3; // changing these bits by SetWindowLongPtrW(GWL_STYLE) switches the view
constexpr DWORD LVS_SINGLESEL = 0x0004;
constexpr DWORD LVS_SHOWSELALWAYS = 0x0008;
constexpr DWORD LVS_EDITLABELS = 0x0200;
constexpr DWORD LVS_EX_CHECKBOXES = 0x04;
constexpr DWORD LVS_EX_FULLROWSELECT = 0x20;

constexpr int LVSIL_NORMAL = 0;
constexpr int LVSIL_SMALL = 1;

constexpr UINT LVIF_TEXT = 0x1;
constexpr UINT LVIF_IMAGE = 0x2;
constexpr UINT LVIF_PARAM = 0x4;
constexpr UINT LVIF_STATE = 0x8;
constexpr UINT LVIS_FOCUSED = 0x1;
constexpr UINT LVIS_SELECTED = 0x2;
constexpr UINT LVIS_STATEIMAGEMASK = 0xF000; // check boxes: 1 << 12 unchecked, 2 << 12 checked
struct LVITEMW {
    UINT mask;
    int iItem;
    int iSubItem;
    UINT state;
    UINT stateMask;
    WCHAR* pszText;
    int cchTextMax;
    int iImage;
    LPARAM lParam;
};

constexpr UINT LVCF_FMT = 0x1;
constexpr UINT LVCF_WIDTH = 0x2;
constexpr UINT LVCF_TEXT = 0x4;
constexpr UINT LVCF_SUBITEM = 0x8;
constexpr int LVCFMT_LEFT = 0;
constexpr int LVCFMT_RIGHT = 1;
struct LVCOLUMNW {
    UINT mask;
    int fmt;
    int cx; // pixels
    WCHAR* pszText;
    int cchTextMax;
    int iSubItem;
};

constexpr UINT LVNI_FOCUSED = 0x1;
constexpr UINT LVNI_SELECTED = 0x2;
constexpr UINT LVFI_PARAM = 0x1;
struct LVFINDINFOW {
    UINT flags;
    const WCHAR* psz;
    LPARAM lParam;
};

struct LVHITTESTINFO {
    POINT pt; // client coordinates
    UINT flags;
    int iItem;
};

// Returns negative, 0 or positive; gets the two rows' parameters and LVM_SORTITEMS' wParam.
using PFNLVCOMPARE = int (*)(LPARAM, LPARAM, LPARAM);

constexpr UINT LVM_SETIMAGELIST = 0x1003; // wParam LVSIL_..., lParam HIMAGELIST, not owned
constexpr UINT LVM_GETITEMCOUNT = 0x1004;
constexpr UINT LVM_DELETEALLITEMS = 0x1009;
constexpr UINT LVM_GETNEXTITEM = 0x100C; // wParam start (-1: the first row), lParam LVNI_...; -1 for none
constexpr LONG LVIR_LABEL = 2;
constexpr UINT LVM_GETITEMRECT = 0x100E; // lParam RECT, its left LVIR_LABEL
constexpr UINT LVM_HITTEST = 0x1012;     // lParam LVHITTESTINFO, in and out; the row there, -1 for none
constexpr UINT LVM_ENSUREVISIBLE = 0x1013;
constexpr UINT LVM_SETCOLUMNWIDTH = 0x101E;
constexpr UINT LVM_GETHEADER = 0x101F;
constexpr UINT LVM_GETTOPINDEX = 0x1027;
constexpr UINT LVM_GETCOUNTPERPAGE = 0x1028;
constexpr UINT LVM_SETITEMSTATE = 0x102B; // wParam row or -1 for all, lParam LVITEMW with state and stateMask
constexpr UINT LVM_GETITEMSTATE = 0x102C; // wParam row, lParam mask
// wParam for the comparison, lParam PFNLVCOMPARE. Stable; rows keep their indexes until it is done, so the
// comparison may look them up. Selection and focus go with their rows.
constexpr UINT LVM_SORTITEMS = 0x1030;
constexpr UINT LVM_GETSELECTEDCOUNT = 0x1032;
constexpr UINT LVM_SETEXTENDEDLISTVIEWSTYLE = 0x1036; // wParam mask (0: all), lParam bits
constexpr UINT LVM_GETITEMW = 0x104B;
constexpr UINT LVM_SETITEMW = 0x104C;
constexpr UINT LVM_INSERTITEMW = 0x104D;
constexpr UINT LVM_FINDITEMW = 0x1053; // by LVFI_PARAM from the first row on, constant time; -1 when absent
constexpr UINT LVM_INSERTCOLUMNW = 0x1061;
constexpr UINT LVM_GETITEMTEXTW = 0x1073; // wParam row, lParam LVITEMW; returns characters
constexpr UINT LVM_SETITEMTEXTW = 0x1074;

constexpr UINT LVM_NAMEIMAGE =
    0x10F0; // wParam image, lParam text: the picture in words, for who cannot see it

constexpr UINT NM_DBLCLK = static_cast<UINT>(-3);
constexpr UINT LVN_ITEMCHANGED = static_cast<UINT>(-101); // states only, once a row that changes
constexpr UINT LVN_COLUMNCLICK = static_cast<UINT>(-108);
constexpr UINT LVN_ENDLABELEDITW = static_cast<UINT>(-176); // NMLVDISPINFOW; nonzero keeps the new text
struct NMLISTVIEW {
    NMHDR hdr;
    int iItem;
    int iSubItem;
    UINT uNewState;
    UINT uOldState;
    UINT uChanged;
    POINT ptAction;
    LPARAM lParam;
};
struct NMLVDISPINFOW {
    NMHDR hdr;
    LVITEMW item; // LVN_ENDLABELEDITW: pszText is the new text, null when the edit was cancelled
};

// ---- the list view's and its header's messages as calls ----
inline int ListView_GetItemCount(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
}
inline int ListView_GetSelectedCount(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETSELECTEDCOUNT, 0, 0));
}
inline int ListView_GetNextItem(HWND list, int after, UINT flags) {
    return static_cast<int>(SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(after), flags));
}
inline int ListView_HitTest(HWND list, POINT point) {
    LVHITTESTINFO hit = {point, 0, -1};
    return static_cast<int>(SendMessageW(list, LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
}
inline int ListView_FindItem(HWND list, const LVFINDINFOW& wanted) {
    return static_cast<int>(
        SendMessageW(list, LVM_FINDITEMW, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&wanted)));
}
inline bool ListView_GetItem(HWND list, LVITEMW* item) {
    return SendMessageW(list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(item)) != 0;
}
inline void ListView_SetItem(HWND list, const LVITEMW& item) {
    SendMessageW(list, LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
}
// The row that it became; -1 on failure.
inline int ListView_InsertItem(HWND list, const LVITEMW& item) {
    return static_cast<int>(SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
}
// Empty when there is no such cell; cut where the room ends.
template <int capacity>
void ListView_GetItemText(HWND list, int row, int column, WCHAR (&text)[capacity]) {
    text[0] = 0;
    LVITEMW item = {};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = capacity;
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}
inline void ListView_SetItemText(HWND list, int row, int column, const WCHAR* text) {
    LVITEMW item = {};
    item.iSubItem = column;
    item.pszText = const_cast<WCHAR*>(text);
    SendMessageW(list, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}
inline UINT ListView_GetItemState(HWND list, int row, UINT mask) {
    return static_cast<UINT>(SendMessageW(list, LVM_GETITEMSTATE, static_cast<WPARAM>(row), mask));
}
// Row -1: all rows.
inline void ListView_SetItemState(HWND list, int row, UINT state, UINT mask) {
    LVITEMW item = {};
    item.state = state;
    item.stateMask = mask;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}
inline void ListView_DeleteAllItems(HWND list) {
    SendMessageW(list, LVM_DELETEALLITEMS, 0, 0);
}
inline void ListView_EnsureVisible(HWND list, int row) {
    SendMessageW(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
}
// Client coordinates; false, and the rectangle unchanged, where there is no such row.
inline bool ListView_GetLabelRect(HWND list, int row, RECT* label) {
    RECT found = {LVIR_LABEL, 0, 0, 0};
    const bool exists =
        SendMessageW(list, LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&found)) != 0;
    if (exists)
        *label = found;
    return exists;
}
inline void ListView_NameImage(HWND list, int image, const WCHAR* name) {
    SendMessageW(list, LVM_NAMEIMAGE, static_cast<WPARAM>(image), reinterpret_cast<LPARAM>(name));
}
inline int ListView_GetTopIndex(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETTOPINDEX, 0, 0));
}
inline int ListView_GetCountPerPage(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETCOUNTPERPAGE, 0, 0));
}
inline void ListView_SortItems(HWND list, PFNLVCOMPARE compare, LPARAM param) {
    SendMessageW(list, LVM_SORTITEMS, static_cast<WPARAM>(param), reinterpret_cast<LPARAM>(compare));
}
inline void ListView_InsertColumn(HWND list, int column, const LVCOLUMNW& info) {
    SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&info));
}
inline void ListView_SetColumnWidth(HWND list, int column, int pixels) {
    SendMessageW(list, LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column), pixels);
}
inline void ListView_SetExtendedListViewStyleEx(HWND list, DWORD mask, DWORD styles) {
    SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, mask, styles);
}
inline void ListView_SetImageList(HWND list, HIMAGELIST images, int kind) {
    SendMessageW(list, LVM_SETIMAGELIST, static_cast<WPARAM>(kind), reinterpret_cast<LPARAM>(images));
}
inline HWND ListView_GetHeader(HWND list) {
    return reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
}
inline int Header_GetItemCount(HWND header) {
    return static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
}
inline void Header_GetItem(HWND header, int column, HDITEMW* item) {
    SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(item));
}
inline void Header_SetItem(HWND header, int column, const HDITEMW& item) {
    SendMessageW(header, HDM_SETITEMW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&item));
}
inline void Header_SetImageList(HWND header, HIMAGELIST images) {
    SendMessageW(header, HDM_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(images));
}
