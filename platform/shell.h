// The handheld's shell: full-screen dialogs, the menu bar, tap-and-hold, special folders, the out-of-memory
// box.
#pragma once

#include "platform/window.h"

// ---- full-screen dialogs ----
constexpr DWORD SHIDIM_FLAGS = 0x01;
constexpr DWORD SHIDIF_DONEBUTTON = 0x01; // the title bar shows OK, which sends IDOK
constexpr DWORD SHIDIF_SIPDOWN = 0x08;
constexpr DWORD SHIDIF_SIZEDLGFULLSCREEN = 0x10; // modes: 16, with the Done button 17
struct SHINITDLGINFO {
    DWORD dwMask;
    HWND hDlg;
    DWORD dwFlags;
};
BOOL SHInitDialog(SHINITDLGINFO* info);

// Prepares a main window for the shell: its title bar shows a close button, it gets WM_ENDSESSION, and its
// place on the host's display is remembered. Called once after creation.
BOOL SHInitMainWindow(HWND window);

// What the window shows, for instance a document's name: the host's title of the display says it beside the
// window's own text.
void SHSetDocumentTitle(HWND window, const WCHAR* title);

// ---- menu bar ----
// A menu bar definition is an RCDATA resource of 16-bit words: the menu's resource id, the number of buttons,
// then for each button: image index (0xFFFE none), command, state, style (0x88: drops down a popup), string
// id of its text or tool tip, 0, popup index in the menu (0xFFFF none). A bar with id 10005 is made at the
// top of its parent and takes the place of the one that was there. A full-screen dialog's client area begins
// below its bar; any other parent asks the bar for its height (SHCMBM_GETHEIGHT) and lays itself out.
constexpr UINT SHCMBF_EMPTYBAR = 0x0001; // takes no room
struct SHMENUBARINFO {
    DWORD cbSize;
    HWND hwndParent;
    DWORD dwFlags;
    UINT nToolBarId; // menu bar definition, 0 for an empty bar
    HINSTANCE hInstRes;
    int nBmpId;     // strip of square images
    int cBmpImages; // in the strip
    HWND hwndMB;    // out: the bar
};
BOOL SHCreateMenuBar(SHMENUBARINFO* info);
constexpr UINT SHCMBM_GETHEIGHT = WM_USER + 27; // 1051; returns pixels
constexpr UINT SHCMBM_GETMENU = WM_USER + 402;  // returns the HMENU that holds the popups in definition order
constexpr UINT TB_ENABLEBUTTON = WM_USER + 1;   // wParam command, lParam enable
constexpr UINT MBN_SIZECHANGED =
    static_cast<UINT>(-834); // WM_NOTIFY to the parent when the bar's height changed

// ---- activation and settings ----
struct SHACTIVATEINFO {
    DWORD cbSize;
    DWORD hwndLastFocus;
    DWORD flags;
};
static_assert(sizeof(SHACTIVATEINFO) == 12);
BOOL SHHandleWMSettingChange(HWND window, WPARAM wParam, LPARAM lParam, SHACTIVATEINFO* info);

// ---- tap and hold ----
constexpr DWORD SHRG_RETURNCMD = 0x01;
constexpr DWORD GN_CONTEXTMENU = 1000;
struct SHRGINFO {
    DWORD cbSize;
    HWND hwndClient;
    POINT ptDown; // client coordinates
    DWORD dwFlags;
};
// Called from WM_LBUTTONDOWN (or WM_RBUTTONDOWN: a right click counts as a hold at once). Waits, dispatching
// paint and timers, until the stylus is lifted or moved (0) or held for half a second (GN_CONTEXTMENU).
DWORD SHRecognizeGesture(SHRGINFO* info);

// ---- files that are dropped on a window, or that the program is started with ----
// Sent to a window that accepts them: wParam is an HDROP, which the window then owns.
constexpr UINT WM_DROPFILES = 0x0233;
// From now on the window takes them. The file that this process was started to open comes first; those of
// later starts follow, whatever else is open at that time. A drop by the user needs the window to be the
// active one.
void DragAcceptFiles(HWND window, BOOL accept);
constexpr UINT kDropCount = 0xFFFFFFFF;
// The device path of a dropped file: room for `capacity` characters with its terminator; returns the length,
// 0 when there is no such file or no such room. For kDropCount: how many there are.
UINT DragQueryFileW(HDROP dropped, UINT file, WCHAR* path, UINT capacity);
void DragFinish(HDROP dropped);

// ---- files that are dragged out ----
// Called with the left button down at that point of the window: waits until it is released, which is FALSE,
// or moved far enough for a drag.
BOOL DragDetect(HWND window, POINT point);
// Lets the user drag a file of that name to another program, until the button is released. `make` is called
// when the other program asks for it, at most once, and writes it at the device path that it gets, which
// stays there until this process ends.
void DragFile(HWND window, const WCHAR* fileName, BOOL (*make)(const WCHAR* path));

// ---- folders, memory ----
struct ITEMIDLIST;
struct IMalloc {
    virtual void Free(void* block) = 0;
    virtual DWORD Release() = 0;

protected:
    ~IMalloc() = default;
};
constexpr int CSIDL_PERSONAL = 5;
constexpr std::int32_t NOERROR = 0;
std::int32_t SHGetMalloc(IMalloc** allocator);
std::int32_t SHGetSpecialFolderLocation(HWND owner, int folder, ITEMIDLIST** location); // NOERROR on success
BOOL SHGetPathFromIDList(const ITEMIDLIST* location, WCHAR* path);                      // room for MAX_PATH
void SHShowOutOfMemory(HWND owner, UINT flags);
