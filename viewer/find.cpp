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
    for (WORD index = 0; index < record.propCount; ++index) {
        const CEPROPVAL& property = record.Properties()[index];
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

// Searches from the record that `index` says on, which follows. False at the end and on a failure.
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
        // A record that cannot be read is passed over.
        if (database->ReadRecord(buffer) && RecordContains(*buffer, options, hit))
            return true;
        found = Walk(&DbHandle::SeekNext, index);
    }
    return false;
}

// From the record behind the current one to the end and, if the user wants that, once more from the first.
bool RecordViewer::Search(DWORD* index, RecordBuffer* buffer, CEPROPID* hit) {
    bool more = Walk(&DbHandle::SeekNext, index);
    while (!more || !SearchOn(index, buffer, hit)) {
        const bool complete = database->WalkEnded();
        // From the first record on, or after the wrap, every record has been looked at but the first one
        // itself.
        if (!complete || recordIndex == 0) {
            EndSearchWithoutHit(complete);
            return false;
        }
        recordIndex = 0;
        if (MessageFromString(dialog, IDS_CONFIRM_SEARCH_AGAIN, kQuestionBox) != IDYES) {
            EndSearchWithoutHit(true);
            return false;
        }
        more = Walk(&DbHandle::SeekFirst, index);
    }
    return true;
}

// A search that broke off has been reported, and must not claim that the text is nowhere.
void RecordViewer::EndSearchWithoutHit(bool complete) {
    database->SeekToRecord(recordId, &recordIndex);
    FillPropertyList(kSelectNone);
    if (complete)
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
    const bool found = Search(&index, &buffer, &hit);
    LocalFree(buffer.data);
    if (!found)
        return;
    recordIndex = index;
    ForgetUndo();
    FillPropertyList(hit);
}
