// Which window is above which. An owned window is always above its owner.
#include <algorithm>

#include "platform/ui/core/windowcore.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

bool Shows(HWND window) {
    return window->style & WS_VISIBLE && !window->destroying;
}

bool IsOwnedBy(HWND window, HWND owner) {
    for (const WindowObject* above = LiveWindow(window->owner); above; above = LiveWindow(above->owner))
        if (above == owner)
            return true;
    return false;
}

} // namespace

void RaiseFamily(HWND window) {
    std::vector<HWND>& windows = TopLevelWindows();
    std::erase(windows, window);
    const auto owned = std::stable_partition(windows.begin(), windows.end(),
                                             [window](HWND other) { return !IsOwnedBy(other, window); });
    auto raised = windows.insert(owned, window);
    for (; raised != windows.end(); ++raised)
        if (QWidget* frame = (*raised)->topLevel->frame)
            frame->raise();
}

HWND FrontOfFamily(HWND window) {
    const std::vector<HWND>& windows = TopLevelWindows();
    const auto front = std::find_if(windows.rbegin(), windows.rend(), [window](HWND other) {
        return Shows(other) && IsOwnedBy(other, window);
    });
    return front == windows.rend() ? window : *front;
}

void HideCoveredFrames() {
    bool covered = false;
    const std::vector<HWND>& windows = TopLevelWindows();
    for (auto window = windows.rbegin(); window != windows.rend(); ++window) {
        const bool shows = Shows(*window);
        QWidget* frame = (*window)->topLevel->frame;
        if (frame)
            frame->setVisible(shows && !covered);
        covered = covered || (shows && (*window)->topLevel->fullScreen);
    }
}

} // namespace ui
