#include "dblist/propertiesdialog.h"

#include "app/application.h"
#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "dblist/databaselist.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "store/datetimetext.h"
#include "store/sizetext.h"

namespace {

constexpr LONG_PTR kDatabaseUnreadable = 3;
constexpr int kFieldCapacity = 64;

void ShowField(HWND dialog, int control, const WCHAR* text) {
    SendDlgItemMessageW(dialog, control, WM_SETFONT, reinterpret_cast<WPARAM>(App().settings->boldFont),
                        TRUE);
    SetDlgItemTextW(dialog, control, text);
}

void ShowNumber(HWND dialog, int control, DWORD number) {
    WCHAR text[kFieldCapacity];
    wsprintfW(text, u"%ld", number);
    ShowField(dialog, control, text);
}

void ShowSize(HWND dialog, DWORD bytes) {
    WCHAR text[kFieldCapacity] = {};
    // Quirk: the field of an empty database is blank, not 0.00KB, as its owners know it.
    if (static_cast<LONG>(bytes) > 0) {
        WCHAR kilobytes[kSizeTextCapacity];
        FormatSizeText(bytes, kilobytes);
        wsprintfW(text, u"%s (%ld Bytes)", kilobytes, bytes);
    }
    ShowField(dialog, IDC_PROPERTIES_SIZE, text);
}

void ShowModified(HWND dialog, const FILETIME& modified) {
    DateTimeText moment(modified);
    WCHAR text[kFieldCapacity];
    wsprintfW(text, u"%s %s", moment.DateText(), moment.TimeText(true));
    ShowField(dialog, IDC_PROPERTIES_MODIFIED, text);
}

void InitProperties(HWND dialog) {
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    WCHAR name[kNameCapacity];
    DbHandle database(dialog);
    CEDBASEINFO info;
    if (!SelectedDatabaseName(name) || database.Open(name, 0, 0) == INVALID_HANDLE_VALUE ||
        !database.GetInfo(&info)) {
        EndDialog(dialog, kDatabaseUnreadable);
        return;
    }
    ShowField(dialog, IDC_PROPERTIES_NAME, info.szDbaseName);
    ShowSize(dialog, info.dwSize);
    ShowModified(dialog, info.ftLastModified);
    ShowNumber(dialog, IDC_PROPERTIES_TYPE, info.dwDbaseType);
    ShowNumber(dialog, IDC_PROPERTIES_RECORDS, info.wNumRecords);
}

void OnPropertiesCommand(HWND dialog, UINT command) {
    switch (command) {
    case IDOK:
    case IDCANCEL:
        EndDialog(dialog, static_cast<int>(command));
        break;
    }
}

LONG_PTR PropertiesProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, u"tarnwickscope.htm#propdlg"))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        InitProperties(dialog);
        return TRUE;
    case WM_COMMAND:
        OnPropertiesCommand(dialog, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}

} // namespace

void ShowDatabaseProperties(HWND owner) {
    RunDialog(IDD_DATABASE_PROPERTIES, owner, PropertiesProcedure, 0);
}
