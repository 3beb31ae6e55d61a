// Where windows stand, whether they show, and what is to be painted.
#include "platform/shell.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

LPARAM PackSize(const QSize& size) {
    return static_cast<LPARAM>(MAKELONG(static_cast<WORD>(size.width()), static_cast<WORD>(size.height())));
}

void StoreRect(RECT* rect, const QRect& from) {
    *rect = RECT{from.x(), from.y(), from.x() + from.width(), from.y() + from.height()};
}

QWidget* LiveWidget(HWND window) {
    const WindowObject* object = LiveWindow(window);
    return object ? object->widget.data() : nullptr;
}

// The bar follows its parent's width; returns the height that it takes.
int PlaceBar(HWND window, int width) {
    const HWND bar = MenuBarOf(window);
    if (!LiveWindow(bar) || !bar->widget)
        return 0;
    const int height = static_cast<int>(SendMessageW(bar, SHCMBM_GETHEIGHT, 0, 0));
    PlaceWindow(bar, QRect(0, 0, width, height));
    bar->widget->setVisible(height > 0);
    bar->widget->raise(); // a dialog may be scrolled below it
    return height;
}

void ShowTopLevel(HWND window, bool show) {
    if (show) {
        ShowOnScreen(window);
        if (!(window->style & WS_DISABLED))
            ActivateTopLevel(window);
    } else {
        PassActivationOn(window);
        window->topLevel->frame->hide();
    }
    UpdateTitleBar();
}

} // namespace

void PlaceWindow(HWND window, const QRect& rect) {
    QWidget* widget = LiveWidget(window);
    if (!widget)
        return;
    const QSize before = widget->size();
    widget->setGeometry(rect);
    if (before != widget->size())
        SendMessageW(window, WM_SIZE, 0, PackSize(widget->size()));
}

void LayOutTopLevel(HWND window) {
    WindowObject* object = LiveWindow(window);
    if (!object || !object->topLevel || !object->topLevel->frame || !object->widget)
        return;
    QWidget* frame = object->topLevel->frame;
    frame->setGeometry(ScreenArea()->rect());
    QRect client = frame->rect();
    if (!object->topLevel->fullScreen) {
        if (object->topLevel->fitCard)
            object->topLevel->fitCard(client.size());
        const QSize size = object->topLevel->cardSize.boundedTo(client.size());
        client = QRect(client.topLeft() +
                           QPoint((client.width() - size.width()) / 2, (client.height() - size.height()) / 2),
                       size);
    } else if (const int barHeight = PlaceBar(window, client.width()); object->dialog) {
        client.setTop(client.top() + barHeight);
    }
    if (!LiveWindow(window))
        return;
    if (object->dialog && object->dialog->layOut && object->topLevel->fullScreen)
        object->dialog->layOut(window, client);
    else
        PlaceWindow(window, client);
}

void LayOutScreen() {
    const std::vector<HWND> windows = TopLevelWindows();
    for (HWND window : windows)
        LayOutTopLevel(window);
}

} // namespace ui

using namespace ui;

BOOL ShowWindow(HWND window, int command) {
    WindowObject* object = LiveWindow(window);
    if (!object || object->destroying)
        return FALSE;
    const bool wasVisible = object->style & WS_VISIBLE;
    const bool show = command != SW_HIDE;
    object->style = show ? object->style | WS_VISIBLE : object->style & ~WS_VISIBLE;
    if (wasVisible != show)
        SendMessageW(window, WM_SHOWWINDOW, show, 0);
    if (!LiveWindow(window) || !object->widget)
        return wasVisible;
    if (object->topLevel)
        ShowTopLevel(window, show);
    else
        object->widget->setVisible(show);
    return wasVisible;
}

BOOL UpdateWindow(HWND window) {
    if (!LiveWidget(window))
        return FALSE;
    PaintScreenNow();
    return TRUE;
}

BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) {
    const WindowObject* object = LiveWindow(window);
    if (!object)
        return FALSE;
    if (object->topLevel)
        return TRUE; // those fill the screen
    PlaceWindow(window, QRect(x, y, std::max(0, width), std::max(0, height)));
    if (repaint)
        InvalidateRect(window, nullptr, TRUE);
    return TRUE;
}

BOOL GetClientRect(HWND window, RECT* rect) {
    const QWidget* widget = LiveWidget(window);
    if (!widget || !rect)
        return FALSE;
    StoreRect(rect, QRect(QPoint(0, 0), widget->contentsRect().size())); // a border is not the client's
    return TRUE;
}

BOOL ClientToScreen(HWND window, POINT* point) {
    const QWidget* widget = LiveWidget(window);
    if (!widget || !point)
        return FALSE;
    const QPoint mapped = widget->mapTo(ScreenArea()->window(), QPoint(point->x, point->y));
    *point = {mapped.x(), mapped.y()};
    return TRUE;
}

BOOL ScreenToClient(HWND window, POINT* point) {
    const QWidget* widget = LiveWidget(window);
    if (!widget || !point)
        return FALSE;
    const QPoint mapped = widget->mapFrom(ScreenArea()->window(), QPoint(point->x, point->y));
    *point = {mapped.x(), mapped.y()};
    return TRUE;
}

BOOL InvalidateRect(HWND window, const RECT* rect, BOOL) {
    QWidget* widget = LiveWidget(window);
    if (!widget)
        return FALSE;
    if (rect) {
        widget->update(rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top);
        return TRUE;
    }
    widget->update();
    // A control may be made of several widgets of the host.
    for (QWidget* part : widget->findChildren<QWidget*>())
        if (WindowOfWidget(part) == window)
            part->update();
    return TRUE;
}

BOOL EnableWindow(HWND window, BOOL enable) {
    WindowObject* object = LiveWindow(window);
    if (!object)
        return FALSE;
    const bool wasDisabled = object->style & WS_DISABLED;
    if (wasDisabled == !enable)
        return wasDisabled;
    object->style = enable ? object->style & ~WS_DISABLED : object->style | WS_DISABLED;
    SendMessageW(window, WM_ENABLE, enable != FALSE, 0);
    return wasDisabled;
}

BOOL IsWindowEnabled(HWND window) {
    const WindowObject* object = LiveWindow(window);
    return object && !(object->style & WS_DISABLED);
}

BOOL IsWindowVisible(HWND window) {
    const WindowObject* object = LiveWindow(window);
    if (!object)
        return FALSE;
    for (; object; object = LiveWindow(object->parent))
        if (!(object->style & WS_VISIBLE))
            return FALSE;
    return TRUE;
}

int GetSystemMetrics(int index) {
    switch (index) {
    case SM_CXSCREEN:
        return ScreenSize().width();
    case SM_CYSCREEN:
        return ScreenSize().height();
    case SM_CXVSCROLL:
        return ScrollBarWidth();
    case SM_CYCAPTION:
        return TitleBarHeight();
    }
    return 0;
}
