// A dialog's controls, reached by their ids.
#include "platform/controls.h"
#include "platform/ui/core/windowcore.h"

using namespace ui;

HWND GetDlgItem(HWND dialog, int id) {
    const WindowObject* object = LiveWindow(dialog);
    if (!object)
        return nullptr;
    for (HWND child : object->children)
        if (child->id == static_cast<UINT>(id))
            return child;
    return nullptr;
}

int GetDlgCtrlID(HWND control) {
    const WindowObject* object = LiveWindow(control);
    return object ? static_cast<int>(object->id) : 0;
}

BOOL SetDlgItemTextW(HWND dialog, int id, const WCHAR* text) {
    return SetWindowTextW(GetDlgItem(dialog, id), text);
}

UINT GetDlgItemTextW(HWND dialog, int id, WCHAR* text, int capacity) {
    return static_cast<UINT>(GetWindowTextW(GetDlgItem(dialog, id), text, capacity));
}

LRESULT SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam) {
    return SendMessageW(GetDlgItem(dialog, id), message, wParam, lParam);
}

BOOL CheckDlgButton(HWND dialog, int id, UINT state) {
    const HWND button = GetDlgItem(dialog, id);
    SendMessageW(button, BM_SETCHECK, state, 0);
    return button != nullptr;
}

UINT IsDlgButtonChecked(HWND dialog, int id) {
    return static_cast<UINT>(SendDlgItemMessageW(dialog, id, BM_GETCHECK, 0, 0));
}

BOOL CheckRadioButton(HWND dialog, int first, int last, int checked) {
    for (int id = first; id <= last; ++id)
        CheckDlgButton(dialog, id, id == checked ? BST_CHECKED : BST_UNCHECKED);
    return LiveWindow(dialog) != nullptr;
}
