// Shared services of the user interface: texts, message boxes, help, file creation, pickers, dialogs by
// number.
#pragma once

#include <cstddef>

#include "platform/dialog.h"
#include "platform/types.h"

// Styles of message boxes in use.
constexpr UINT kFailureBox = MB_OK | MB_ICONEXCLAMATION;
constexpr UINT kStopBox = MB_OK | MB_ICONHAND;
constexpr UINT kInformationBox = MB_OK | MB_ICONASTERISK;
constexpr UINT kQuestionBox = MB_YESNO | MB_ICONQUESTION;
constexpr UINT kWarningQuestionBox = MB_YESNO | MB_ICONEXCLAMATION;

constexpr int kMessageCapacity = 512; // characters of a message box's text
constexpr int kCaptionCapacity = 20;
constexpr int kTitleCapacity = 256; // of a dialog or a column

// Loads a string; an absent one gives an empty text. Returns the characters loaded.
int LoadText(UINT id, WCHAR* buffer, int capacity);
template <std::size_t N>
int LoadText(UINT id, WCHAR (&buffer)[N]) {
    return LoadText(id, buffer, static_cast<int>(N));
}

// What assistive programs call a window that no text on the screen names.
void NameWindow(HWND window, UINT stringId);
void NameWindow(HWND window, const WCHAR* name);

// Message boxes with the product's name as caption; the owner null means the main window. They return the
// button pressed.
int MessageFromString(HWND owner, UINT id, UINT style);
int MessageFromString(HWND owner, UINT id, const WCHAR* argument, UINT style); // the string is a format
int MessageText(HWND owner, const WCHAR* text, UINT style);

// Starts the help viewer at "page#anchor"; does not wait, and a failure shows nothing.
void OpenHelp(const WCHAR* anchor);

// Creates a file anew, asking first when it exists (not asked when the program does not run interactively: it
// is replaced). The invalid handle on failure, which is reported here, and on anything but Yes; `refused`,
// unless null, tells whether a user said No: the file then stays, as it does when nobody could be asked.
// `chosenPath` (room for MAX_PATH, or null) receives the path that was used. No sharing.
HANDLE CreateFileForWriting(HWND owner, const WCHAR* path, WCHAR* chosenPath, bool* refused);

// Lets the user pick a file to open or save into `path` (room for MAX_PATH). What the buffer held is replaced
// by the extension from its second character on, also when the user cancels.
bool PickFile(HWND owner, WCHAR* path, bool open, UINT filterId, const WCHAR* extension);

// The screen is wider than tall.
bool LandscapeLayout();

// Runs a modal dialog; returns its result, -1 when it cannot be made. The second form chooses by the screen's
// layout.
LONG_PTR RunDialog(UINT templateId, HWND owner, DLGPROC procedure, LPARAM param);
LONG_PTR RunDialog(UINT portraitId, UINT landscapeId, HWND owner, DLGPROC procedure, LPARAM param);
// For WM_SETTINGCHANGE in a dialog of two layouts: takes the other one when the screen has been turned.
constexpr WPARAM kOrientationChanged = 0x3002;
void FollowScreenLayout(HWND dialog, WPARAM what, UINT portraitId, UINT landscapeId);
// Null when the resource is absent.
const DLGTEMPLATE* FindDialogTemplate(UINT id);

// Shows the wait cursor while it lives.
class WaitCursor {
public:
    WaitCursor();
    ~WaitCursor();
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};
