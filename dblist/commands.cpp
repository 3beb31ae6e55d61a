#include "dblist/commands.h"

#include <memory>
#include <new>
#include <utility>

#include "app/aboutdialog.h"
#include "app/application.h"
#include "app/optionsdialog.h"
#include "app/uiservices.h"
#include "backup/autobackup.h"
#include "backup/backup.h"
#include "backup/restore.h"
#include "dblist/databaselist.h"
#include "dblist/management.h"
#include "dblist/propertiesdialog.h"
#include "dblist/viewmodify.h"
#include "export/export.h"
#include "infrared/beaming.h"
#include "platform/menu.h"
#include "platform/shell.h"
#include "platform/text.h"
#include "regbackup/registrybackup.h"
#include "resources/resource.h"

namespace {

using DatabaseCommand = bool (*)(HWND owner, const WCHAR* name);

// Runs a command on the selected database; does nothing without one.
bool OnSelectedDatabase(HWND mainWindow, DatabaseCommand command) {
    WCHAR name[kNameCapacity];
    return SelectedDatabaseName(name) && command(mainWindow, name);
}

// The selection is remembered by row numbers, and a renamed or emptied database may belong into another row
// now. So the rows, which take their selection with them, are sorted first.
void SaveSelectionAndRebuild() {
    SortDatabaseList();
    SaveListSelection();
    RebuildDatabaseList();
}

bool RenameWithDialog(HWND owner, const WCHAR* name) {
    return RenameDatabaseCommand(owner, name, true);
}

void ChooseView(DWORD style) {
    if (CurrentListStyle() == style)
        return;
    SetListStyle(style);
    App().settings->listStyle = style;
    SortDatabaseList();
}

// Keeps the direction, which only a tap on the column turns.
void Arrange(DWORD key) {
    if (App().settings->sortKey == key)
        return;
    App().settings->sortKey = key;
    SortDatabaseList();
}

void ChangeOptions(HWND mainWindow) {
    if (!ShowOptionsDialog(mainWindow))
        return;
    ApplyListOptions();
    SaveSelectionAndRebuild(); // what is selected now, not what was at the last refresh
}

void BackUpDatabases(HWND mainWindow) {
    const std::unique_ptr<BackupEngine> engine(new (std::nothrow) BackupEngine);
    int count = 0;
    // The user means what was selected before the questions; the list may be read anew while they are open.
    const std::unique_ptr<ListedDatabase[]> rows = CopyRows(&count);
    if (!engine || !rows) {
        SHShowOutOfMemory(mainWindow, 0);
        return;
    }
    if (!engine->BeginBackup(mainWindow, true, nullptr))
        return;
    for (int row = 0; row < count; ++row) {
        const bool wanted = engine->allDatabases || rows[row].selected;
        if (wanted && !engine->WriteDatabase(rows[row].name))
            break;
    }
    engine->Finish();
    RebuildDatabaseList();
}

// Quirk: the picker puts its proposal in place of the path, also when the user cancels.
bool PickScript(HWND mainWindow) {
    WCHAR path[MAX_PATH] = {};
    const bool picked = PickFile(mainWindow, path, true, IDS_FILTER_SCRIPT, u"*.abk");
    if (App().settings)
        CopyText(App().settings->scriptName, path);
    return picked;
}

void ReplayScript(HWND mainWindow) {
    if (!App().settings->promptScript || PickScript(mainWindow))
        RunAutobackup(mainWindow);
}

void RunViewCommand(UINT command) {
    switch (command) {
    case IDM_VIEW_LARGE_ICONS:
        ChooseView(LVS_ICON);
        break;
    case IDM_VIEW_DETAILS:
        ChooseView(LVS_REPORT);
        break;
    case IDM_VIEW_SMALL_ICONS:
        ChooseView(LVS_SMALLICON);
        break;
    case IDM_VIEW_LIST:
        ChooseView(LVS_LIST);
        break;
    case IDM_ARRANGE_BY_NAME:
        Arrange(kSortByName);
        break;
    case IDM_ARRANGE_BY_SIZE:
        Arrange(kSortBySize);
        break;
    case IDM_ARRANGE_BY_DATE:
        Arrange(kSortByDate);
        break;
    case IDM_REFRESH:
        SaveSelectionAndRebuild();
        break;
    }
}

void RunDatabaseCommand(HWND mainWindow, UINT command) {
    switch (command) {
    case IDM_DELETE:
        if (OnSelectedDatabase(mainWindow, DeleteDatabaseCommand))
            RebuildDatabaseList();
        break;
    case IDM_RENAME:
        if (OnSelectedDatabase(mainWindow, RenameWithDialog))
            RebuildDatabaseList();
        break;
    case IDM_COPY:
        if (OnSelectedDatabase(mainWindow, CopyDatabaseCommand))
            RebuildDatabaseList();
        break;
    case IDM_EMPTY:
        if (OnSelectedDatabase(mainWindow, EmptyDatabaseCommand))
            SaveSelectionAndRebuild();
        break;
    case IDM_SEND:
        if (OnSelectedDatabase(mainWindow, SendDatabase))
            SaveSelectionAndRebuild();
        break;
    case IDM_RECEIVE:
        if (ReceiveDatabase(mainWindow))
            RebuildDatabaseList();
        break;
    case IDM_EXPORT:
        OnSelectedDatabase(mainWindow, ExportCommand);
        break;
    case IDM_PROPERTIES:
        if (SelectedRowCount() == 1)
            ShowDatabaseProperties(mainWindow);
        break;
    case IDM_VIEW_MODIFY:
        ViewSelectedDatabase(mainWindow);
        break;
    }
}

void RunProgramCommand(HWND mainWindow, UINT command) {
    switch (command) {
    case IDM_ABOUT:
        ShowAboutDialog(mainWindow);
        break;
    case IDM_QUIT:
        PostMessageW(mainWindow, WM_CLOSE, 0, 0);
        break;
    case IDM_HELP:
        OpenHelp(u"tarnwickscope.htm#tarnwickscope_help");
        break;
    case IDM_OPTIONS:
        ChangeOptions(mainWindow);
        break;
    case IDM_BACKUP:
        BackUpDatabases(mainWindow);
        break;
    case IDM_RESTORE:
        if (RestoreCommand(mainWindow, nullptr))
            RebuildDatabaseList();
        break;
    case IDM_AUTOBACKUP:
        ReplayScript(mainWindow);
        break;
    case IDM_BACKUP_REGISTRY:
        BackupRegistry(mainWindow, nullptr);
        break;
    case IDM_RESTORE_REGISTRY:
        RestoreRegistry(mainWindow, nullptr);
        break;
    }
}

constexpr UINT kOneDatabaseCommands[] = {IDM_SEND,   IDM_DELETE, IDM_EMPTY,     IDM_EXPORT,
                                         IDM_RENAME, IDM_COPY,   IDM_PROPERTIES};
constexpr UINT kOneDatabaseButtons[] = {IDM_DELETE, IDM_PROPERTIES};

UINT ViewCommand(DWORD style) {
    switch (style) {
    case LVS_ICON:
        return IDM_VIEW_LARGE_ICONS;
    case LVS_SMALLICON:
        return IDM_VIEW_SMALL_ICONS;
    case LVS_LIST:
        return IDM_VIEW_LIST;
    }
    return IDM_VIEW_DETAILS;
}

UINT ArrangeCommand(DWORD sortKey) {
    switch (sortKey) {
    case kSortByDate:
        return IDM_ARRANGE_BY_DATE;
    case kSortBySize:
        return IDM_ARRANGE_BY_SIZE;
    }
    return IDM_ARRANGE_BY_NAME;
}

} // namespace

CommandFrame::CommandFrame() : idleBefore(App().idle) {
    App().idle = 0;
}

CommandFrame::~CommandFrame() {
    App().idle = idleBefore;
    UpdateMainMenu(nullptr);
    if (App().idle)
        for (const HDROP dropped : std::exchange(App().waitingFiles, {}))
            PostMessageW(App().mainWindow, WM_DROPFILES, reinterpret_cast<WPARAM>(dropped), 0);
}

void RunMainCommand(HWND mainWindow, UINT command) {
    const CommandFrame frame;
    if (command >= IDM_FIRST_COMMAND && command <= IDM_LAST_COMMAND) {
        RunDatabaseCommand(mainWindow, command);
        RunViewCommand(command);
        RunProgramCommand(mainWindow, command);
    }
}

void UpdateMainMenu(HMENU menu) {
    if (!menu)
        menu = reinterpret_cast<HMENU>(SendMessageW(App().menuBar, SHCMBM_GETMENU, 0, 0));
    if (!menu || !App().menuBar || !App().settings)
        return;
    const bool one = SelectedRowCount() == 1;
    for (const UINT command : kOneDatabaseCommands)
        EnableMenuItem(menu, command, MF_BYCOMMAND | (one ? MF_ENABLED : MF_GRAYED));
    for (const UINT command : kOneDatabaseButtons)
        SendMessageW(App().menuBar, TB_ENABLEBUTTON, command, one);
    CheckMenuRadioItem(menu, IDM_VIEW_SMALL_ICONS, IDM_VIEW_LARGE_ICONS, ViewCommand(CurrentListStyle()),
                       MF_BYCOMMAND);
    CheckMenuRadioItem(menu, IDM_ARRANGE_BY_NAME, IDM_ARRANGE_BY_DATE,
                       ArrangeCommand(App().settings->sortKey), MF_BYCOMMAND);
}
