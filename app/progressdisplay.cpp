#include "app/progressdisplay.h"

#include <new>

#include "app/application.h"

bool ProgressDisplay::Begin(HWND owner, UINT confirmString, UINT titleString) {
    constexpr int kInitialRange = 100;
    if (App().settings && App().settings->noProgress) {
        waitCursor.reset(new (std::nothrow) WaitCursor);
        return true;
    }
    dialog.reset(new (std::nothrow) ProgressDialog(confirmString, titleString, kInitialRange));
    if (dialog && !dialog->Create(owner))
        dialog.reset();
    return dialog != nullptr;
}

void ProgressDisplay::End() {
    dialog.reset();
    waitCursor.reset();
}
