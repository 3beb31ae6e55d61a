// The program's entry: one unattended job, or the main window and its message loop.
#include "app/application.h"
#include "app/start/commandline.h"
#include "app/start/mainwindow.h"
#include "platform/process.h"
#include "platform/shell.h"
#include "resources/resource.h"

namespace {

bool ActivateRunningInstance() {
    const HWND running = FindWindowW(kMainWindowClass, nullptr);
    if (!running)
        return false;
    SetForegroundWindow(running);
    ShowWindow(running, SW_SHOWNORMAL);
    return true;
}

int RunMessageLoop() {
    const HACCEL accelerators = LoadAcceleratorsW(AppInstance(), MAKEINTRESOURCEW(IDR_MAIN_ACCELERATORS));
    App().viewerAccelerators = LoadAcceleratorsW(AppInstance(), MAKEINTRESOURCEW(IDR_VIEWER_ACCELERATORS));
    MSG message = {};
    while (GetMessageW(&message, nullptr, 0, 0)) {
        if (TranslateAcceleratorW(App().mainWindow, accelerators, &message))
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}

} // namespace

int WinMain(HINSTANCE instance, HINSTANCE previous, WCHAR* commandLine, int) {
    App().instance = instance;
    if (commandLine[0])
        return RunCommandLine(commandLine);
    if (ActivateRunningInstance())
        return 0;
    if (!previous && !RegisterMainWindowClass())
        return 0;
    if (!CreateMainWindow())
        return 0;
    SHInitMainWindow(App().mainWindow);
    DragAcceptFiles(App().mainWindow, TRUE);
    return RunMessageLoop();
}
