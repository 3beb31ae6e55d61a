// The wizard's first page: type, id, and whether a new record is made.
#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "platform/controls.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "store/propertyvalues.h"
#include "viewer/addproperty.h"

namespace {

// A blob has no editor, so it cannot be chosen.
constexpr WORD kOfferedTypes[] = {CEVT_I2,       CEVT_UI2,  CEVT_I4, CEVT_UI4,
                                  CEVT_FILETIME, CEVT_BOOL, CEVT_R8, CEVT_LPWSTR};
constexpr DWORD kIdLimit = 65535; // Quirk: the first that is refused, although the message allows it
constexpr int kIdCapacity = 16;
constexpr int kIdShift = 16; // an id is the high half of a property's identifier

LRESULT ToTypeList(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    return SendDlgItemMessageW(dialog, IDC_WIZARD_TYPE, message, wParam, lParam);
}

void FillTypeList(HWND dialog, DWORD chosen) {
    for (const WORD type : kOfferedTypes) {
        const LRESULT item =
            ToTypeList(dialog, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(TypeListName(type)));
        ToTypeList(dialog, CB_SETITEMDATA, static_cast<WPARAM>(item), type);
    }
    // The list is sorted, so indexes are known only now.
    LRESULT selected = 0;
    const LRESULT count = ToTypeList(dialog, CB_GETCOUNT, 0, 0);
    for (LRESULT item = 0; item < count; ++item)
        if (static_cast<DWORD>(ToTypeList(dialog, CB_GETITEMDATA, static_cast<WPARAM>(item), 0)) == chosen)
            selected = item;
    ToTypeList(dialog, CB_SETCURSEL, static_cast<WPARAM>(selected), 0);
}

void InitTypePage(HWND dialog) {
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    const AddPropertyWizard& wizard = *DialogState<AddPropertyWizard>(dialog);
    FillTypeList(dialog, wizard.type);
    SetDlgItemInt(dialog, IDC_WIZARD_ID, wizard.propertyId, FALSE);
    CheckDlgButton(dialog, IDC_WIZARD_NEW_RECORD, wizard.newRecord);
    EnableWindow(GetDlgItem(dialog, IDC_WIZARD_NEW_RECORD), !wizard.newRecordLocked);
}

void RefuseUsedId(HWND dialog, DWORD id) {
    WCHAR text[kIdCapacity];
    wsprintfW(text, u"%u", id);
    MessageFromString(dialog, IDS_PROPERTY_ID_IN_USE, text, kFailureBox);
    ReturnToField(dialog, IDC_WIZARD_ID);
}

bool IsUsed(const AddPropertyWizard& wizard, DWORD id) {
    const DWORD* used = wizard.usedIds;
    while (used && *used != kEndOfIds && *used != id)
        ++used;
    return used && *used != kEndOfIds;
}

// Ends the page unless something is missing or refused.
void AcceptTypePage(HWND dialog) {
    AddPropertyWizard& wizard = *DialogState<AddPropertyWizard>(dialog);
    const LRESULT selected = ToTypeList(dialog, CB_GETCURSEL, 0, 0);
    if (selected == CB_ERR) {
        MessageFromString(dialog, IDS_SELECT_PROPERTY_TYPE, kFailureBox);
        SetFocus(GetDlgItem(dialog, IDC_WIZARD_TYPE));
        return;
    }
    wizard.type = static_cast<DWORD>(ToTypeList(dialog, CB_GETITEMDATA, static_cast<WPARAM>(selected), 0));
    wizard.propertyId = GetDlgItemInt(dialog, IDC_WIZARD_ID, nullptr, FALSE); // 0 for what is no number
    if (wizard.propertyId >= kIdLimit) {
        MessageFromString(dialog, IDS_PROPERTY_ID_RANGE, kFailureBox);
        ReturnToField(dialog, IDC_WIZARD_ID);
        return;
    }
    wizard.newRecord = IsDlgButtonChecked(dialog, IDC_WIZARD_NEW_RECORD) == BST_CHECKED;
    if (!wizard.newRecord && IsUsed(wizard, wizard.propertyId)) {
        RefuseUsedId(dialog, wizard.propertyId);
        return;
    }
    wizard.property->propid = (wizard.propertyId << kIdShift) + wizard.type;
    EndDialog(dialog, IDOK);
}

void OnTypePageCommand(HWND dialog, UINT command) {
    HandleOkCancel(dialog, command == IDC_WIZARD_NEXT ? IDOK : command, AcceptTypePage);
}

LONG_PTR TypePageProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, u"tarnwickscope.htm#addprop"))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        SetDialogState(dialog, lParam);
        InitTypePage(dialog);
        return TRUE;
    case WM_COMMAND:
        OnTypePageCommand(dialog, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}

} // namespace

int ShowTypePage(HWND owner, AddPropertyWizard* wizard) {
    return static_cast<int>(
        RunDialog(IDD_WIZARD_TYPE, owner, TypePageProcedure, reinterpret_cast<LPARAM>(wizard)));
}
