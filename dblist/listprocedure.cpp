#include "dblist/listprocedure.h"

#include "app/application.h"
#include "dblist/databaselist.h"
#include "dblist/dragout.h"
#include "lists/clipboardtext.h"
#include "lists/contextmenu.h"
#include "lists/header.h"
#include "platform/controls.h"
#include "platform/menu.h"
#include "platform/shell.h"
#include "resources/resource.h"

namespace {

LRESULT PassOn(HWND list, UINT message, WPARAM wParam, LPARAM lParam) {
    return CallWindowProcW(App().listViewProc, list, message, wParam, lParam);
}

bool IsTapAndHold(HWND list, POINT point) {
    SHRGINFO gesture = {};
    gesture.cbSize = sizeof(gesture);
    gesture.hwndClient = list;
    gesture.ptDown = point;
    gesture.dwFlags = SHRG_RETURNCMD;
    return SHRecognizeGesture(&gesture) == GN_CONTEXTMENU;
}

void ShowMenuAt(POINT screenPoint, UINT flags) {
    const HMENU menu = LoadMenuW(AppInstance(), MAKEINTRESOURCEW(IDR_LIST_MENU));
    TrackPopupMenuEx(GetSubMenu(menu, 0), flags, screenPoint.x, screenPoint.y, App().mainWindow, nullptr);
    DestroyMenu(menu);
}

void ShowContextMenu(HWND list, POINT point) {
    ClientToScreen(list, &point);
    ShowMenuAt(point, TPM_RIGHTALIGN);
}

POINT PointOf(LPARAM lParam) {
    return {SignedLoWord(lParam), SignedHiWord(lParam)};
}

LRESULT OnStylusDown(HWND list, WPARAM wParam, LPARAM lParam) {
    const POINT point = PointOf(lParam);
    if (IsTapAndHold(list, point)) {
        // The list must not wait for the stylus to be lifted, for the menu gets that message.
        PostMessageW(list, WM_LBUTTONUP, wParam, lParam);
        const LRESULT result = PassOn(list, WM_LBUTTONDOWN, wParam, lParam);
        ShowContextMenu(list, point);
        return result;
    }
    const bool dragged = ListView_HitTest(list, point) >= 0 && DragDetect(list, point);
    if (dragged)
        PostMessageW(list, WM_LBUTTONUP, wParam, lParam);
    const LRESULT result = PassOn(list, WM_LBUTTONDOWN, wParam, lParam);
    if (dragged)
        DragSelectedDatabases(App().mainWindow);
    else if (!App().settings->doubleTap)
        PostMessageW(App().mainWindow, WM_COMMAND, IDM_VIEW_MODIFY, 0);
    return result;
}

// The mouse's other button asks for the menu at once.
LRESULT OnRightButtonDown(HWND list, WPARAM wParam, LPARAM lParam) {
    const POINT point = PointOf(lParam);
    const bool held = IsTapAndHold(list, point);
    const LRESULT result = PassOn(list, WM_RBUTTONDOWN, wParam, lParam);
    if (held)
        ShowContextMenu(list, point);
    return result;
}

bool OnKey(HWND list, WPARAM key) {
    switch (key) {
    case VK_RETURN:
        PostMessageW(App().mainWindow, WM_COMMAND, IDM_VIEW_MODIFY, 0);
        return true;
    case VK_DELETE: // as the menu's command, which is greyed otherwise
        if (SelectedRowCount() == 1)
            PostMessageW(App().mainWindow, WM_COMMAND, IDM_DELETE, 0);
        return true;
    case VK_INSERT: // Ctrl+C copies the database itself
        if (GetKeyState(VK_CONTROL) < 0)
            CopyRowsAsText(list, kDatabaseColumnCount);
        return true;
    }
    return false;
}

} // namespace

LRESULT DatabaseListProcedure(HWND list, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_DRAWITEM:
        DrawHeaderItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
        return TRUE;
    case WM_KEYDOWN:
        if (OnKey(list, wParam))
            return 0;
        break;
    case WM_CONTEXTMENU:
        ShowMenuAt(MenuPointOfFocusedRow(list), 0);
        return 0;
    case WM_LBUTTONDOWN:
        return OnStylusDown(list, wParam, lParam);
    case WM_RBUTTONDOWN:
        return OnRightButtonDown(list, wParam, lParam);
    }
    return PassOn(list, message, wParam, lParam);
}
