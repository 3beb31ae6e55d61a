#include "app/uiservices.h"

#include "app/application.h"
#include "platform/files.h"
#include "platform/pickers.h"
#include "platform/process.h"
#include "platform/resources.h"
#include "platform/text.h"
#include "resources/resource.h"

int LoadText(UINT id, WCHAR* buffer, int capacity) {
    if (capacity > 0)
        buffer[0] = 0;
    return LoadStringW(AppInstance(), id, buffer, capacity);
}

int MessageText(HWND owner, const WCHAR* text, UINT style) {
    WCHAR caption[kCaptionCapacity];
    LoadText(IDS_PRODUCT, caption);
    return MessageBoxW(owner ? owner : App().mainWindow, text, caption, style);
}

void NameWindow(HWND window, const WCHAR* name) {
    SendMessageW(window, WM_NAMEWINDOW, 0, reinterpret_cast<LPARAM>(name));
}

void NameWindow(HWND window, UINT stringId) {
    WCHAR name[kCaptionCapacity];
    LoadText(stringId, name);
    NameWindow(window, name);
}

int MessageFromString(HWND owner, UINT id, UINT style) {
    WCHAR text[kMessageCapacity];
    LoadText(id, text);
    return MessageText(owner, text, style);
}

int MessageFromString(HWND owner, UINT id, const WCHAR* argument, UINT style) {
    WCHAR format[kMessageCapacity];
    WCHAR text[kMessageCapacity + MAX_PATH];
    LoadText(id, format);
    wsprintfW(text, format, argument);
    return MessageText(owner, text, style);
}

void OpenHelp(const WCHAR* anchor) {
    CreateProcessW(App().helpViewer, anchor);
}

namespace {

// The answer of the user; Yes also when there is nothing to replace or nobody is to be asked, 0 when nobody
// could be asked.
int AskToReplace(HWND owner, const WCHAR* path) {
    const HANDLE existing =
        CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, 0);
    if (existing == INVALID_HANDLE_VALUE)
        return IDYES;
    CloseHandle(existing);
    // Nobody is there to answer when the program runs by itself: a backup of every night replaces last
    // night's.
    return RunsInteractively() ? MessageFromString(owner, IDS_CONFIRM_OVERWRITE_FILE, path, kQuestionBox)
                               : IDYES;
}

} // namespace

HANDLE CreateFileForWriting(HWND owner, const WCHAR* path, WCHAR* chosenPath, bool* refused) {
    for (;;) {
        const int answer = AskToReplace(owner, path);
        if (refused)
            *refused = answer == IDNO;
        if (answer != IDYES)
            return INVALID_HANDLE_VALUE;
        const HANDLE file = CreateFileW(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, 0);
        const bool created = file != INVALID_HANDLE_VALUE;
        // Pickers may hand out a path from the root with its separator doubled.
        if (!created && path[0] == u'\\' && path[1] == u'\\') {
            ++path;
            continue;
        }
        // Quirk: the text speaks of a backup file whatever was to be created; there is no other.
        if (!created && MayShowFailure())
            MessageFromString(owner, IDS_COULD_NOT_CREATE_FILE, path, kFailureBox);
        if (chosenPath && chosenPath != path)
            CopyText(chosenPath, MAX_PATH, path);
        return file;
    }
}

bool PickFile(HWND owner, WCHAR* path, bool open, UINT filterId, const WCHAR* extension) {
    WCHAR filter[MAX_PATH] = {};
    LoadText(filterId, filter);
    for (WCHAR* character = filter; *character; ++character)
        if (*character == u'|')
            *character = 0;

    // Quirk: the proposed name is the bare extension, whatever the caller's buffer held.
    CopyText(path, MAX_PATH, extension + 1);

    OPENFILENAMEW info = {};
    info.lStructSize = sizeof(info);
    info.hwndOwner = owner;
    info.hInstance = AppInstance();
    info.lpstrFilter = filter;
    info.lpstrFile = path;
    info.nMaxFile = MAX_PATH;
    info.lpstrDefExt = extension;
    if (open) {
        info.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST;
        return GetOpenFileNameW(&info);
    }
    info.Flags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT;
    return GetSaveFileNameW(&info);
}

bool LandscapeLayout() {
    return GetSystemMetrics(SM_CYSCREEN) < GetSystemMetrics(SM_CXSCREEN);
}

const DLGTEMPLATE* FindDialogTemplate(UINT id) {
    const HRSRC resource = FindResourceW(AppInstance(), MAKEINTRESOURCEW(static_cast<WORD>(id)), RT_DIALOG);
    return resource ? static_cast<const DLGTEMPLATE*>(LoadResource(AppInstance(), resource)) : nullptr;
}

LONG_PTR RunDialog(UINT templateId, HWND owner, DLGPROC procedure, LPARAM param) {
    const DLGTEMPLATE* dialogTemplate = FindDialogTemplate(templateId);
    return dialogTemplate ? DialogBoxIndirectParamW(AppInstance(), dialogTemplate, owner, procedure, param)
                          : -1;
}

LONG_PTR RunDialog(UINT portraitId, UINT landscapeId, HWND owner, DLGPROC procedure, LPARAM param) {
    return RunDialog(LandscapeLayout() ? landscapeId : portraitId, owner, procedure, param);
}

void FollowScreenLayout(HWND dialog, WPARAM what, UINT portraitId, UINT landscapeId) {
    if (what == kOrientationChanged)
        RelayoutDialog(dialog, FindDialogTemplate(LandscapeLayout() ? landscapeId : portraitId));
}

WaitCursor::WaitCursor() {
    SetCursor(LoadCursorW(nullptr, IDC_WAIT));
}
WaitCursor::~WaitCursor() {
    SetCursor(nullptr);
}
