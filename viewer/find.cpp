// The Find commands.
#include "app/uiservices.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "viewer/finddialog.h"
#include "viewer/recordviewer.h"

FindOptions RecordViewer::RememberedFindOptions() const {
    FindOptions options;
    options.matchCase = App().settings->matchCase;
    options.searchNumProp = App().settings->searchNumProp;
    CopyText(options.text, findText);
    return options;
}

bool RecordViewer::AskFindOptions() {
    FindOptions options = RememberedFindOptions();
    if (!ShowFindDialog(dialog, &options) || !options.text[0])
        return false;
    CopyText(findText, options.text);
    App().settings->matchCase = options.matchCase;
    App().settings->searchNumProp = options.searchNumProp;
    return true;
}

void RecordViewer::FindCommand() {
    SaveEditedProperty(true);
    if (AskFindOptions())
        Search();
}

void RecordViewer::FindNextCommand() {
    SaveEditedProperty(true);
    Search();
}

void RecordViewer::Search() {
    RecordSearch search(dialog, *database, RememberedFindOptions());
    const RecordSearch::Result result = search.Run(recordIndex);
    if (result == RecordSearch::Result::Found) {
        recordIndex = search.Index();
        undo.Forget();
        FillPropertyList(search.Hit());
        return;
    }
    database->SeekToRecord(recordId, &recordIndex);
    FillPropertyList(kSelectNone);
    if (result == RecordSearch::Result::NotFound)
        MessageFromString(dialog, IDS_TEXT_NOT_FOUND, findText, kInformationBox);
}
