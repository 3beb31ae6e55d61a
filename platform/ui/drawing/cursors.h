// Cursors and icons as the host shows them.
#pragma once

#include <QIcon>

#include "platform/window.h"

namespace ui {

// Null icon for null.
QIcon HostIcon(HICON icon);
// The cursor last set may be older than the window system.
void ShowCursorOnHost();

} // namespace ui
