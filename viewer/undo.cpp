#include "viewer/undo.h"

#include "platform/errors.h"
#include "platform/shell.h"

void UndoStep::Forget() {
    LocalFree(copy);
    copy = nullptr;
    kind = UndoKind::None;
}

void UndoStep::Remember(HWND owner, UndoKind edit, const CEPROPVAL& property) {
    Forget();
    kind = edit;
    copy = Flatten(property);
    if (!copy && GetLastError() == ERROR_NOT_ENOUGH_MEMORY)
        SHShowOutOfMemory(owner, 0);
}

bool UndoStep::TakeBack(HWND owner, DbHandle& database, CEOID recordId, const RecordBuffer& record,
                        CEPROPID* propIdToSelect) {
    if (!IsPossible())
        return false;
    CEPROPVAL& property = copy->property;
    if (kind == UndoKind::Added) {
        if (!database.DeleteProperty(recordId, &property))
            return false;
        kind = UndoKind::Deleted;
        return true;
    }
    if (!database.WriteProperty(recordId, &property))
        return false;
    *propIdToSelect = property.propid;
    if (kind == UndoKind::Deleted)
        kind = UndoKind::Added;
    else if (const CEPROPVAL* before = record.Find(property.propid))
        Remember(owner, UndoKind::Changed, *before); // a second Undo brings it back
    return true;
}
