#include "platform/base/display.h"

#include <QGuiApplication>
#include <QStringList>
#include <optional>

#include "platform/ui/windowobject.h"

namespace {

std::optional<bool>& Settled() {
    static std::optional<bool> settled;
    return settled;
}

} // namespace

bool NoDisplay() {
    if (Settled())
        return *Settled();
    EnsureWindowSystem();
    static const QStringList showNothing{"offscreen", "minimal", "minimalegl"};
    return showNothing.contains(QGuiApplication::platformName());
}

void SetNoDisplay(bool noDisplay) {
    Settled() = noDisplay;
}
