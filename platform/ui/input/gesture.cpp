// Tap and hold.
#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include "platform/shell.h"
#include "platform/ui/core/messagequeue.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/screen/screen.h"

namespace ui {

namespace {

constexpr int kHoldTime = 500; // milliseconds
constexpr int kWakeInterval = 50;
constexpr int kStillness = 4; // pixels at 96 to the inch that a stylus may wander while it is held

bool MovedAway(const MSG& message, const SHRGINFO& info) {
    const int far = Scaled(kStillness);
    return message.hwnd != info.hwndClient || std::abs(SignedLoWord(message.lParam) - info.ptDown.x) > far ||
           std::abs(SignedHiWord(message.lParam) - info.ptDown.y) > far;
}

// The stylus was lifted or moved, or something else was pressed. The message stays in the queue.
bool HoldBroken(const SHRGINFO& info) {
    if (FindQueued(WM_LBUTTONDOWN, WM_RBUTTONUP) || FindQueued(WM_KEYDOWN, WM_KEYDOWN))
        return true;
    const MSG* moved = FindQueued(WM_MOUSEMOVE, WM_MOUSEMOVE);
    return moved && MovedAway(*moved, info);
}

void DispatchTimers() {
    MSG message;
    while (PeekMessageW(&message, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        DispatchMessageW(&message);
    }
}

} // namespace

} // namespace ui

using namespace ui;

DWORD SHRecognizeGesture(SHRGINFO* info) {
    const MSG* current = CurrentMessage();
    if (!info || !LiveWindow(info->hwndClient) || !current)
        return 0;
    if (current->message == WM_RBUTTONDOWN)
        return GN_CONTEXTMENU;
    if (current->message != WM_LBUTTONDOWN || !current->input)
        return 0; // no stylus behind it that could be held
    // Wakes the wait below when there is no input. A single timer would not do: the host may fire it too
    // early.
    QTimer wakeUp;
    wakeUp.start(kWakeInterval);
    QElapsedTimer held;
    held.start();
    while (held.elapsed() < kHoldTime) {
        if (HoldBroken(*info) || FindQueued(WM_QUIT, WM_QUIT))
            return 0;
        PumpHost(true);
        DispatchTimers();
        if (!LiveWindow(info->hwndClient))
            return 0;
    }
    return HoldBroken(*info) ? 0 : GN_CONTEXTMENU;
}
