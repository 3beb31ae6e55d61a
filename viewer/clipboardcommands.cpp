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
    const CEPROPVAL* property = SelectedProperty();
    if (!property)
        return;
    const CEPROPID identifier = property->propid;
    const CEOID owner = recordId; // the question of the save may outlive the record
    if (IsEdited(editedProperty))
        SaveEditedProperty(editedProperty, true, identifier);
    property = recordId == owner ? FindProperty(identifier) : nullptr;
    if (property)
        PutPropertyOnClipboard(*property);
}

void RecordViewer::CutProperty(HWND focus) {
    if (IsEditor(focus)) {
        SendMessageW(focus, WM_CUT, 0, 0);
        return;
    }
    CEPROPVAL* property = SelectedProperty();
    if (property && App().settings->showWarning)
        property = ConfirmedProperty(*property, IDS_CONFIRM_DELETE_PROPERTY);
    // Quirk: a clipboard that cannot be opened does not keep the property from being deleted.
    if (!property || !PutPropertyOnClipboard(*property))
        return;
    database->DeleteProperty(recordId, property);
    RememberForUndo(UndoKind::Cut, *property);
    FillPropertyList(kSelectNone);
}

namespace {

// A copy of the clipboard's property, null when there is none that fits its block. The block itself may not
// outlive the questions to come: an update of the menus closes the clipboard.
FlatProperty* TakeFromClipboard() {
    const UINT format = PropertyClipFormat();
    void* block = IsClipboardFormatAvailable(format) ? GetClipboardData(format) : nullptr;
    CEPROPVAL property;
    const bool fits = block && Unflatten(static_cast<FlatProperty*>(block),
                                         static_cast<DWORD>(LocalSize(block)), &property);
    return fits ? Flatten(property) : nullptr;
}

} // namespace

void RecordViewer::PasteProperty(HWND focus) {
    if (IsEditor(focus)) {
        SendMessageW(focus, WM_PASTE, 0, 0);
        return;
    }
    if (!OpenClipboard(dialog))
        return;
    FlatProperty* taken = TakeFromClipboard();
    const CEOID target = recordId; // questions may outlive it, and another record is not meant
    const bool clash = taken && FindProperty(taken->property.propid);
    if (taken && (!clash || MessageFromString(dialog, IDS_CONFIRM_PASTE_OVER, kQuestionBox) == IDYES))
        WritePasted(target, &taken->property, clash);
    LocalFree(taken);
    CloseClipboard();
}

void RecordViewer::WritePasted(CEOID target, CEPROPVAL* property, bool clash) {
    saving = 1;
    if (IsEdited(editedProperty))
        SaveEditedProperty(editedProperty, false);
    saving = 1; // the save has cleared it
    editedProperty = kNoProperty;
    database->reportErrors = 1;
    database->WriteProperty(target, property);
    database->reportErrors = 0;
    // Quirk: what undo keeps is the pasted value itself, so that undoing a paste over another value changes
    // nothing.
    RememberForUndo(clash ? UndoKind::Changed : UndoKind::Added, *property);
    FillPropertyList(property->propid);
    saving = 0;
}

void RecordViewer::SelectAllText(HWND focus) {
    if (IsEditor(focus))
        SendMessageW(focus, EM_SETSEL, 0, -1);
}
