// The viewer's window: creation, its own message loop, the dispatch of messages and commands.
#include "viewer/recordviewer.h"

#include <new>

#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "platform/dialog.h"
#include "platform/shell.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "viewer/focuscycle.h"
#include "viewer/valueeditor.h"

namespace {

constexpr int kButtonImages = 9;

bool OnNotify(RecordViewer* viewer, const NMHDR* header) {
    if (header->idFrom != IDC_VIEWER_LIST)
        return false;
    switch (header->code) {
    case LVN_ITEMCHANGED:
    case NM_DBLCLK:
        viewer->OnSelectionChanged();
        return true;
    case LVN_COLUMNCLICK:
        viewer->OnColumnClick(reinterpret_cast<const NMLISTVIEW*>(header)->iSubItem);
        return true;
    }
    return false;
}

bool OnMessage(RecordViewer* viewer, HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_COMMAND:
        viewer->RunCommand(LOWORD(wParam), HIWORD(wParam), GetFocus());
        return true;
    // The host's own button and Alt+F4 finish, as the title bar's OK does: Cancel would lose what is typed.
    case WM_CLOSE:
        viewer->RunCommand(IDOK, 0, GetFocus());
        return true;
    case WM_NOTIFY:
        return OnNotify(viewer, reinterpret_cast<const NMHDR*>(lParam));
    case WM_INITMENUPOPUP:
        viewer->UpdateMenus(reinterpret_cast<HMENU>(wParam));
        return true;
    case WM_ACTIVATE:
        viewer->OnActivate(LOWORD(wParam) != WA_INACTIVE);
        return true;
    case WM_TIMER:
        viewer->OnTimer(static_cast<UINT>(wParam));
        return true;
    case DB_CEOID_CREATED:
    case DB_CEOID_RECORD_DELETED:
        viewer->OnStoreChange(static_cast<CEOID>(lParam));
        return true;
    case WM_SETTINGCHANGE:
        FollowScreenLayout(dialog, wParam, IDD_VIEWER, IDD_VIEWER_LANDSCAPE);
        return true;
    case WM_DESTROY:
        KillTimer(dialog, kReloadTimer);
        return true;
    }
    return false;
}

LONG_PTR ViewerProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetDialogState(dialog, lParam);
        DialogState<RecordViewer>(dialog)->Init(dialog);
        return TRUE;
    }
    if (HandleFrameMessage(dialog, message, wParam, lParam, u"tarnwickscope.htm#fieldview"))
        return TRUE;
    RecordViewer* viewer = DialogState<RecordViewer>(dialog);
    return viewer && OnMessage(viewer, dialog, message, wParam, lParam);
}

int RunLoop(const RecordViewer& viewer) {
    MSG message = {};
    while (GetMessageW(&message, nullptr, 0, 0)) {
        if (CycleFocus(viewer.dialog, message))
            continue;
        if (TranslateAcceleratorW(viewer.dialog, App().viewerAccelerators, &message))
            continue;
        if (IsDialogMessageW(viewer.dialog, &message))
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}

} // namespace

int RunRecordViewer(RecordViewer* viewer, HWND ownerWindow, const WCHAR* databaseName) {
    CopyText(viewer->databaseName, databaseName);
    const DLGTEMPLATE* dialogTemplate =
        FindDialogTemplate(LandscapeLayout() ? IDD_VIEWER_LANDSCAPE : IDD_VIEWER);
    const HWND dialog = dialogTemplate
                            ? CreateDialogIndirectParamW(AppInstance(), dialogTemplate, ownerWindow,
                                                         ViewerProcedure, reinterpret_cast<LPARAM>(viewer))
                            : nullptr;
    // A viewer that closed itself while it was being made has said why; its loop ends with the code that
    // waits for it.
    if (!dialog && !viewer->quitPosted) {
        SHShowOutOfMemory(ownerWindow, 0);
        return kViewerNotMade;
    }
    EnableWindow(ownerWindow, FALSE);
    ShowWindow(dialog, SW_SHOWNORMAL);
    UpdateWindow(dialog);
    const int code = RunLoop(*viewer);
    if (!viewer->quitPosted) {
        // It was the end of the program, which is for the loop further out.
        DestroyWindow(dialog);
        PostQuitMessage(code);
    }
    EnableWindow(ownerWindow, TRUE);
    SetFocus(ownerWindow);
    ShowWindow(ownerWindow, SW_SHOWNORMAL);
    return code;
}

RecordViewer::~RecordViewer() {
    delete database;
}

void RecordViewer::Close(int code) {
    DestroyWindow(dialog);
    // What closes it may come about inside of another command that closes it too, and a second quit would end
    // the program's own loop.
    if (code == kViewerNotMade || quitPosted)
        return;
    quitPosted = true;
    PostQuitMessage(code);
}

void RecordViewer::Init(HWND dialogWindow) {
    dialog = dialogWindow;
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    InitWindow();
    InitList();
    NameWindow(Control(IDC_VALUE_TEXT), IDS_NAME_VALUE);
    SendDlgItemMessageW(dialog, IDC_VALUE_NUMBER, EM_SETLIMITTEXT, kNumberLimit, 0);

    if (!database)
        database = new (std::nothrow) DbHandle(dialog);
    if (!database) {
        SHShowOutOfMemory(dialog, 0);
        Close(kViewerNotMade);
        return;
    }
    if (!ReadDatabase(0)) {
        // Quirk: it has been said, and is said again as a lack of memory. Only then the viewer closes, for a
        // box does not outlive the quit.
        SHShowOutOfMemory(dialog, 0);
        Close(kViewerCancelled);
        return;
    }
    FillSortMenu();
    UpdateMenus(nullptr);
    active = 1;
    FillPropertyList(kSelectNone);
}

void RecordViewer::InitWindow() {
    SHINITDLGINFO shell = {};
    shell.dwMask = SHIDIM_FLAGS;
    shell.hDlg = dialog;
    shell.dwFlags = SHIDIF_DONEBUTTON | SHIDIF_SIPDOWN | SHIDIF_SIZEDLGFULLSCREEN;
    SHInitDialog(&shell);

    SHMENUBARINFO bar = {};
    bar.cbSize = sizeof(bar);
    bar.hwndParent = dialog;
    bar.nToolBarId = IDR_VIEWER_MENU;
    bar.hInstRes = AppInstance();
    bar.nBmpId = App().highResolution ? IDB_VIEWER_BUTTONS_HIGH : IDB_VIEWER_BUTTONS;
    bar.cBmpImages = kButtonImages;
    SHCreateMenuBar(&bar);
    menuBar = bar.hwndMB;

    WCHAR prefix[kTitleCapacity];
    WCHAR title[kTitleCapacity + kNameCapacity];
    LoadText(IDS_VIEWER_TITLE, prefix);
    wsprintfW(title, u"%s%s\"", prefix, databaseName);
    SetFrameTitle(dialog, title);
    SHSetDocumentTitle(dialog, title);
}

namespace {

bool RunRecordCommand(RecordViewer& viewer, UINT command) {
    switch (command) {
    case IDM_RECORD_FIRST:
    case IDM_RECORD_PREVIOUS:
    case IDM_RECORD_NEXT:
    case IDM_RECORD_LAST:
        viewer.Navigate(command);
        return true;
    case IDM_SORT_FIRST:
    case IDM_SORT_SECOND:
    case IDM_SORT_THIRD:
    case IDM_SORT_FOURTH:
    case IDM_SORT_UNSORTED:
        viewer.SortBy(command);
        return true;
    case IDM_RECORD_DELETE:
        viewer.DeleteRecordCommand();
        return true;
    case IDM_RECORD_RELOAD:
        viewer.ReloadAndKeepPosition();
        return true;
    case IDC_VIEWER_DELETE:
        viewer.DeletePropertyCommand();
        return true;
    case IDC_VIEWER_ADD:
        viewer.AddPropertyCommand();
        return true;
    }
    return false;
}

bool RunEditCommand(RecordViewer& viewer, UINT command, HWND focus) {
    switch (command) {
    case IDM_EDIT_UNDO:
        viewer.UndoCommand(focus);
        return true;
    case IDM_EDIT_COPY:
        viewer.CopyProperty(focus);
        return true;
    case IDM_EDIT_CUT:
        viewer.CutProperty(focus);
        return true;
    case IDM_EDIT_PASTE:
        viewer.PasteProperty(focus);
        return true;
    case IDM_EDIT_SELECT_ALL:
        viewer.SelectAllText(focus);
        return true;
    case IDM_EDIT_FIND:
        viewer.FindCommand();
        return true;
    case IDM_EDIT_FIND_NEXT:
        viewer.FindNextCommand();
        return true;
    }
    return false;
}

// What the user has typed into an editor since its value was shown.
bool NoteTyping(RecordViewer& viewer, UINT control, UINT notification) {
    if (notification != EN_CHANGE || (control != IDC_VALUE_TEXT && control != IDC_VALUE_NUMBER))
        return false;
    (control == IDC_VALUE_TEXT ? viewer.textModified : viewer.numericModified) = 1;
    return true;
}

} // namespace

void RecordViewer::RunCommand(UINT command, UINT notification, HWND focus) {
    switch (command) {
    case IDOK:
        SaveEditedProperty(false);
        Close(kViewerOk);
        return;
    case IDCANCEL:
        Close(kViewerCancelled);
        return;
    }
    if (!NoteTyping(*this, command, notification) && !RunRecordCommand(*this, command))
        RunEditCommand(*this, command, focus);
    UpdateMenus(nullptr);
}
