#include "app/dialogframe.h"

#include "app/application.h"
#include "app/uiservices.h"
#include "platform/gdi.h"
#include "platform/shell.h"
#include "platform/text.h"
#include "resources/resource.h"

namespace {

constexpr COLORREF kHeaderColour = RGB(0, 0, 128);
constexpr COLORREF kLightGrey = RGB(0xC0, 0xC0, 0xC0);
constexpr int kClassNameCapacity = 40;
// The help button: room around its picture, and its distances from the dialog's corner, in pixels.
constexpr int kButtonExtraWidth = 4;
constexpr int kButtonExtraHeight = 2;
constexpr int kButtonRightMargin = 10;
constexpr int kButtonTop = 3;

SIZE FrameBitmapSize() {
    BITMAP bitmap = {};
    GetObjectW(App().frameBitmap, sizeof(bitmap), &bitmap);
    return {bitmap.bmWidth, bitmap.bmHeight};
}

void CreateHelpButton(HWND dialog) {
    if (!App().frameBitmap)
        return;
    const SIZE size = FrameBitmapSize();
    WCHAR name[kCaptionCapacity];
    LoadText(IDS_FRAME_HELP, name);
    CreateWindowExW(WS_EX_TOPMOST, u"BUTTON", name, WS_CHILD | WS_VISIBLE | BS_OWNERDRAW,
                    GetSystemMetrics(SM_CXSCREEN) - size.cx - kButtonRightMargin, kButtonTop,
                    size.cx + kButtonExtraWidth, size.cy + kButtonExtraHeight, dialog,
                    ChildId(IDC_FRAME_HELP), AppInstance(), nullptr);
}

bool WantsBoldFont(HWND control) {
    if (static_cast<WORD>(GetDlgCtrlID(control)) == IDC_BOLD_LABEL)
        return true;
    WCHAR className[kClassNameCapacity];
    GetClassNameW(control, className, kClassNameCapacity);
    if (lstrcmpiW(className, u"button") != 0)
        return false;
    const DWORD kind = static_cast<DWORD>(GetWindowLongPtrW(control, GWL_STYLE)) & BS_TYPEMASK;
    return kind == BS_PUSHBUTTON || kind == BS_DEFPUSHBUTTON || kind == BS_GROUPBOX;
}

COLORREF TopLeftColour(HDC memory) {
    const COLORREF colour = GetPixel(memory, 0, 0);
    return colour == CLR_INVALID ? kLightGrey : colour;
}

// False when there is nothing to paint.
bool PaintDialogFrame(HWND dialog) {
    const HWND titleControl = GetDlgItem(dialog, IDC_FRAME_TITLE);
    const HFONT boldFont = App().settings ? App().settings->boldFont : nullptr;
    WCHAR title[kTitleCapacity];
    if (!titleControl || !boldFont || GetWindowTextW(titleControl, title, kTitleCapacity) == 0)
        return false;

    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(dialog, &paint);
    RECT rect;
    GetClientRect(dialog, &rect);
    const LONG right = rect.right;
    const LONG captionHeight = GetSystemMetrics(SM_CYCAPTION);
    rect.left = LOWORD(static_cast<DWORD>(GetDialogBaseUnits())) * 5 / 4; // five dialog units
    rect.bottom = captionHeight;
    if (GetDlgItem(dialog, IDC_FRAME_HELP))
        rect.right -= FrameBitmapSize().cx + kButtonRightMargin;

    SetTextColor(dc, kHeaderColour);
    SetBkMode(dc, TRANSPARENT);
    const HGDIOBJ oldFont = SelectObject(dc, boldFont);
    DrawTextW(dc, title, -1, &rect, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    SelectObject(dc, oldFont);

    MoveToEx(dc, 0, captionHeight, nullptr);
    LineTo(dc, right, captionHeight);
    EndPaint(dialog, &paint);
    return true;
}

// False when the item is another's.
bool DrawDialogFrameItem(UINT id, const DRAWITEMSTRUCT* item) {
    if (id != IDC_FRAME_HELP)
        return false;
    const HDC memory = CreateCompatibleDC(item->hDC);
    const HGDIOBJ oldBitmap = SelectObject(memory, App().frameBitmap);
    const SIZE size = FrameBitmapSize();
    const int pressed = App().highResolution ? 2 : 1;
    const int offset = item->itemState & ODS_SELECTED ? pressed : 0;

    RECT rect;
    GetClientRect(item->hwndItem, &rect);
    const HBRUSH background = CreateSolidBrush(TopLeftColour(memory));
    FillRect(item->hDC, &rect, background);
    DeleteObject(background);
    BitBlt(item->hDC, offset + (rect.right - size.cx) / 2 + 1, offset + (rect.bottom - size.cy) / 2, size.cx,
           size.cy, memory, 0, 0, SRCCOPY);

    SelectObject(memory, oldBitmap);
    DeleteDC(memory);
    return true;
}

} // namespace

void InitDialogFrame(HWND dialog, UINT buttons) {
    SHINITDLGINFO shell = {};
    shell.dwMask = SHIDIM_FLAGS;
    shell.hDlg = dialog;
    shell.dwFlags = SHIDIF_SIZEDLGFULLSCREEN | (buttons & kDoneButton ? SHIDIF_DONEBUTTON : 0);
    SHInitDialog(&shell);

    SHMENUBARINFO bar = {};
    bar.cbSize = sizeof(bar);
    bar.hwndParent = dialog;
    bar.dwFlags = SHCMBF_EMPTYBAR;
    bar.hInstRes = AppInstance();
    SHCreateMenuBar(&bar);

    if (buttons & kHelpButton)
        CreateHelpButton(dialog);
    WCHAR title[kTitleCapacity];
    GetDlgItemTextW(dialog, IDC_FRAME_TITLE, title, kTitleCapacity);
    NameWindow(dialog, title);

    const HFONT boldFont = App().settings ? App().settings->boldFont : nullptr;
    for (HWND control = GetWindow(dialog, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT))
        if (WantsBoldFont(control))
            SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(boldFont), TRUE);
}

void SetFrameTitle(HWND dialog, const WCHAR* title) {
    SetDlgItemTextW(dialog, IDC_FRAME_TITLE, title);
    NameWindow(dialog, title);
}

bool HandleFrameMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam, const WCHAR* helpAnchor) {
    switch (message) {
    case WM_PAINT:
        return PaintDialogFrame(dialog);
    case WM_DRAWITEM:
        return DrawDialogFrameItem(static_cast<UINT>(wParam),
                                   reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_COMMAND:
        if (LOWORD(wParam) != IDC_FRAME_HELP)
            return false;
        PostMessageW(dialog, WM_HELP, 0, 0);
        return true;
    case WM_HELP:
        if (!helpAnchor)
            return false;
        OpenHelp(helpAnchor);
        return true;
    }
    return false;
}

void HandleOkCancel(HWND dialog, UINT command, void (*accept)(HWND dialog)) {
    if (command == IDOK)
        accept(dialog);
    else if (command == IDCANCEL)
        EndDialog(dialog, IDCANCEL);
}

void ReturnToField(HWND dialog, int id) {
    SetFocus(GetDlgItem(dialog, id));
    SendDlgItemMessageW(dialog, id, EM_SETSEL, 0, -1);
}
