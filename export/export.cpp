#include "export/export.h"

#include <memory>
#include <new>

#include "app/uiservices.h"
#include "platform/shell.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "store/datetimetext.h"
#include "store/dbhandle.h"
#include "store/propertyvalues.h"

namespace {

bool PickExportFile(ExportState* state) {
    return state->format == kCommaSeparated
               ? PickFile(state->owner, state->fileName, false, IDS_FILTER_CSV, u"*.csv")
               : PickFile(state->owner, state->fileName, false, IDS_FILTER_TEXT, u"*.txt");
}

// Null for a type that has no text here. A date has its seconds, which it shows nowhere else.
const WCHAR* FieldText(const CEPROPVAL& property, WCHAR (&buffer)[kValueTextCapacity]) {
    switch (TypeFromPropID(property.propid)) {
    case CEVT_I2:
    case CEVT_UI2:
    case CEVT_I4:
    case CEVT_UI4:
    case CEVT_R8:
    case CEVT_LPWSTR:
        return FormatPropertyText(property, buffer);
    case CEVT_FILETIME: {
        DateTimeText moment(property.val.filetime);
        int length = CopyText(buffer, moment.DateText());
        buffer[length++] = u' ';
        CopyText(buffer + length, kValueTextCapacity - static_cast<std::size_t>(length),
                 moment.TimeText(true));
        return buffer;
    }
    }
    return nullptr;
}

// A value without a text leaves its field empty, so that those behind it stay in their columns.
void WriteLine(ExportState* state, const RecordBuffer& record) {
    for (WORD place = 0; place < record.propCount; ++place) {
        const CEPROPVAL& property = record.Properties()[place];
        WCHAR buffer[kValueTextCapacity];
        if (place > 0)
            state->writer.WriteSeparator();
        state->writer.WriteField(FieldText(property, buffer),
                                 state->format == kCommaSeparated ||
                                     TypeFromPropID(property.propid) == CEVT_LPWSTR);
    }
    state->writer.WriteLineEnd();
}

// False when a write failed, or when not all records could be reached.
bool WriteLines(ExportState* state, DbHandle& database) {
    const WaitCursor wait;
    RecordBuffer record;
    DWORD index = 0;
    bool found = WalkToFirst(database, &index);
    while (found) {
        // Quirk: a record that cannot be read leaves no line, and nothing is said.
        if (database.ReadRecord(&record))
            WriteLine(state, record);
        if (state->writer.failed)
            return false;
        found = WalkToNext(database, &index);
    }
    return database.WalkEnded();
}

bool WriteDatabase(ExportState* state, const WCHAR* name) {
    DbHandle database(state->owner);
    // Whatever fails, there is one message, about the file.
    const QuietReports quiet(database);
    if (database.Open(name, 0, 0) == INVALID_HANDLE_VALUE)
        return false;
    state->writer.separator = state->format == kCommaSeparated ? u',' : u'\t';
    return WriteLines(state, database);
}

} // namespace

bool ExportDatabase(ExportState* state, const WCHAR* name, const WCHAR* path) {
    if (path && *path)
        CopyText(state->fileName, path);
    else if (!PickExportFile(state))
        return false;
    if (!state->writer.Create(state->owner, state->fileName))
        return false;
    if (state->writer.Close(WriteDatabase(state, name)))
        return true;
    MessageFromString(state->owner, IDS_UNABLE_TO_EXPORT, kFailureBox);
    return false;
}

bool ExportCommand(HWND owner, const WCHAR* name) {
    const std::unique_ptr<ExportState> state(new (std::nothrow) ExportState(owner));
    if (!state) {
        SHShowOutOfMemory(owner, 0);
        return false;
    }
    return ShowExportDialog(state.get()) && ExportDatabase(state.get(), name, nullptr);
}
