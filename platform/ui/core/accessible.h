// What assistive programs take the host's widgets for.
#pragma once

#include <QAccessibleWidget>
#include <QWidget>

namespace ui {

// A widget whose open popups are among its children; the host leaves them out.
class PopupOwner : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;
    int childCount() const override;
    QAccessibleInterface* child(int index) const override;
    int indexOfChild(const QAccessibleInterface* child) const override;

private:
    QList<QWidget*> Popups() const;
};

// For a widget whose class says nothing about it. May be called again; a window that is asked for an answer
// is modal.
void GiveRole(QWidget* widget, QAccessible::Role role);
// Once, at the start of the window system.
void InstallRoles();
// Tells assistive programs that the focus is at the widget, or at its child of that number.
void TellFocus(QWidget* widget, int child = -1);

} // namespace ui
