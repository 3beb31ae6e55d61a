#include "platform/ui/input/inputtranslation.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QWheelEvent>

#include "platform/base/outofmemory.h"
#include "platform/ui/core/keyboard.h"
#include "platform/ui/core/messagequeue.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

constexpr WPARAM kLeftButtonHeld = 0x01;
constexpr WPARAM kRightButtonHeld = 0x02;
constexpr WPARAM kShiftHeld = 0x04;
constexpr WPARAM kControlHeld = 0x08;

LPARAM PackPoint(const QPoint& point) {
    return static_cast<LPARAM>(MAKELONG(static_cast<WORD>(point.x()), static_cast<WORD>(point.y())));
}

bool IsMouse(QEvent::Type type) {
    return type == QEvent::MouseButtonPress || type == QEvent::MouseButtonRelease ||
           type == QEvent::MouseButtonDblClick || type == QEvent::MouseMove;
}

bool IsKey(QEvent::Type type) {
    return type == QEvent::KeyPress || type == QEvent::KeyRelease;
}

// Some parts of a control handle their own input: an editor in a list's row, and what TakeOwnInput marks.
bool TakesOwnInput(const QWidget* widget, const QWidget* control) {
    for (; widget && widget != control; widget = widget->parentWidget()) {
        const QWidget* parent = widget->parentWidget();
        const auto* view = parent ? qobject_cast<const QAbstractItemView*>(parent->parentWidget()) : nullptr;
        if (widget->property("ownInput").toBool() || (view && view->viewport() == parent))
            return true;
    }
    return widget && widget->property("ownInput").toBool();
}

// The window that gets the input meant for the widget: null when it is none of ours.
HWND InputWindow(QWidget*& widget, bool key) {
    if (widget->window() != ScreenArea()->window() || QApplication::activePopupWidget())
        return nullptr;
    HWND window = WindowOfWidget(widget);
    if (!window && key) {
        // No widget of the host has the focus: the platform's own focus decides.
        window = GetFocus() ? GetFocus() : ActiveTopLevel();
        if (LiveWindow(window) && window->widget)
            widget = window->widget;
    }
    const WindowObject* const object = LiveWindow(window);
    return object && !TakesOwnInput(widget, object->widget) ? window : nullptr;
}

bool Blocked(HWND window) {
    for (const WindowObject* object = LiveWindow(window); object; object = LiveWindow(object->parent))
        if (object->style & WS_DISABLED)
            return true;
    return false;
}

UINT MouseMessage(const QMouseEvent& event) {
    const bool right = event.button() == Qt::RightButton;
    switch (event.type()) {
    case QEvent::MouseMove:
        return WM_MOUSEMOVE;
    case QEvent::MouseButtonRelease:
        return right ? WM_RBUTTONUP : WM_LBUTTONUP;
    case QEvent::MouseButtonDblClick:
        return right ? WM_RBUTTONDOWN : WM_LBUTTONDBLCLK;
    default:
        return right ? WM_RBUTTONDOWN : WM_LBUTTONDOWN;
    }
}

UINT KeyMessage(const QKeyEvent& event) {
    const bool down = event.type() == QEvent::KeyPress;
    const bool alt = event.modifiers() & Qt::AltModifier || event.key() == Qt::Key_Alt;
    const bool control =
        event.modifiers() & Qt::ControlModifier; // with Alt: the third level of some keyboards
    if ((alt && !control) || event.key() == Qt::Key_F10)
        return down ? WM_SYSKEYDOWN : WM_SYSKEYUP;
    return down ? WM_KEYDOWN : WM_KEYUP;
}

WPARAM HeldFlags(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers) {
    return (buttons & Qt::LeftButton ? kLeftButtonHeld : 0) |
           (buttons & Qt::RightButton ? kRightButtonHeld : 0) |
           (modifiers & Qt::ShiftModifier ? kShiftHeld : 0) |
           (modifiers & Qt::ControlModifier ? kControlHeld : 0);
}

MSG Describe(HWND window, const QWidget* widget, const QEvent& event) {
    MSG message{window, 0, 0, 0, 0, 0};
    if (event.type() == QEvent::Wheel) {
        const auto& wheel = static_cast<const QWheelEvent&>(event);
        message.message = WM_MOUSEWHEEL;
        message.wParam = MAKELONG(0, static_cast<WORD>(wheel.angleDelta().y()));
        message.lParam = PackPoint(wheel.position().toPoint());
    } else if (IsKey(event.type())) {
        const auto& key = static_cast<const QKeyEvent&>(event);
        message.message = KeyMessage(key);
        message.wParam = VirtualKeyOf(key.key());
        message.lParam = 1;
    } else {
        const auto& mouse = static_cast<const QMouseEvent&>(event);
        message.message = MouseMessage(mouse);
        message.wParam = HeldFlags(mouse.buttons(), mouse.modifiers());
        message.lParam = PackPoint(widget->mapTo(window->widget, mouse.position().toPoint()));
    }
    return message;
}

void Enqueue(HWND window, QWidget* widget, const QEvent& event) {
    const MSG message = Describe(window, widget, event);
    if (message.message == WM_MOUSEMOVE) {
        if (!widget->hasMouseTracking() && !message.wParam)
            return;
        MSG* waiting = nullptr;
        HostInput* last = LastQueuedInput(WM_MOUSEMOVE, widget, &waiting);
        if (last && waiting->wParam == message.wParam) {
            waiting->lParam = message.lParam;
            last->event.reset(event.clone());
            return;
        }
    }
    auto input = std::make_unique<HostInput>();
    input->event.reset(event.clone());
    input->receiver = widget;
    QueueInput(message, std::move(input));
}

// The host asks before a key arrives whether anybody wants it as a shortcut, and some popups close as they
// answer. The key is the popup's all the same, up to its release.
bool IsKeyOfClosedPopup(const QObject* receiver, const QKeyEvent& event) {
    constexpr int kNoKey = -1;
    static int popupKey = kNoKey;
    const bool open = QApplication::activePopupWidget();
    if (event.type() == QEvent::ShortcutOverride) {
        if (open)
            popupKey = event.key();
        else if (receiver->isWindowType() && !event.isAutoRepeat())
            popupKey = kNoKey;
        return false;
    }
    if (open || event.key() != popupKey)
        return false;
    if (event.type() == QEvent::KeyRelease && !event.isAutoRepeat())
        popupKey = kNoKey;
    return true;
}

// Some hosts report the menu key twice, as a key and as its event. Ours comes from the key.
bool IsSecondMenuKey(QWidget* widget, const QContextMenuEvent& event) {
    return event.reason() == QContextMenuEvent::Keyboard && event.spontaneous() &&
           InputWindow(widget, true) != nullptr;
}

class InputFilter : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* receiver, QEvent* event) override {
        const QEvent::Type type = event->type();
        const bool key = IsKey(type) || type == QEvent::ShortcutOverride;
        if (key && IsKeyOfClosedPopup(receiver, static_cast<QKeyEvent&>(*event)))
            return true;
        if (!receiver->isWidgetType())
            return false;
        auto* widget = static_cast<QWidget*>(receiver);
        if (type == QEvent::ContextMenu)
            return IsSecondMenuKey(widget, static_cast<QContextMenuEvent&>(*event));
        if (!key && !IsMouse(type) && type != QEvent::Wheel)
            return false;
        if (const HWND replaying = ReplayingWindow();
            replaying && widget->window() == ScreenArea()->window()) {
            // The host passes an event that a control ignores on to its parents; the handheld does not.
            return WindowOfWidget(widget) != replaying;
        }
        const HWND window = InputWindow(widget, key);
        if (!window)
            return false;
        event->accept();
        if (type != QEvent::ShortcutOverride && !Blocked(window))
            UnlessOutOfMemory(false, [&] { // what there is no room for is lost
                Enqueue(window, widget, *event);
                return true;
            });
        return true;
    }
};

// ---- messages that have no host event behind them ----

void SendMouse(QWidget* target, QEvent::Type type, Qt::MouseButton button, const QPoint& point) {
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonRelease ? Qt::MouseButtons() : Qt::MouseButtons(button);
    QMouseEvent event(type, QPointF(point), QPointF(target->mapToGlobal(point)), button, held,
                      Keyboard().modifiers);
    QCoreApplication::sendEvent(target, &event);
}

void MakeMouseEvent(HWND window, UINT message, LPARAM lParam) {
    const QPoint point(SignedLoWord(lParam), SignedHiWord(lParam));
    QWidget* target = window->widget->childAt(point);
    if (!target || WindowOfWidget(target) != window)
        target = window->widget;
    const QPoint inTarget = target->mapFrom(window->widget, point);
    switch (message) {
    case WM_LBUTTONDOWN:
        return SendMouse(target, QEvent::MouseButtonPress, Qt::LeftButton, inTarget);
    case WM_LBUTTONUP:
        return SendMouse(target, QEvent::MouseButtonRelease, Qt::LeftButton, inTarget);
    case WM_LBUTTONDBLCLK:
        return SendMouse(target, QEvent::MouseButtonDblClick, Qt::LeftButton, inTarget);
    case WM_RBUTTONDOWN:
        return SendMouse(target, QEvent::MouseButtonPress, Qt::RightButton, inTarget);
    case WM_RBUTTONUP:
        return SendMouse(target, QEvent::MouseButtonRelease, Qt::RightButton, inTarget);
    }
}

void MakeKeyEvent(HWND window, UINT message, WPARAM wParam) {
    const bool character = message == WM_CHAR;
    const int hostKey = character ? 0 : HostKeyOf(static_cast<UINT>(wParam));
    if (!character && !hostKey)
        return;
    const bool up = message == WM_KEYUP || message == WM_SYSKEYUP;
    const QString text =
        character || hostKey == Qt::Key_Space ? QString(QChar(static_cast<char16_t>(wParam))) : QString();
    QKeyEvent event(up ? QEvent::KeyRelease : QEvent::KeyPress, hostKey, Keyboard().modifiers, text);
    QWidget* target = window->widget->focusProxy() ? window->widget->focusProxy() : window->widget.data();
    QCoreApplication::sendEvent(target, &event);
}

bool IsKeyMessage(UINT message) {
    return message >= WM_KEYDOWN && message <= WM_SYSKEYUP;
}

} // namespace

void InstallInputFilter() {
    qApp->installEventFilter(new InputFilter(qApp));
}

bool IsInputMessage(UINT message) {
    return IsKeyMessage(message) || (message >= WM_MOUSEMOVE && message <= WM_MOUSEWHEEL);
}

void ReplayInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!LiveWindow(window) || !window->widget)
        return;
    const ReplayScope scope(window);
    if (HostInput* input = TakeCurrentInput(window, message)) {
        if (input->receiver)
            QCoreApplication::sendEvent(input->receiver, input->event.get());
    } else if (IsKeyMessage(message)) {
        MakeKeyEvent(window, message, wParam);
    } else {
        MakeMouseEvent(window, message, lParam);
    }
}

bool HandleMenuKey(HWND window, UINT message, WPARAM wParam) {
    KeyboardState& keys = Keyboard();
    const HWND bar = MenuBarOf(window);
    const bool down = message == WM_SYSKEYDOWN;
    if (!bar || (!down && message != WM_SYSKEYUP && message != WM_KEYUP)) {
        keys.altAlone = false;
        return false;
    }
    if (wParam == VK_MENU) {
        const bool alone = keys.altAlone;
        keys.altAlone = down;
        return !down && alone && SendMessageW(bar, MBM_ENTERMENUMODE, 0, 0);
    }
    if (!down)
        return false;
    keys.altAlone = false;
    if (wParam == VK_F10)
        return SendMessageW(bar, MBM_ENTERMENUMODE, 0, 0);
    return IsLetterOrDigit(wParam) && SendMessageW(bar, MBM_OPENBYLETTER, wParam, 0);
}

} // namespace ui
