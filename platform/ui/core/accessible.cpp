#include "platform/ui/core/accessible.h"

#include <QAccessibleWidget>

namespace ui {

namespace {

const char* const kRole = "accessibleRole";

class RoleInterface : public QAccessibleWidget {
public:
    explicit RoleInterface(QWidget* widget) : QAccessibleWidget(widget) {}

    QAccessible::Role role() const override {
        return static_cast<QAccessible::Role>(widget()->property(kRole).toInt());
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.modal = role() == QAccessible::Dialog || role() == QAccessible::AlertMessage;
        return state;
    }
};

QAccessibleInterface* MakeInterface(const QString&, QObject* object) {
    auto* const widget = qobject_cast<QWidget*>(object);
    return widget && widget->property(kRole).isValid() ? new RoleInterface(widget) : nullptr;
}

} // namespace

void GiveRole(QWidget* widget, QAccessible::Role role) {
    widget->setProperty(kRole, static_cast<int>(role));
}

void InstallRoles() {
    QAccessible::installFactory(MakeInterface);
}

void TellFocus(QObject* widget, int child) {
    QAccessibleEvent event(widget, QAccessible::Focus);
    event.setChild(child);
    QAccessible::updateAccessibility(&event);
}

} // namespace ui
