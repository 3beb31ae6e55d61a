#include "dblist/dragout.h"

#include <memory>
#include <new>
#include <string>

#include "app/application.h"
#include "app/uiservices.h"
#include "backup/backup.h"
#include "dblist/commands.h"
#include "dblist/databaselist.h"
#include "platform/shell.h"
#include "resources/resource.h"

namespace {

bool failed = false; // the archive was asked for, and could not be written

// While one lives nothing is asked, told or shown: the user holds the mouse's button.
class UnseenScope {
public:
    UnseenScope() : before(*App().settings) {
        App().settings->interactive = 0;
        App().settings->unattended = 1;
        App().settings->noProgress = 1;
    }
    ~UnseenScope() {
        App().settings->interactive = before.interactive;
        App().settings->unattended = before.unattended;
        App().settings->noProgress = before.noProgress;
    }
    UnseenScope(const UnseenScope&) = delete;
    UnseenScope& operator=(const UnseenScope&) = delete;

private:
    const SettingsData before;
};

bool WriteSelected(BackupEngine& engine) {
    for (int row = -1; (row = NextSelectedRow(row)) >= 0;) {
        WCHAR name[kNameCapacity];
        DatabaseNameOfRow(row, name);
        if (!engine.WriteDatabase(name))
            return false;
    }
    return true;
}

BOOL MakeArchive(const WCHAR* path) {
    failed = true;
    const UnseenScope unseen;
    const std::unique_ptr<BackupEngine> engine(new (std::nothrow) BackupEngine);
    if (!engine || !engine->BeginBackup(App().mainWindow, false, path))
        return FALSE;
    const bool written = WriteSelected(*engine);
    failed = !engine->Finish() || !written;
    return !failed;
}

std::u16string ArchiveName() {
    WCHAR name[kNameCapacity] = u"Databases";
    if (SelectedRowCount() == 1)
        SelectedDatabaseName(name);
    return std::u16string(name) + u".bkp";
}

} // namespace

void DragSelectedDatabases(HWND mainWindow) {
    const CommandFrame frame;
    failed = false;
    DragFile(mainWindow, ArchiveName().c_str(), MakeArchive);
    if (failed)
        MessageFromString(mainWindow, IDS_UNABLE_TO_WRITE_FILE, kFailureBox);
}
