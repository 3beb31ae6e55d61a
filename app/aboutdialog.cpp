#include "app/aboutdialog.h"

#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "platform/objectstore.h"
#include "platform/text.h"
#include "resources/resource.h"

namespace {

constexpr int kLineCapacity = 128;
constexpr int kBytesToKilobytes = 10; // bits to shift

void ShowKilobytes(HWND dialog, int control, UINT formatId, DWORD bytes) {
    WCHAR format[kLineCapacity];
    WCHAR line[kLineCapacity];
    LoadText(formatId, format);
    wsprintfW(line, format, bytes >> kBytesToKilobytes);
    SetDlgItemTextW(dialog, control, line);
}

void InitAbout(HWND dialog) {
    InitDialogFrame(dialog, kDoneButton);
    STORE_INFORMATION store = {};
    if (!GetStoreInformation(&store))
        return; // the template's own texts say so
    ShowKilobytes(dialog, IDC_ABOUT_AVAILABLE, IDS_AVAILABLE_MEMORY, store.dwStoreSize);
    ShowKilobytes(dialog, IDC_ABOUT_FREE, IDS_FREE_MEMORY, store.dwFreeSize);
}

void OnAboutCommand(HWND dialog, UINT command) {
    switch (command) {
    case IDOK:
    case IDCANCEL:
        EndDialog(dialog, IDOK);
        break;
    }
}

LONG_PTR AboutProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, u"tarnwickscope.htm#tarnwickscope_help"))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        InitAbout(dialog);
        return TRUE;
    case WM_COMMAND:
        OnAboutCommand(dialog, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}

} // namespace

void ShowAboutDialog(HWND owner) {
    RunDialog(IDD_ABOUT, owner, AboutProcedure, 0);
}
