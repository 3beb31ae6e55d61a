// Windows, messages, timers, accelerators, message boxes and cursors.
//
// One user-interface thread owns every window. Coordinates are pixels of the screen (the handheld's display,
// one window of the host). Functions that take a window accept null or a destroyed window and fail quietly.
// Where there is no memory a function fails with last error ERROR_NOT_ENOUGH_MEMORY, and SendMessageW answers
// 0 unless the message has a failure value of its own.
#pragma once

#include "platform/types.h"

// ---- messages ----
constexpr UINT WM_CREATE = 0x0001;
constexpr UINT WM_DESTROY = 0x0002;
constexpr UINT WM_SIZE = 0x0005;
constexpr UINT WM_ACTIVATE = 0x0006;
constexpr UINT WM_SETFOCUS = 0x0007;
constexpr UINT WM_KILLFOCUS = 0x0008;
constexpr UINT WM_ENABLE = 0x000A;
constexpr UINT WM_SETREDRAW = 0x000B;
constexpr UINT WM_SETTEXT = 0x000C;
constexpr UINT WM_GETTEXT = 0x000D;
constexpr UINT WM_GETTEXTLENGTH = 0x000E;
constexpr UINT WM_PAINT = 0x000F;
constexpr UINT WM_CLOSE = 0x0010;
constexpr UINT WM_QUIT = 0x0012;
constexpr UINT WM_SHOWWINDOW = 0x0018;
constexpr UINT WM_SETTINGCHANGE = 0x001A;
constexpr UINT WM_DRAWITEM = 0x002B;
constexpr UINT WM_SETFONT = 0x0030;
constexpr UINT WM_GETFONT = 0x0031;
constexpr UINT WM_ENDSESSION = 0x0016; // the process ends behind this message, without WM_DESTROY
constexpr UINT WM_NOTIFY = 0x004E;
constexpr UINT WM_HELP = 0x0053;
constexpr UINT WM_CONTEXTMENU = 0x007B; // lParam: kByKey, for what has the focus; parents get it by default
constexpr UINT WM_SETICON = 0x0080;
constexpr UINT WM_GETDLGCODE = 0x0087;
constexpr UINT WM_KEYDOWN = 0x0100;
constexpr UINT WM_KEYUP = 0x0101;
constexpr UINT WM_CHAR = 0x0102;
constexpr UINT WM_SYSKEYDOWN = 0x0104;
constexpr UINT WM_SYSKEYUP = 0x0105;
constexpr UINT WM_INITDIALOG = 0x0110;
constexpr UINT WM_COMMAND = 0x0111;
constexpr UINT WM_TIMER = 0x0113;
constexpr UINT WM_INITMENUPOPUP = 0x0117;
constexpr UINT WM_MOUSEMOVE = 0x0200;
constexpr UINT WM_LBUTTONDOWN = 0x0201;
constexpr UINT WM_LBUTTONUP = 0x0202;
constexpr UINT WM_LBUTTONDBLCLK = 0x0203;
constexpr UINT WM_RBUTTONDOWN = 0x0204;
constexpr UINT WM_RBUTTONUP = 0x0205;
constexpr UINT WM_MOUSEWHEEL = 0x020A;
constexpr UINT WM_CUT = 0x0300;
constexpr UINT WM_COPY = 0x0301;
constexpr UINT WM_PASTE = 0x0302;
constexpr UINT WM_UNDO = 0x0304;
constexpr UINT WM_USER = 0x0400;

constexpr LPARAM kByKey = -1;
// WM_ACTIVATE, low word of wParam.
constexpr UINT WA_INACTIVE = 0;
constexpr UINT WA_ACTIVE = 1;
// WM_SETICON, wParam.
constexpr WPARAM ICON_SMALL = 0;
constexpr WPARAM ICON_BIG = 1;

// What assistive programs call the window (lParam: text) where neither its own text nor what stands before it
// in its dialog says it.
constexpr UINT WM_NAMEWINDOW = 0x03C0;

// ---- virtual keys ----
constexpr UINT VK_BACK = 0x08;
constexpr UINT VK_TAB = 0x09;
constexpr UINT VK_RETURN = 0x0D;
constexpr UINT VK_SHIFT = 0x10;
constexpr UINT VK_CONTROL = 0x11;
constexpr UINT VK_MENU = 0x12;
constexpr UINT VK_ESCAPE = 0x1B;
constexpr UINT VK_SPACE = 0x20;
constexpr UINT VK_PRIOR = 0x21;
constexpr UINT VK_NEXT = 0x22;
constexpr UINT VK_END = 0x23;
constexpr UINT VK_HOME = 0x24;
constexpr UINT VK_LEFT = 0x25;
constexpr UINT VK_UP = 0x26;
constexpr UINT VK_RIGHT = 0x27;
constexpr UINT VK_DOWN = 0x28;
constexpr UINT VK_INSERT = 0x2D;
constexpr UINT VK_DELETE = 0x2E;
constexpr UINT VK_APPS = 0x5D; // the menu key
constexpr UINT VK_F1 = 0x70;
constexpr UINT VK_F6 = 0x75;
constexpr UINT VK_F10 = 0x79;

// ---- styles ----
constexpr DWORD WS_POPUP = 0x80000000;
constexpr DWORD WS_CHILD = 0x40000000;
constexpr DWORD WS_VISIBLE = 0x10000000;
constexpr DWORD WS_DISABLED = 0x08000000;
constexpr DWORD WS_BORDER = 0x00800000;
constexpr DWORD WS_VSCROLL = 0x00200000;
constexpr DWORD WS_GROUP = 0x00020000;
constexpr DWORD WS_TABSTOP = 0x00010000;
constexpr DWORD WS_EX_TOPMOST = 0x00000008;
constexpr DWORD CS_VREDRAW = 0x0001;
constexpr DWORD CS_HREDRAW = 0x0002;
constexpr int CW_USEDEFAULT = static_cast<int>(0x80000000);

// GetWindowLongPtrW: these, or a byte offset into the window's extra bytes.
constexpr int GWLP_WNDPROC = -4;
constexpr int GWL_STYLE = -16;
constexpr int GWLP_ID = -12;
constexpr int GWLP_USERDATA = -21;

constexpr int SW_HIDE = 0;
constexpr int SW_SHOWNORMAL = 1;
constexpr int SW_SHOW = 5;

// GetWindow
constexpr UINT GW_HWNDFIRST = 0;
constexpr UINT GW_HWNDLAST = 1;
constexpr UINT GW_HWNDNEXT = 2;
constexpr UINT GW_HWNDPREV = 3;
constexpr UINT GW_CHILD = 5;

// GetSystemMetrics
constexpr int SM_CXSCREEN = 0;
constexpr int SM_CYSCREEN = 1;
constexpr int SM_CXVSCROLL = 2;
constexpr int SM_CYCAPTION = 4;

constexpr UINT SPI_SETSIPINFO = 224;

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;  // milliseconds, as GetTickCount
    DWORD input; // internal: the host input event that made this message, 0 for none
};

struct NMHDR {
    HWND hwndFrom;
    UINT idFrom;
    UINT code;
};

struct CREATESTRUCTW {
    void* lpCreateParams;
    HINSTANCE hInstance;
    HWND hwndParent;
    int cy, cx, y, x;
    DWORD style;
    const WCHAR* lpszName;
    const WCHAR* lpszClass;
    DWORD dwExStyle;
};

struct WNDCLASSW {
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra; // bytes
    int cbWndExtra; // bytes, zeroed at creation, reached by GetWindowLongPtrW with offsets from 0
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    const WCHAR* lpszMenuName;
    const WCHAR* lpszClassName;
};

// ---- classes and windows ----
// Returns 0 when the name is taken.
ATOM RegisterClassW(const WNDCLASSW* windowClass);

// A child window (WS_CHILD) takes its id in `menu`, as ChildId(id) makes it. A window without WS_CHILD fills
// the screen below the title bar, whatever position and size are given. WM_CREATE returning -1 destroys the
// window and yields null.
HWND CreateWindowExW(DWORD exStyle, const WCHAR* className, const WCHAR* windowName, DWORD style, int x,
                     int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance, void* param);
inline HMENU ChildId(UINT id) {
    return reinterpret_cast<HMENU>(static_cast<std::uintptr_t>(id));
}

// Sends WM_DESTROY to the window, then to its children, and forgets them. A destroyed handle stays safe to
// pass.
BOOL DestroyWindow(HWND window);
BOOL IsWindow(HWND window);
LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CallWindowProcW(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam);
BOOL ShowWindow(HWND window, int command);
// Paints now what is invalid, and hands it to the display, so that it is seen whatever the next step takes.
BOOL UpdateWindow(HWND window);
BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);
BOOL GetClientRect(HWND window, RECT* rect);
BOOL ClientToScreen(HWND window, POINT* point);
BOOL ScreenToClient(HWND window, POINT* point);
BOOL InvalidateRect(HWND window, const RECT* rect, BOOL erase); // null rectangle: the whole window
BOOL EnableWindow(HWND window, BOOL enable);
BOOL IsWindowEnabled(HWND window);
BOOL IsWindowVisible(HWND window);
HWND SetFocus(HWND window); // returns the window that had it
HWND GetFocus();
// Finds a top-level window of that class, of this process or of another one running on the same device; what
// another process owns can only be handed to SetForegroundWindow and ShowWindow. When a class is asked for
// and nobody has a window of it, this process claims the class: from then on the others find the window that
// it is about to make.
HWND FindWindowW(const WCHAR* className, const WCHAR* windowName);
BOOL SetForegroundWindow(HWND window);
HWND GetParent(HWND window); // of a top-level window its owner
HWND GetWindow(HWND window, UINT relation);
int GetClassNameW(HWND window, WCHAR* name, int capacity);
LONG_PTR GetWindowLongPtrW(HWND window, int index);
LONG_PTR SetWindowLongPtrW(HWND window, int index, LONG_PTR value); // returns the previous value
BOOL SetWindowTextW(HWND window, const WCHAR* text);
int GetWindowTextW(HWND window, WCHAR* text, int capacity); // returns characters copied
int GetWindowTextLengthW(HWND window);
int GetSystemMetrics(int index);

// ---- messages ----
LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
void PostQuitMessage(int exitCode);
BOOL GetMessageW(MSG* message, HWND window, UINT first, UINT last); // 0 for WM_QUIT
constexpr UINT PM_REMOVE = 1;
BOOL PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT remove);
BOOL TranslateMessage(const MSG* message);
LRESULT DispatchMessageW(const MSG* message);
UINT SetTimer(HWND window, UINT id, DWORD milliseconds,
              void* procedure); // WM_TIMER; a running id starts anew
BOOL KillTimer(HWND window, UINT id);
std::int16_t GetKeyState(int virtualKey); // negative while held, as of the message last retrieved

HACCEL LoadAcceleratorsW(HINSTANCE instance, const WCHAR* table);
// Sends WM_COMMAND (high word 1) to `window` for a key message found in the table. A menu bar is no menu of
// the window: what is greyed there runs by its key all the same.
int TranslateAcceleratorW(HWND window, HACCEL table, MSG* message);

// ---- message boxes, cursors, icons ----
constexpr UINT MB_OK = 0x00;
constexpr UINT MB_ABORTRETRYIGNORE = 0x02;
constexpr UINT MB_YESNOCANCEL = 0x03;
constexpr UINT MB_YESNO = 0x04;
constexpr UINT MB_ICONHAND = 0x10;
constexpr UINT MB_ICONQUESTION = 0x20;
constexpr UINT MB_ICONEXCLAMATION = 0x30;
constexpr UINT MB_ICONASTERISK = 0x40;
constexpr UINT MB_DEFBUTTON2 = 0x100;
constexpr int IDOK = 1;
constexpr int IDCANCEL = 2;
constexpr int IDABORT = 3;
constexpr int IDRETRY = 4;
constexpr int IDIGNORE = 5;
constexpr int IDYES = 6;
constexpr int IDNO = 7;
// Runs until answered, dispatching messages meanwhile; the owner is disabled. Without an owner the box stands
// before the active window. Returns 0 when nobody could be asked: there is no display, or no memory for the
// box (the text, and for a question the answer that 0 stands for, go to standard error as one line), or the
// box was destroyed with its owner. 0 never means Yes.
int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT style);
// The sound of a box with that icon; the host has one for all.
void MessageBeep(UINT style);

inline const WCHAR* const IDC_WAIT = MAKEINTRESOURCEW(32514);
HCURSOR LoadCursorW(HINSTANCE instance, const WCHAR* name); // instance null: the platform's own
HCURSOR SetCursor(HCURSOR cursor); // null: the ordinary cursor; returns the previous one
constexpr UINT IMAGE_ICON = 1;
// Icons only, with the pictures of all sizes that its group has: the host takes the one that fits a place.
HICON LoadImageW(HINSTANCE instance, const WCHAR* name, UINT type, int width, int height, UINT flags);
