// The one global object through which every part of the program reaches the main window, the settings and
// shared images.
#pragma once

#include <vector>

#include "app/settings.h"
#include "platform/window.h"

inline const WCHAR* const kMainWindowClass = u"MainDbDeleteClass";

class Application {
public:
    Application() = default;
    virtual ~Application() = default;

    HWND mainWindow = nullptr;
    HINSTANCE instance = nullptr;
    BYTE cancelRequested = 0;       // Cancel was tapped in the infrared transfer dialog
    HWND listView = nullptr;        // null again once the window is gone, as is the menu bar
    WNDPROC listViewProc = nullptr; // the list view's own procedure, below ours
    Settings* settings = nullptr;   // owned; null before the list is made and after the window is gone
    HIMAGELIST headerImages = nullptr;
    HWND menuBar = nullptr;
    HIMAGELIST largeIcons = nullptr;
    HIMAGELIST smallIcons = nullptr;
    const WCHAR* helpViewer = u"PegHelp.exe";
    LONG menuBarHeight = 0; // pixels; the list begins below
    HGDIOBJ spareObject = nullptr;
    BYTE idle = 1; // 0 while a command runs: the window does not close then
    HACCEL viewerAccelerators = nullptr;
    BYTE highResolution = 0;         // more than 150 pixels an inch
    HBITMAP frameBitmap = nullptr;   // the picture of the dialogs' help button
    std::vector<HDROP> waitingFiles; // owned; to be opened in turn when the command that runs has ended
};

Application& App();
HINSTANCE AppInstance();
// Failures are to be kept quiet: a run from the command line with switch I.
bool RunsUnattended();
// Whether a failure that just happened may be shown; one that is kept quiet is counted, for whoever asks the
// process how it went.
bool MayShowFailure();
// Questions and dialogs may be shown.
bool RunsInteractively();
