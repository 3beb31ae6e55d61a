// The host's popups that show menus, and the context menu that runs until it closes.
#include <QActionGroup>
#include <QApplication>
#include <QPointer>
#include <QProxyStyle>
#include <QStyleOption>

#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/core/display.h"
#include "platform/ui/core/testhooks.h"
#include "platform/ui/core/windowobject.h"
#include "platform/ui/drawing/gdiobjects.h"
#include "platform/ui/menus/menus.h"
#include "platform/ui/screen/screen.h"

namespace ui {

namespace {

// Items that a stylus can hit.
class PopupStyle : public QProxyStyle {
public:
    PopupStyle() : QProxyStyle(QStringLiteral("fusion")) {}
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
        return metric == PM_MenuVMargin ? Scaled(4) : QProxyStyle::pixelMetric(metric, option, widget);
    }
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override {
        const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (type != CT_MenuItem || !item || item->menuItemType == QStyleOptionMenuItem::Separator)
            return size;
        return QSize(size.width(), std::max(size.height(), Scaled(28)));
    }
};

void FillPopup(QMenu* popup, HMENU menu, HWND owner) {
    popup->clear();
    const MenuObject* const object = LiveMenu(menu);
    if (!object)
        return;
    int position = 0;
    for (const MenuItem& item : object->items) {
        if (item.separator) {
            popup->addSeparator();
        } else if (item.popup) {
            QMenu* const submenu =
                MakePopup(item.popup.get(), owner, position, popup); // clearing and deleting reach it
            submenu->setTitle(item.text);
            popup->addMenu(submenu)->setEnabled(item.enabled);
        } else {
            QAction* const action = popup->addAction(item.text.section(u'\t', 0, 0));
            // Shown, and told to assistive programs. It never acts here, for the popup takes the keys.
            action->setShortcut(QKeySequence(item.text.section(u'\t', 1)));
            action->setShortcutVisibleInContextMenu(true);
            action->setEnabled(item.enabled);
            // Only the marked item is checkable, in a group of its own: the others show no empty circle, and
            // another marked item of the same popup stays marked.
            if (item.radioChecked) {
                (new QActionGroup(action))->addAction(action);
                action->setCheckable(true);
                action->setChecked(true);
            }
            QObject::connect(action, &QAction::triggered, popup,
                             [owner, id = item.id] { PostMessageW(owner, WM_COMMAND, id, 0); });
        }
        ++position;
    }
}

} // namespace

QMenu* MakePopup(HMENU menu, HWND owner, int position, QWidget* parent) {
    auto* const popup = new QMenu(parent);
    static auto* const style = new PopupStyle;
    popup->setStyle(style);
    popup->setFont(FontOf(nullptr));
    popup->setAccessibleName(WithoutMnemonic(TextOfPopup(menu)));
    FillPopup(popup, menu, owner);
    QObject::connect(popup, &QMenu::aboutToShow, popup, [popup, menu, owner, position] {
        if (!LiveMenu(menu))
            return;
        SendMessageW(owner, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), position);
        FillPopup(popup, menu, owner);
    });
    return popup;
}

} // namespace ui

using namespace ui;

BOOL TrackPopupMenuEx(HMENU menu, UINT flags, int x, int y, HWND owner, const void*) {
    EndLabelEdit();
    const WindowObject* const window = LiveWindow(owner);
    if (!window || !window->widget || !LiveMenu(menu) || NoDisplay())
        return FALSE;
    POINT corner = {x, y};
    ScreenToClient(owner, &corner);
    QPoint point = window->widget->mapToGlobal(QPoint(corner.x, corner.y));
    const QPointer<QMenu> popup = MakePopup(menu, owner, 0, window->widget);
    bool done = false;
    const auto end = [&done] {
        done = true;
        PostMessageW(nullptr, WM_NULL, 0, 0);
    };
    const auto hidden = QObject::connect(popup, &QMenu::aboutToHide, qApp, end);
    // With the owner: nobody is left to choose for.
    const auto destroyed = QObject::connect(popup, &QObject::destroyed, qApp, end);
    if (flags & TPM_RIGHTALIGN) {
        const int leftEdge = ScreenArea()->mapToGlobal(QPoint(0, 0)).x();
        point.setX(std::max(leftEdge, point.x() - popup->sizeHint().width()));
    }
    popup->popup(point);
    if (TestHooks().menu)
        TestHooks().menu(popup);
    if (popup->isVisible())
        RunModal(done);
    QObject::disconnect(hidden);
    QObject::disconnect(destroyed);
    if (popup)
        popup->deleteLater(); // an event of it may be on the stack
    return TRUE;
}
