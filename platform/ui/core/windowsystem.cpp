#include "platform/ui/core/windowsystem.h"

namespace ui {

namespace {

bool started = false;

} // namespace

void EnsureWindowSystem() {
    if (started)
        return;
    started = true; // before it has, for what is called meanwhile
    kHigherFloors.start();
}

bool WindowSystemStarted() {
    return started;
}

} // namespace ui
