// The one step of undo: the property that the last edit changed, and what the edit was.
#pragma once

#include "store/dbhandle.h"
#include "viewer/flatproperty.h"

enum class UndoKind { None, Deleted, Changed, Added };

class UndoStep {
public:
    UndoStep() = default;
    ~UndoStep() { Forget(); }
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;

    // Keeps a copy of the property: as it was before it was deleted or changed, or as it was added. Without
    // one there is nothing to undo; a lack of memory is told to the user.
    void Remember(HWND owner, UndoKind edit, const CEPROPVAL& property);
    void Forget();
    bool IsPossible() const { return kind != UndoKind::None && copy; }

    // Takes the edit back in the database's record, which is held as it was read before, and keeps what
    // undoes that in turn. False when there is nothing to undo or the write failed. `propIdToSelect` becomes
    // the property that is there again, or stays when one was taken away.
    bool TakeBack(HWND owner, DbHandle& database, CEOID recordId, const RecordBuffer& record,
                  CEPROPID* propIdToSelect);

private:
    UndoKind kind = UndoKind::None;
    FlatProperty* copy = nullptr; // owned
};
