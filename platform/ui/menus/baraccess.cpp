// The bar's buttons as assistive programs see them: those of text are menu items that open a menu.
#include <QKeySequence>

#include "platform/ui/core/accessible.h"
#include "platform/ui/menus/menubarwidget.h"

namespace ui {

namespace {

class BarItem : public PopupOwner {
public:
    explicit BarItem(BarButton* button) : PopupOwner(button), button(button) {}

    QAccessible::Role role() const override {
        return button->IsPopup() ? QAccessible::MenuItem : QAccessible::PushButton;
    }
    QAccessible::State state() const override {
        QAccessible::State state = PopupOwner::state();
        state.hasPopup = button->IsPopup();
        state.expandable = button->IsPopup();
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
    QStringList actionNames() const override { return {Action()}; }
    void doAction(const QString& action) override {
        if (action == Action())
            static_cast<MenuBarWidget*>(button->parentWidget())->Choose(button);
    }

private:
    QString Action() const { return button->IsPopup() ? showMenuAction() : pressAction(); }

    BarButton* const button;
};

QAccessibleInterface* MakeBarItem(const QString&, QObject* object) {
    auto* const button = qobject_cast<BarButton*>(object);
    return button ? new BarItem(button) : nullptr;
}

} // namespace

void InstallBarRoles() {
    QAccessible::installFactory(MakeBarItem);
}

} // namespace ui
