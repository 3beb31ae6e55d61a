#include "app/start/mainwindow.h"

#include <utility>

#include "app/application.h"
#include "app/uiservices.h"
#include "dblist/commands.h"
#include "dblist/databaselist.h"
#include "dblist/documents.h"
#include "dblist/management.h"
#include "platform/controls.h"
#include "platform/gdi.h"
#include "platform/shell.h"
#include "resources/resource.h"

namespace {

constexpr int kExtraBytes = 8; // of the class, and of a window; the window's hold the application object
constexpr int kClassIconSize = 8;
constexpr int kSmallIconSize = 16;
constexpr int kHighResolution = 150; // pixels an inch, above which the larger pictures are used
constexpr UINT kShellQuery = 1023;   // answered with 0

HICON MainIcon(int size) {
    return LoadImageW(AppInstance(), MAKEINTRESOURCEW(IDI_MAIN), IMAGE_ICON, size, size, 0);
}

LRESULT OnCreate(HWND window, const CREATESTRUCTW* create) {
    SetWindowLongPtrW(window, 0, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    App().mainWindow = window;
    if (!CreateDatabaseList(window)) {
        MessageFromString(window, IDS_COULD_NOT_INITIALIZE, kFailureBox);
        return -1;
    }
    UpdateMainMenu(nullptr);
    return 0;
}

void OnEndSession() {
    SaveListSelection();
    App().settings->Save();
}

void OnDestroy() {
    if (App().listView) // a window whose list could not be made goes through here, too
        SaveListSelection();
    delete App().settings;
    App().settings = nullptr;
    DeleteObject(App().largeIcons);
    DeleteObject(App().smallIcons);
    DeleteObject(App().spareObject);
    DeleteObject(App().headerImages);
    for (const HDROP dropped : std::exchange(App().waitingFiles, {}))
        DragFinish(dropped);
    // A command that is still running finds that these are gone.
    App().mainWindow = nullptr;
    App().listView = nullptr;
    App().menuBar = nullptr;
    PostQuitMessage(0);
}

void TellShellOfSettings(HWND window, WPARAM what, LPARAM lParam, DWORD size) {
    SHACTIVATEINFO activation = {};
    activation.cbSize = size;
    SHHandleWMSettingChange(window, what, lParam, &activation);
}

void OnSettingChange(HWND window, WPARAM what, LPARAM lParam) {
    if (what == kOrientationChanged)
        LayOutDatabaseList(window);
    else if (what == SPI_SETSIPINFO)
        TellShellOfSettings(window, what, lParam, sizeof(SHACTIVATEINFO));
}

// The label that was edited is still the old one in the list; the store decides, and Refresh shows.
void OnEndLabelEdit(HWND window, const NMLVDISPINFOW& edit) {
    WCHAR name[kNameCapacity];
    DatabaseNameOfRow(edit.item.iItem, name);
    if (edit.item.pszText && RenameDatabaseTo(window, name, edit.item.pszText))
        PostMessageW(window, WM_COMMAND, IDM_REFRESH, 0);
}

void OnListNotification(HWND window, const NMHDR* header) {
    switch (header->code) {
    case NM_DBLCLK:
        PostMessageW(window, WM_COMMAND, IDM_VIEW_MODIFY, 0);
        break;
    case LVN_COLUMNCLICK:
        SortByColumn(reinterpret_cast<const NMLISTVIEW*>(header)->iSubItem);
        break;
    case LVN_ITEMCHANGED:
        break;
    case LVN_ENDLABELEDITW:
        OnEndLabelEdit(window, *reinterpret_cast<const NMLVDISPINFOW*>(header));
        return;
    default:
        return;
    }
    UpdateMainMenu(nullptr);
}

void OnMenuBarSizeChanged(HWND window) {
    RECT client;
    GetClientRect(window, &client);
    const LONG height = static_cast<LONG>(SendMessageW(App().menuBar, SHCMBM_GETHEIGHT, 0, 0));
    if (client.right > 0 && client.bottom > 0 && App().listView && height != App().menuBarHeight)
        LayOutDatabaseList(window);
}

void OnNotify(HWND window, const NMHDR* header) {
    if (header->idFrom == IDC_LIST)
        OnListNotification(window, header);
    else if (header->idFrom == IDC_MENU_BAR && header->code == MBN_SIZECHANGED)
        OnMenuBarSizeChanged(window);
}

LRESULT MainWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_CREATE:
        return OnCreate(window, reinterpret_cast<const CREATESTRUCTW*>(lParam));
    case WM_DESTROY:
        OnDestroy();
        return 0;
    case WM_SIZE:
        LayOutDatabaseList(window);
        return 0;
    case WM_ACTIVATE:
        if (LOWORD(wParam) != WA_INACTIVE)
            TellShellOfSettings(window, static_cast<WPARAM>(-1), 0, 0);
        break;
    case WM_SETFOCUS:
        SetFocus(App().listView);
        return 0;
    case WM_CLOSE:
        if (App().idle)
            DestroyWindow(window);
        return 0;
    case WM_ENDSESSION:
        OnEndSession();
        return 0;
    case WM_SETTINGCHANGE:
        OnSettingChange(window, wParam, lParam);
        return 0;
    case WM_NOTIFY:
        OnNotify(window, reinterpret_cast<const NMHDR*>(lParam));
        return 0;
    case WM_HELP:
        OpenHelp(u"tarnwickscope.htm#tarnwickscope_help");
        return 0;
    case WM_COMMAND:
        RunMainCommand(window, LOWORD(wParam));
        return 0;
    case WM_DROPFILES:
        OpenDocuments(window, reinterpret_cast<HDROP>(wParam));
        return 0;
    case WM_INITMENUPOPUP:
        UpdateMainMenu(reinterpret_cast<HMENU>(wParam));
        return 0;
    case kShellQuery:
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void MeasureDisplay() {
    const HDC display = CreateDCW(u"DISPLAY", nullptr, nullptr, nullptr);
    App().highResolution = GetDeviceCaps(display, LOGPIXELSX) > kHighResolution;
    DeleteDC(display);
}

} // namespace

bool RegisterMainWindowClass() {
    WNDCLASSW info = {};
    info.style = CS_HREDRAW | CS_VREDRAW;
    info.lpfnWndProc = MainWindowProcedure;
    info.cbClsExtra = kExtraBytes;
    info.cbWndExtra = kExtraBytes;
    info.hInstance = AppInstance();
    info.hIcon = MainIcon(kClassIconSize);
    info.hbrBackground = GetStockObject(WHITE_BRUSH);
    info.lpszClassName = kMainWindowClass;
    return RegisterClassW(&info) != 0;
}

bool CreateMainWindow() {
    MeasureDisplay();
    const WORD frameBitmap = App().highResolution ? IDB_FRAME_HELP_HIGH : IDB_FRAME_HELP;
    App().frameBitmap = LoadBitmapW(AppInstance(), MAKEINTRESOURCEW(frameBitmap));
    WCHAR title[kCaptionCapacity];
    LoadText(IDS_PRODUCT, title);
    const HWND window = CreateWindowExW(0, kMainWindowClass, title, WS_VISIBLE, 0, 0, CW_USEDEFAULT,
                                        CW_USEDEFAULT, nullptr, nullptr, AppInstance(), &App());
    App().mainWindow = window;
    if (!window)
        return false;
    SendMessageW(window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(MainIcon(kSmallIconSize)));
    ShowWindow(window, SW_SHOWNORMAL);
    RECT client;
    GetClientRect(window, &client);
    if (client.right > 1)
        SetListColumnWidths(client.right);
    UpdateWindow(window);
    SetFocus(App().listView);
    return true;
}
