#include "platform/ui/core/display.h"

#include <QGuiApplication>
#include <QStringList>
#include <optional>

#include "platform/ui/core/windowobject.h"
#include "platform/ui/core/windowsystem.h"

namespace ui {

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
    return ShowsNothing(QGuiApplication::platformName());
}

void SetNoDisplay(bool noDisplay) {
    Settled() = noDisplay;
}

bool ShowsNothing(const QString& platform) {
    static const QStringList names{"offscreen", "minimal", "minimalegl"};
    return names.contains(platform);
}

} // namespace ui
