#include "dblist/documents.h"

#include "app/application.h"
#include "app/uiservices.h"
#include "backup/autobackup.h"
#include "backup/restore.h"
#include "dblist/commands.h"
#include "dblist/databaselist.h"
#include "platform/text.h"
#include "regbackup/registrybackup.h"
#include "resources/resource.h"

namespace {

void OpenArchive(HWND mainWindow, const WCHAR* path) {
    if (RestoreCommand(mainWindow, path))
        RebuildDatabaseList();
}

// It becomes the script of the Autobackup command, as one that is picked does.
void OpenScript(HWND mainWindow, const WCHAR* path) {
    if (MessageFromString(mainWindow, IDS_CONFIRM_RUN_SCRIPT, path, kQuestionBox) != IDYES)
        return;
    CopyText(App().settings->scriptName, path);
    RunAutobackup(mainWindow);
}

void OpenRegistry(HWND mainWindow, const WCHAR* path) {
    RestoreRegistry(mainWindow, path);
}

constexpr struct {
    const WCHAR* extension;
    void (*open)(HWND mainWindow, const WCHAR* path);
} kDocumentKinds[] = {{u".bkp", OpenArchive}, {u".abk", OpenScript}, {u".rbk", OpenRegistry}};

const WCHAR* ExtensionOf(const WCHAR* path) {
    const WCHAR* extension = u"";
    for (; *path; ++path)
        if (*path == u'.')
            extension = path;
    return extension;
}

void OpenDocument(HWND mainWindow, const WCHAR* path) {
    for (const auto& [extension, open] : kDocumentKinds)
        if (lstrcmpiW(ExtensionOf(path), extension) == 0)
            return open(mainWindow, path);
    MessageFromString(mainWindow, IDS_CANNOT_OPEN_DOCUMENT, path, kFailureBox);
}

} // namespace

void OpenDocuments(HWND mainWindow, HDROP dropped) {
    if (!App().idle) {
        App().waitingFiles.push_back(dropped);
        return;
    }
    const CommandFrame frame;
    WCHAR path[MAX_PATH];
    for (UINT file = 0; file < DragQueryFileW(dropped, kDropCount, nullptr, 0) && App().settings; ++file)
        if (DragQueryFileW(dropped, file, path, MAX_PATH))
            OpenDocument(mainWindow, path);
        else
            MessageFromString(mainWindow, IDS_PATH_TOO_LONG, kFailureBox);
    DragFinish(dropped);
}
