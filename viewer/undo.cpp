// The one step of undo.
#include "platform/controls.h"
#include "platform/errors.h"
#include "platform/shell.h"
#include "viewer/recordviewer.h"

void RecordViewer::ForgetUndo() {
    LocalFree(undo.copy);
    undo = {};
}

// A property that cannot be flattened leaves a kind without a copy: there is nothing to undo then.
void RecordViewer::RememberForUndo(UndoKind kind, const CEPROPVAL& property) {
    ForgetUndo();
    undo.kind = kind;
    undo.copy = Flatten(property);
    if (!undo.copy && GetLastError() == ERROR_NOT_ENOUGH_MEMORY)
        SHShowOutOfMemory(dialog, 0);
}

// Takes the last edit back in the store; false when that failed.
bool RecordViewer::UndoWrite(CEPROPID* selectAfter) {
    CEPROPVAL& copy = undo.copy->property;
    *selectAfter = copy.propid;
    switch (undo.kind) {
    case UndoKind::Deleted:
    case UndoKind::Cut:
        if (!database->WriteProperty(recordId, &copy))
            return false;
        undo.kind = UndoKind::Added;
        return true;
    case UndoKind::Changed:
        if (!database->WriteProperty(recordId, &copy))
            return false;
        // The record in memory still holds the value before this undo: keeping it makes a second Undo bring
        // it back.
        if (const CEPROPVAL* before = FindProperty(*selectAfter))
            RememberForUndo(UndoKind::Changed, *before);
        return true;
    case UndoKind::Added:
    case UndoKind::AddedToo:
        *selectAfter = kSelectNone;
        if (!database->DeleteProperty(recordId, &copy))
            return false;
        undo.kind = UndoKind::Deleted;
        return true;
    case UndoKind::None:
        break;
    }
    return false;
}

void RecordViewer::UndoCommand(HWND focus) {
    if (IsEditor(focus)) {
        SendMessageW(focus, WM_UNDO, 0, 0);
        return;
    }
    if (undo.kind == UndoKind::None || !undo.copy)
        return;
    saving = 1;
    CEPROPID selectAfter = kSelectNone;
    if (UndoWrite(&selectAfter))
        FillPropertyList(selectAfter);
    saving = 0;
}
