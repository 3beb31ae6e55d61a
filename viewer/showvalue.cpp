// The editor area: one group of controls for each kind of value.
#include "app/uiservices.h"
#include "resources/resource.h"
#include "store/datetimetext.h"
#include "store/propertyvalues.h"
#include "viewer/recordviewer.h"
#include "viewer/valueeditor.h"

namespace {

constexpr int kEditors[] = {IDC_VALUE_INFO,  IDC_VALUE_NUMBER, IDC_VALUE_TEXT, IDC_VALUE_TRUE,
                            IDC_VALUE_FALSE, IDC_VALUE_DATE,   IDC_VALUE_TIME};

void ShowNumber(const RecordViewer& viewer, const CEPROPVAL& property) {
    WCHAR info[kMessageCapacity];
    WCHAR text[kValueTextCapacity];
    LoadText(InfoStringId(TypeFromPropID(property.propid)), info);
    SetDlgItemTextW(viewer.dialog, IDC_VALUE_INFO, info);
    SetDlgItemTextW(viewer.dialog, IDC_VALUE_NUMBER, FormatPropertyText(property, text));
    SendDlgItemMessageW(viewer.dialog, IDC_VALUE_NUMBER, EM_SETMODIFY, FALSE, 0);
    SendDlgItemMessageW(viewer.dialog, IDC_VALUE_NUMBER, EM_EMPTYUNDOBUFFER, 0, 0);
}

void ShowText(const RecordViewer& viewer, const CEPROPVAL& property) {
    WCHAR text[kValueTextCapacity];
    SetDlgItemTextW(viewer.dialog, IDC_VALUE_TEXT, FormatPropertyText(property, text));
    SendDlgItemMessageW(viewer.dialog, IDC_VALUE_TEXT, EM_SETMODIFY, FALSE, 0);
    SendDlgItemMessageW(viewer.dialog, IDC_VALUE_TEXT, EM_EMPTYUNDOBUFFER, 0, 0);
}

} // namespace

void RecordViewer::HideEditors() {
    for (const int editor : kEditors)
        ShowWindow(Control(editor), SW_HIDE);
}

void RecordViewer::ShowEditorsFor(WORD type) {
    HideEditors();
    switch (type) {
    case CEVT_BOOL:
        ShowWindow(Control(IDC_VALUE_TRUE), SW_SHOW);
        ShowWindow(Control(IDC_VALUE_FALSE), SW_SHOW);
        break;
    case CEVT_FILETIME:
        ShowWindow(Control(IDC_VALUE_DATE), SW_SHOW);
        ShowWindow(Control(IDC_VALUE_TIME), SW_SHOW);
        break;
    case CEVT_LPWSTR:
    case CEVT_BLOB:
        EnableWindow(Control(IDC_VALUE_TEXT), type == CEVT_LPWSTR);
        ShowWindow(Control(IDC_VALUE_TEXT), SW_SHOW);
        break;
    default:
        if (InfoStringId(type) == 0)
            break;
        ShowWindow(Control(IDC_VALUE_INFO), SW_SHOW);
        ShowWindow(Control(IDC_VALUE_NUMBER), SW_SHOW);
        break;
    }
}

void RecordViewer::ShowValue(const CEPROPVAL& property) {
    const WORD type = TypeFromPropID(property.propid);
    if (type != shownType)
        ShowEditorsFor(type);
    switch (type) {
    case CEVT_BOOL:
        CheckRadioButton(dialog, IDC_VALUE_TRUE, IDC_VALUE_FALSE,
                         property.val.boolVal ? IDC_VALUE_TRUE : IDC_VALUE_FALSE);
        break;
    case CEVT_FILETIME:
        ShowDate(dialog, DateTimeText(property.val.filetime).time);
        break;
    case CEVT_LPWSTR:
    case CEVT_BLOB:
        ShowText(*this, property);
        break;
    default:
        if (InfoStringId(type) != 0)
            ShowNumber(*this, property);
        break;
    }
    shownType = type;
    numericModified = 0;
    textModified = 0;
}

bool RecordViewer::IsEditor(HWND window) const {
    return window && (window == Control(IDC_VALUE_TEXT) || window == Control(IDC_VALUE_NUMBER));
}
