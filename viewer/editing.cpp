// Writing changes back: saving a value, deleting and adding properties and records.
#include <memory>

#include "app/uiservices.h"
#include "platform/shell.h"
#include "resources/resource.h"
#include "viewer/addproperty.h"
#include "viewer/recordviewer.h"
#include "viewer/reporting.h"
#include "viewer/valueeditor.h"

namespace {

bool Confirmed(const RecordViewer& viewer, UINT question) {
    return MessageFromString(viewer.dialog, question, kWarningQuestionBox) == IDYES;
}

} // namespace

void ReleasePropertyText(const CEPROPVAL& property) {
    if (TypeFromPropID(property.propid) == CEVT_LPWSTR)
        LocalFree(property.val.lpwstr);
}

// Asks about a property of the current record; null unless the answer is Yes. While the question is open the
// viewer may read its record anew, or move to another, because another process has changed the database: the
// property is looked up again.
CEPROPVAL* RecordViewer::ConfirmedProperty(const CEPROPVAL& property, UINT question) {
    const CEPROPID identifier = property.propid;
    const CEOID owner = recordId;
    return Confirmed(*this, question) && recordId == owner ? record.Find(identifier) : nullptr;
}

// The handle's own words for a failed write would speak of a new record, so it is kept quiet.
bool RecordViewer::WriteEdited(const CEPROPVAL& stored, CEPROPVAL* value) {
    undo.Remember(dialog, UndoKind::Changed, stored);
    if (database->WriteProperty(recordId, value) != recordId) {
        ReportAloud(*database, IDS_UNABLE_TO_SAVE_PROPERTY, nullptr);
        return false;
    }
    numericModified = 0;
    textModified = 0;
    return true;
}

bool RecordViewer::SaveEditedProperty(bool refill, CEPROPID propIdToSelect) {
    if (!IsEdited())
        return false;
    CEPROPVAL value;
    const EditorState state = {numericModified != 0, textModified != 0};
    const CEPROPVAL* stored = record.Properties() + editedProperty;
    if (!ParseEditedValue(dialog, *stored, state, &value))
        return false;
    const OwnWriteScope writing(&ownWrites);
    bool saved = false;
    if (App().settings->showWarning)
        stored = ConfirmedProperty(*stored, IDS_CONFIRM_CHANGE);
    if (stored) {
        saved = WriteEdited(*stored, &value);
        if (refill)
            FillPropertyList(propIdToSelect);
    }
    ReleasePropertyText(value);
    return saved;
}

void RecordViewer::DeletePropertyCommand() {
    if (record.propCount < 2) {
        DeleteRecordCommand(); // a record is never left without properties
        return;
    }
    const HWND list = Control(IDC_VIEWER_LIST);
    CEPROPVAL* property = SelectedProperty();
    if (ListView_GetSelectedCount(list) != 1 || !property)
        return;
    property = ConfirmedProperty(*property, IDS_CONFIRM_DELETE_PROPERTY);
    if (!property)
        return;
    // Before the write, whose failure is reported in a box that the record may not outlive.
    undo.Remember(dialog, UndoKind::Deleted, *property);
    {
        const LoudReports loud(*database);
        database->DeleteProperty(recordId, property);
    }
    FillPropertyList(kSelectNone);
}

void RecordViewer::DeleteRecordCommand() {
    const CEOID asked = recordId; // the current one may be another when the answer comes
    if (!asked || !Confirmed(*this, IDS_CONFIRM_DELETE_RECORD))
        return;
    undo.Forget();
    {
        const LoudReports loud(*database);
        database->DeleteRecord(asked);
    }
    if (ReloadDatabase(0))
        FillPropertyList(kSelectNone);
}

namespace {

using IdList = std::unique_ptr<DWORD, decltype(&LocalFree)>;

// As RunAddPropertyWizard wants them. Null when memory is short.
IdList IdsOf(const RecordBuffer& record) {
    const std::size_t bytes = (record.propCount + 1u) * sizeof(DWORD);
    IdList ids(static_cast<DWORD*>(LocalAlloc(LMEM_FIXED, bytes)), LocalFree);
    for (WORD index = 0; ids && index < record.propCount; ++index)
        ids.get()[index] = HIWORD(record.Properties()[index].propid);
    if (ids)
        ids.get()[record.propCount] = kEndOfIds;
    return ids;
}

} // namespace

void RecordViewer::AddPropertyCommand() {
    SaveEditedProperty(true);
    const IdList usedIds = IdsOf(record);
    if (!usedIds) {
        SHShowOutOfMemory(dialog, 0);
        return;
    }
    CEOID target = recordId;
    CEPROPVAL property = {};
    if (!RunAddPropertyWizard(dialog, &target, &property, usedIds.get()))
        return;
    const OwnWriteScope writing(&ownWrites);
    {
        const LoudReports loud(*database);
        recordId = database->WriteProperty(target, &property);
    }
    // A new record becomes the current one; a failed write leaves nothing to go to but the start.
    const bool stillOpen = target != 0 || ReloadDatabase(recordId);
    if (stillOpen) {
        undo.Remember(dialog, UndoKind::Added, property);
        FillPropertyList(property.propid);
    }
    ReleasePropertyText(property);
}
