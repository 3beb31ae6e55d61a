// The Edit menu's commands but Find: on the text inside of an editor, and on a property elsewhere.
#include "app/uiservices.h"
#include "platform/clipboard.h"
#include "resources/resource.h"
#include "viewer/propertyclipboard.h"
#include "viewer/recordviewer.h"

void RecordViewer::UndoCommand(HWND focus) {
    if (IsEditor(focus)) {
        SendMessageW(focus, WM_UNDO, 0, 0);
        return;
    }
    const OwnWriteScope writing(&ownWrites);
    CEPROPID propIdToSelect = kSelectNone;
    if (undo.TakeBack(dialog, *database, recordId, record, &propIdToSelect))
        FillPropertyList(propIdToSelect);
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
    const CEOID owner = recordId; // another record may be current after the question whether to save
    SaveEditedProperty(true, identifier);
    property = recordId == owner ? record.Find(identifier) : nullptr;
    if (property)
        PutPropertyOnClipboard(dialog, *property);
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
    if (!property || !PutPropertyOnClipboard(dialog, *property))
        return;
    database->DeleteProperty(recordId, property);
    undo.Remember(dialog, UndoKind::Deleted, *property);
    FillPropertyList(kSelectNone);
}

void RecordViewer::PasteProperty(HWND focus) {
    if (IsEditor(focus)) {
        SendMessageW(focus, WM_PASTE, 0, 0);
        return;
    }
    if (!OpenClipboard(dialog))
        return;
    // A copy, for an update of the menus closes the clipboard while the question stands open.
    FlatProperty* taken = CopyPropertyFromClipboard();
    const CEOID target = recordId; // another record may be current after the questions
    const bool clash = taken && record.Find(taken->property.propid);
    if (taken && (!clash || MessageFromString(dialog, IDS_CONFIRM_PASTE_OVER, kQuestionBox) == IDYES))
        WritePasted(target, &taken->property, clash);
    LocalFree(taken);
    CloseClipboard();
}

void RecordViewer::WritePasted(CEOID target, CEPROPVAL* property, bool clash) {
    const OwnWriteScope writing(&ownWrites);
    SaveEditedProperty(false);
    editedProperty = kNoProperty;
    {
        const LoudReports loud(*database);
        database->WriteProperty(target, property);
    }
    // Quirk: what undo keeps is the pasted value itself, so that undoing a paste over another value changes
    // nothing.
    undo.Remember(dialog, clash ? UndoKind::Changed : UndoKind::Added, *property);
    FillPropertyList(property->propid);
}

void RecordViewer::SelectAllText(HWND focus) {
    if (IsEditor(focus))
        SendMessageW(focus, EM_SETSEL, 0, -1);
}
