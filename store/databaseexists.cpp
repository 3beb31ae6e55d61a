#include "store/databaseexists.h"

#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "store/dbhandle.h"

namespace {

constexpr int kExistsFormatCapacity = 100;

void InitDatabaseExists(HWND dialog, const WCHAR* name) {
    InitDialogFrame(dialog, kDoneButton);
    WCHAR format[kExistsFormatCapacity];
    WCHAR text[kExistsFormatCapacity + kNameCapacity];
    LoadText(IDS_DATABASE_EXISTS, format);
    wsprintfW(text, format, name);
    SetDlgItemTextW(dialog, IDC_EXISTS_TEXT, text);
}

void OnDatabaseExistsCommand(HWND dialog, UINT command) {
    switch (command) {
    case IDOK:
    case IDCANCEL:
    case IDC_EXISTS_OVERWRITE:
        EndDialog(dialog, static_cast<int>(command));
        break;
    }
}

LONG_PTR DatabaseExistsProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, nullptr))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        InitDatabaseExists(dialog, reinterpret_cast<const WCHAR*>(lParam));
        return TRUE;
    case WM_COMMAND:
        OnDatabaseExistsCommand(dialog, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}

} // namespace

int AskDatabaseExists(HWND owner, const WCHAR* name) {
    const LONG_PTR answer =
        RunDialog(IDD_DATABASE_EXISTS, owner, DatabaseExistsProcedure, reinterpret_cast<LPARAM>(name));
    return answer < 0 ? IDCANCEL : static_cast<int>(answer);
}
