// The window system's start, and what the lower floors of it ask of the higher ones.
#pragma once

#include "platform/window.h"

namespace ui {

// Starts the host's window system at first use; every window function comes through here.
void EnsureWindowSystem();
bool WindowSystemStarted();

// The lower floors know the higher ones by these functions only. The one table is in start/windowsystem.cpp.
struct HigherFloors {
    void (*start)();                                // the host's window system, once
    void (*agreeOnFocus)();                         // puts the host's focus back to where ours is
    void (*watchStore)();                           // polls for changes as long as a window wants to know
    bool (*takeDialogKey)(HWND dialog, MSG* input); // as IsDialogMessageW
    // The edit of a row's label that is going on, if any, ends with its new text, as a tap beside it makes
    // it.
    void (*endLabelEdit)();
};
extern const HigherFloors kHigherFloors;

} // namespace ui
