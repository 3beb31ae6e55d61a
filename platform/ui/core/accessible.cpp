#include "platform/ui/core/accessible.h"

#include <QAbstractButton>

namespace ui {

namespace {

const char* const kRole = "accessibleRole";

class RoleInterface : public PopupOwner {
public:
    explicit RoleInterface(QWidget* widget) : PopupOwner(widget) {}

    QAccessible::Role role() const override {
        return static_cast<QAccessible::Role>(widget()->property(kRole).toInt());
    }
    QAccessible::State state() const override {
        QAccessible::State state = PopupOwner::state();
        state.modal = role() == QAccessible::Dialog || role() == QAccessible::AlertMessage;
        state.checkable = Button() && Button()->isCheckable();
        state.checked = Button() && Button()->isChecked();
        return state;
    }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Accelerator && Button()
                   ? Button()->shortcut().toString(QKeySequence::NativeText)
                   : PopupOwner::text(kind);
    }
    QStringList actionNames() const override {
        return Button() ? QStringList(pressAction()) : PopupOwner::actionNames();
    }
    void doAction(const QString& action) override {
        if (Button() && action == pressAction())
            Button()->click();
        else
            PopupOwner::doAction(action);
    }

private:
    QAbstractButton* Button() const { return qobject_cast<QAbstractButton*>(widget()); }
};

QAccessibleInterface* MakeInterface(const QString&, QObject* object) {
    auto* const widget = qobject_cast<QWidget*>(object);
    return widget && widget->property(kRole).isValid() ? new RoleInterface(widget) : nullptr;
}

} // namespace

QList<QWidget*> PopupOwner::Popups() const {
    QList<QWidget*> popups;
    for (QWidget* child : widget()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        if (child->windowType() == Qt::Popup && child->isVisible())
            popups.append(child);
    return popups;
}

int PopupOwner::childCount() const {
    return QAccessibleWidget::childCount() + static_cast<int>(Popups().size());
}

QAccessibleInterface* PopupOwner::child(int index) const {
    const int first = QAccessibleWidget::childCount();
    return index < first ? QAccessibleWidget::child(index)
                         : QAccessible::queryAccessibleInterface(Popups().value(index - first));
}

int PopupOwner::indexOfChild(const QAccessibleInterface* child) const {
    const auto popup = child ? Popups().indexOf(qobject_cast<QWidget*>(child->object())) : -1;
    return popup < 0 ? QAccessibleWidget::indexOfChild(child)
                     : QAccessibleWidget::childCount() + static_cast<int>(popup);
}

void GiveRole(QWidget* widget, QAccessible::Role role) {
    widget->setProperty(kRole, static_cast<int>(role));
}

void InstallRoles() {
    QAccessible::installFactory(MakeInterface);
}

void TellFocus(QWidget* widget, int child) {
    QAccessibleEvent event(widget, QAccessible::Focus);
    event.setChild(child);
    QAccessible::updateAccessibility(&event);
}

} // namespace ui
