// Finding a text in the records.
#include <string_view>

#include "app/uiservices.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "store/propertyvalues.h"
#include "viewer/finddialog.h"
#include "viewer/recordviewer.h"

namespace {

// Lowers a text in place unless case counts; the search buffer's own texts are lowered too, for it is thrown
// away.
bool Contains(WCHAR* text, std::u16string_view wanted, bool matchCase) {
    if (!matchCase)
        CharLowerW(text);
    return std::u16string_view(text).find(wanted) != std::u16string_view::npos;
}

bool IsNumericOrDate(WORD type) {
    switch (type) {
    case CEVT_I2:
    case CEVT_UI2:
    case CEVT_I4:
    case CEVT_UI4:
    case CEVT_R8:
    case CEVT_FILETIME:
        return true;
    }
    return false;
}

bool PropertyContains(const CEPROPVAL& property, std::u16string_view wanted, const FindOptions& options) {
    const WORD type = TypeFromPropID(property.propid);
    if (type == CEVT_LPWSTR)
        return property.val.lpwstr.Address() && Contains(property.val.lpwstr, wanted, options.matchCase);
    if (!options.searchNumProp || !IsNumericOrDate(type))
        return false;
    WCHAR text[kValueTextCapacity];
    FormatPropertyText(property, text);
    return Contains(text, wanted, options.matchCase);
}

} // namespace

bool RecordContains(const RecordBuffer& record, const FindOptions& options, CEPROPID* hit) {
    for (WORD place = 0; place < record.propCount; ++place) {
        const CEPROPVAL& property = record.Properties()[place];
        if (PropertyContains(property, options.text, options)) {
            *hit = property.propid;
            return true;
        }
    }
    return false;
}

bool RecordViewer::RunFindDialog() {
    FindOptions options;
    options.matchCase = App().settings->matchCase;
    options.searchNumProp = App().settings->searchNumProp;
    CopyText(options.text, findText);
    if (!ShowFindDialog(dialog, &options) || !options.text[0])
        return false;
    CopyText(findText, options.text);
    App().settings->matchCase = options.matchCase;
    App().settings->searchNumProp = options.searchNumProp;
    return true;
}

// Searches from the record behind the current one on; `index` follows. False at the end.
bool RecordViewer::SearchOn(DWORD* index, RecordBuffer* buffer, CEPROPID* hit) {
    const WaitCursor wait;
    FindOptions options;
    options.matchCase = App().settings->matchCase;
    options.searchNumProp = App().settings->searchNumProp;
    CopyText(options.text, findText);
    if (!options.matchCase)
        CharLowerW(options.text);
    bool found = true;
    while (found) {
        if (database->ReadRecord(buffer) && RecordContains(*buffer, options, hit))
            return true;
        found = database->SeekNext(index);
    }
    return false;
}

void RecordViewer::EndSearchWithoutHit(RecordBuffer* buffer) {
    LocalFree(buffer->data);
    database->SeekToRecord(recordId, &recordIndex);
    FillPropertyList(kSelectNone);
    MessageFromString(dialog, IDS_TEXT_NOT_FOUND, findText, kInformationBox);
}

void RecordViewer::FindCommand(const WCHAR* textOrNone) {
    if (IsEdited(editedProperty))
        SaveEditedProperty(editedProperty, true);
    if (!textOrNone && !RunFindDialog())
        return;
    RecordBuffer buffer;
    DWORD index = recordIndex;
    CEPROPID hit = 0;
    bool more = database->SeekNext(&index);
    while (!more || !SearchOn(&index, &buffer, &hit)) {
        // The end, from the first record on or after the wrap: every record has been looked at but the first
        // one itself.
        if (recordIndex == 0) {
            EndSearchWithoutHit(&buffer);
            return;
        }
        recordIndex = 0;
        if (MessageFromString(dialog, IDS_CONFIRM_SEARCH_AGAIN, kQuestionBox) != IDYES) {
            EndSearchWithoutHit(&buffer);
            return;
        }
        more = database->SeekFirst(&index);
    }
    recordIndex = index;
    LocalFree(buffer.data);
    ForgetUndo();
    FillPropertyList(hit);
}
