// What shows that a long operation goes on: a progress dialog, or with the settings' noProgress the wait
// cursor that stands for it.
#pragma once

#include <memory>

#include "app/progressdialog.h"
#include "app/uiservices.h"

class ProgressDisplay {
public:
    // False when there should be a dialog and it could not be made.
    bool Begin(HWND owner, UINT confirmString, UINT titleString);
    void End();
    // The window that owns message boxes: the dialog while there is one.
    HWND MessageOwner(HWND owner) const { return dialog ? dialog->window : owner; }

    std::unique_ptr<ProgressDialog> dialog; // null with noProgress

private:
    std::unique_ptr<WaitCursor> waitCursor;
};
