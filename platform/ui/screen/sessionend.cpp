// The end of the user's session, and the host's request to end: what the program would save when its window
// is closed is saved first.
#include <QGuiApplication>
#include <QSocketNotifier>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

#include "platform/ui/core/windowcore.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

constexpr int kEndingSignals[] = {SIGTERM, SIGHUP, SIGINT};

HWND mainWindow = nullptr;
int caught[2] = {-1, -1}; // a pipe: the handler puts the signal's number in, the message loop takes it out

void Save() {
    RememberDisplayPlace();
    if (LiveWindow(mainWindow))
        SendMessageW(mainWindow, WM_ENDSESSION, TRUE, 0);
}

void OnSignal(int number) {
    const auto byte = static_cast<char>(number);
    [[maybe_unused]] const ssize_t written = write(caught[1], &byte, 1);
}

// Ends as the signal would have ended it: no question can hold it up.
void EndBySignal() {
    char number = 0;
    if (read(caught[0], &number, 1) != 1)
        return;
    Save();
    RemoveDraggedFiles();
    std::signal(number, SIG_DFL);
    std::raise(number);
}

// A second signal ends a process that is too busy to answer the first one.
void CatchSignals() {
    if (pipe2(caught, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto* notifier = new QSocketNotifier(caught[0], QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, EndBySignal);
    struct sigaction action {};
    action.sa_handler = OnSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    for (const int number : kEndingSignals)
        sigaction(number, &action, nullptr);
}

} // namespace

void SaveAtSessionEnd(HWND window) {
    mainWindow = window;
    if (caught[0] >= 0)
        return;
    CatchSignals();
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, Save);
}

} // namespace ui
