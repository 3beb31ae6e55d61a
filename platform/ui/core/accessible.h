// What assistive programs take the host's widgets for.
#pragma once

#include <QAccessible>
#include <QWidget>

namespace ui {

// For a widget whose class says nothing about it. May be called again; a window that is asked for an answer
// is modal.
void GiveRole(QWidget* widget, QAccessible::Role role);
// Once, at the start of the window system.
void InstallRoles();
// Tells that the widget has what looks like the focus.
void TellFocus(QObject* widget, int child = -1);

} // namespace ui
