// Properties over the clipboard, and the Edit menu's commands inside the editors.
#include "app/uiservices.h"
#include "platform/clipboard.h"
#include "platform/shell.h"
#include "resources/resource.h"
#include "viewer/clipformat.h"
#include "viewer/recordviewer.h"

UINT PropertyClipFormat() {
    static const UINT format = RegisterClipboardFormatW(u"NV_DatabasePropFmt");
    return format;
}

// The clipboard is left open: the update of the menus that follows every command opens and closes it.
bool RecordViewer::PutPropertyOnClipboard(const CEPROPVAL& property) {
    if (!OpenClipboard(dialog))
        return true;
    if (!IsKnownType(TypeFromPropID(property.propid)))
        return false;
    FlatProperty* block = Flatten(property);
    if (!block) {
        SHShowOutOfMemory(dialog, 0);
        return false;
    }
    EmptyClipboard();
    if (SetClipboardData(PropertyClipFormat(), block))
        return true;
    LocalFree(block);
    return false;
}

void RecordViewer::CopyProperty(HWND focus) {
    if (IsEditor(focus)) {
        SendMessageW(focus, WM_COPY, 0, 0);
        return;
    }
    if (!SelectedProperty())
        return;
    if (IsEdited(editedProperty))
        SaveEditedProperty(editedProperty, true);
    if (const CEPROPVAL* property = SelectedProperty())
        PutPropertyOnClipboard(*property);
}

void RecordViewer::CutProperty(HWND focus) {
    if (IsEditor(focus)) {
        SendMessageW(focus, WM_CUT, 0, 0);
        return;
    }
    CEPROPVAL* property = SelectedProperty();
    if (!property)
        return;
    if (App().settings->showWarning &&
        MessageFromString(dialog, IDS_CONFIRM_DELETE_PROPERTY, kWarningQuestionBox) != IDYES)
        return;
    if (!PutPropertyOnClipboard(*property))
        return;
    database->DeleteProperty(recordId, property);
    RememberForUndo(UndoKind::Cut, *property);
    FillPropertyList(kSelectNone);
}

namespace {

// The clipboard's property, with its pointer made anew; false when there is none that fits its block.
bool TakeFromClipboard(CEPROPVAL* property) {
    const UINT format = PropertyClipFormat();
    if (!IsClipboardFormatAvailable(format))
        return false;
    void* block = GetClipboardData(format);
    return block &&
           Unflatten(static_cast<FlatProperty*>(block), static_cast<DWORD>(LocalSize(block)), property);
}

bool HoldsIdentifier(const RecordBuffer& record, CEPROPID identifier) {
    for (WORD place = 0; place < record.propCount; ++place) {
        if (record.Properties()[place].propid == identifier)
            return true;
    }
    return false;
}

} // namespace

void RecordViewer::PasteProperty(HWND focus) {
    if (IsEditor(focus)) {
        SendMessageW(focus, WM_PASTE, 0, 0);
        return;
    }
    if (!OpenClipboard(dialog))
        return;
    CEPROPVAL property;
    const bool available = TakeFromClipboard(&property);
    const bool clash = available && HoldsIdentifier(record, property.propid);
    if (!available || (clash && MessageFromString(dialog, IDS_CONFIRM_PASTE_OVER, kQuestionBox) != IDYES)) {
        CloseClipboard();
        return;
    }
    saving = 1;
    if (IsEdited(editedProperty))
        SaveEditedProperty(editedProperty, false);
    saving = 1; // the save has cleared it
    editedProperty = kNoProperty;
    database->reportErrors = 1;
    database->WriteProperty(recordId, &property);
    database->reportErrors = 0;
    // What undo keeps is the pasted value itself, so that undoing a paste over another value changes nothing;
    // it is meant.
    RememberForUndo(clash ? UndoKind::Changed : UndoKind::Added, property);
    FillPropertyList(property.propid);
    saving = 0;
    CloseClipboard();
}

void RecordViewer::SelectAllText(HWND focus) {
    if (IsEditor(focus))
        SendMessageW(focus, EM_SETSEL, 0, -1);
}
