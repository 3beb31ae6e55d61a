// The bar's popups as assistive programs see them: menu items that open a menu.
#include <QKeySequence>

#include "platform/ui/core/accessible.h"
#include "platform/ui/menus/menubarwidget.h"

namespace ui {

namespace {

class PopupItem : public PopupOwner {
public:
    explicit PopupItem(BarButton* button) : PopupOwner(button, QAccessible::MenuItem), button(button) {}

    QAccessible::State state() const override {
        QAccessible::State state = PopupOwner::state();
        state.hasPopup = true;
        state.expandable = true;
        state.expanded = button->open;
        state.focusable = true;
        state.focused = button->marked;
        return state;
    }
    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Accelerator)
            return QKeySequence::mnemonic(button->text()).toString(QKeySequence::NativeText);
        return PopupOwner::text(kind);
    }
    QStringList actionNames() const override { return {QAccessibleActionInterface::showMenuAction()}; }
    void doAction(const QString& action) override {
        if (action == QAccessibleActionInterface::showMenuAction())
            Q_EMIT button->pressed();
    }

private:
    BarButton* const button;
};

QAccessibleInterface* MakePopupItem(const QString&, QObject* object) {
    auto* const button = qobject_cast<BarButton*>(object);
    return button && button->IsPopup() ? new PopupItem(button) : nullptr;
}

} // namespace

void InstallBarRoles() {
    QAccessible::installFactory(MakePopupItem);
}

} // namespace ui
