// The wizard's second page, one for each kind of value.
#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "platform/controls.h"
#include "resources/resource.h"
#include "store/datetimetext.h"
#include "store/propertyvalues.h"
#include "viewer/addproperty.h"
#include "viewer/valueeditor.h"

namespace {

WORD TypeOf(const AddPropertyWizard& wizard) {
    return TypeFromPropID(wizard.property->propid);
}

void InitNumberPage(HWND dialog, WORD type) {
    WCHAR info[kMessageCapacity];
    LoadText(InfoStringId(type), info);
    SetDlgItemTextW(dialog, IDC_VALUE_INFO, info);
    SendDlgItemMessageW(dialog, IDC_VALUE_NUMBER, EM_SETLIMITTEXT, kNumberLimit, 0);
    SetDlgItemTextW(dialog, IDC_VALUE_NUMBER, type == CEVT_R8 ? u"0." : u"0");
}

// True when the page gave the focus itself.
bool InitValuePage(HWND dialog) {
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    const WORD type = TypeOf(*DialogState<AddPropertyWizard>(dialog));
    switch (type) {
    case CEVT_FILETIME:
        ShowDate(dialog, DateTimeText().time);
        return false;
    case CEVT_BOOL:
        CheckRadioButton(dialog, IDC_VALUE_TRUE, IDC_VALUE_FALSE, IDC_VALUE_FALSE);
        return false;
    case CEVT_LPWSTR:
        SetFocus(GetDlgItem(dialog, IDC_VALUE_TEXT));
        SendDlgItemMessageW(dialog, IDC_VALUE_TEXT, EM_SETSEL, 0, 0);
        return true;
    }
    InitNumberPage(dialog, type);
    return false;
}

// False when the value was refused or could not be kept, which has been said.
bool TakeValue(HWND dialog, CEPROPVAL* property) {
    const WORD type = TypeFromPropID(property->propid);
    property->val = {};
    switch (type) {
    case CEVT_I2:
    case CEVT_UI2:
        if (ReadSmallNumber(dialog, type, &property->val))
            return true;
        SetFocus(GetDlgItem(dialog, IDC_VALUE_NUMBER));
        return false;
    case CEVT_I4:
        property->val.lVal = static_cast<LONG>(GetDlgItemInt(dialog, IDC_VALUE_NUMBER, nullptr, TRUE));
        return true;
    case CEVT_UI4:
        property->val.ulVal = GetDlgItemInt(dialog, IDC_VALUE_NUMBER, nullptr, FALSE);
        return true;
    case CEVT_R8:
        property->val.dblVal = ReadFloat(dialog);
        return true;
    case CEVT_FILETIME:
        property->val.filetime = ReadDate(dialog);
        return true;
    case CEVT_BOOL:
        property->val.boolVal = IsDlgButtonChecked(dialog, IDC_VALUE_TRUE) == BST_CHECKED;
        return true;
    case CEVT_LPWSTR: {
        WCHAR* text = nullptr;
        const bool read = ReadEditorText(dialog, &text);
        property->val.lpwstr = text;
        return read; // without memory the page stays, and with it what was typed
    }
    }
    return false;
}

void OnValuePageCommand(HWND dialog, UINT command) {
    switch (command) {
    case IDOK:
    case IDC_WIZARD_FINISH:
        if (TakeValue(dialog, DialogState<AddPropertyWizard>(dialog)->property))
            EndDialog(dialog, IDOK);
        break;
    case IDC_WIZARD_BACK:
        EndDialog(dialog, kWizardBack);
        break;
    case IDCANCEL:
        EndDialog(dialog, IDCANCEL);
        break;
    }
}

LONG_PTR ValuePageProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, u"tarnwickscope.htm#addprop"))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        SetDialogState(dialog, lParam);
        return !InitValuePage(dialog);
    case WM_COMMAND:
        OnValuePageCommand(dialog, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}

UINT PageTemplate(WORD type) {
    switch (type) {
    case CEVT_FILETIME:
        return IDD_WIZARD_DATE;
    case CEVT_LPWSTR:
        return IDD_WIZARD_TEXT;
    case CEVT_BOOL:
        return IDD_WIZARD_BOOLEAN;
    }
    return IDD_WIZARD_NUMBER;
}

} // namespace

int ShowValuePage(HWND owner, AddPropertyWizard* wizard) {
    return static_cast<int>(RunDialog(PageTemplate(TypeOf(*wizard)), owner, ValuePageProcedure,
                                      reinterpret_cast<LPARAM>(wizard)));
}
