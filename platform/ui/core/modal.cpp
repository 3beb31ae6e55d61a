// The message loop of everything that waits for the user: dialogs, message boxes, pickers, tracked menus.
#include <vector>

#include "platform/ui/core/testhooks.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/core/windowsystem.h"

namespace ui {

void RunModal(const bool& done) {
    std::vector<int> quits; // in their order: each is meant for one of the loops around this one
    MSG message;
    while (!done) {
        if (!GetMessageW(&message, nullptr, 0, 0)) {
            quits.push_back(static_cast<int>(message.wParam));
            continue;
        }
        const HWND top = TopLevelOf(message.hwnd);
        if (top && top->dialog && kHigherFloors.takeDialogKey(top, &message))
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    for (const int exitCode : quits)
        PostQuitMessage(exitCode);
}

void EndDialogLoop(DialogData& data) {
    data.ended = true;
    PostMessageW(nullptr, WM_NULL, 0, 0); // the loop may be waiting for something to happen
}

ModalHooks& TestHooks() {
    static auto* hooks = new ModalHooks;
    return *hooks;
}

} // namespace ui
