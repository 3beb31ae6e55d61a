// Making and destroying windows.
#include <QPaintEvent>
#include <QPainter>

#include "platform/base/outofmemory.h"
#include "platform/ui/core/accessible.h"
#include "platform/ui/core/messagequeue.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/core/windowsystem.h"
#include "platform/ui/drawing/devicecontext.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

// The client area of a window that the program paints.
class ClientWidget : public QWidget {
public:
    ClientWidget(HWND window, QWidget* parent) : QWidget(parent), window(window) {}

protected:
    void paintEvent(QPaintEvent* event) override {
        const WindowObject* object = LiveWindow(window);
        if (!object)
            return;
        QPainter painter(this);
        const COLORREF background = BrushColour(object->windowClass->background);
        painter.fillRect(event->rect(),
                         background != CLR_INVALID ? DisplayColour(background) : palette().window().color());
        SetPaintTarget(window, &painter, event->rect());
        SendMessageW(window, WM_PAINT, 0, 0);
        SetPaintTarget(window, nullptr);
    }

private:
    HWND window;
};

void MakeWidget(HWND window) {
    QWidget* parentWidget = nullptr;
    if (window->topLevel) {
        window->topLevel->frame = NewFrame(window);
        parentWidget = window->topLevel->frame;
    } else {
        WindowObject* parent = window->parent;
        const bool barOfDialog = parent->dialog && window->id == kMenuBarId;
        parentWidget = barOfDialog ? parent->topLevel->frame : parent->widget;
    }
    QWidget* widget = window->windowClass->makeWidget ? window->windowClass->makeWidget(*window, parentWidget)
                                                      : new ClientWidget(window, parentWidget);
    window->widget = widget;
    BindWidget(window, widget);
    if (!window->topLevel)
        widget->hide(); // or the host would show it along with its parent
    if (window->style & WS_DISABLED && !window->topLevel)
        widget->setEnabled(false);
    if (!window->windowClass->makeWidget) {
        GiveRole(widget, QAccessible::Pane);
        widget->setAccessibleName(window->text);
    }
}

std::unique_ptr<WindowObject> DescribeWindow(const CREATESTRUCTW& create, const WindowClass& windowClass,
                                             UINT id) {
    auto object = std::make_unique<WindowObject>();
    object->windowClass = &windowClass;
    object->procedure = windowClass.procedure;
    object->style = create.style & ~WS_VISIBLE;
    object->exStyle = create.dwExStyle;
    object->text = HostText(create.lpszName);
    object->extra.resize(static_cast<std::size_t>(windowClass.extraBytes));
    object->icon = windowClass.icon;
    if (create.style & WS_CHILD) {
        object->parent = create.hwndParent;
        object->id = id;
    } else {
        object->owner = TopLevelOf(create.hwndParent);
        object->topLevel = std::make_unique<TopLevelState>();
    }
    return object;
}

int Coordinate(int value) {
    return value == CW_USEDEFAULT ? 0 : value;
}

// Gives the window its rectangle, sends WM_CREATE and shows it. False when its procedure refused or destroyed
// it.
bool CompleteCreation(HWND window, const CREATESTRUCTW& create) {
    if (!window->topLevel)
        window->widget->setGeometry(Coordinate(create.x), Coordinate(create.y),
                                    std::max(0, Coordinate(create.cx)), std::max(0, Coordinate(create.cy)));
    else
        LayOutTopLevel(window);
    if (SendMessageW(window, WM_CREATE, 0, reinterpret_cast<LPARAM>(&create)) == -1) {
        DestroyWindow(window);
        return false;
    }
    if (!LiveWindow(window))
        return false;
    const QSize size = window->widget->size();
    SendMessageW(
        window, WM_SIZE, 0,
        static_cast<LPARAM>(MAKELONG(static_cast<WORD>(size.width()), static_cast<WORD>(size.height()))));
    if (LiveWindow(window) && create.style & WS_VISIBLE)
        ShowWindow(window, SW_SHOW);
    return LiveWindow(window) != nullptr;
}

void DestroyTree(HWND window) {
    window->destroying = true;
    SendMessageW(window, WM_DESTROY, 0, 0);
    while (LiveWindow(window) && !window->children.empty())
        DestroyTree(window->children.back());
    if (!LiveWindow(window))
        return;
    if (window->dialog)
        EndDialogLoop(*window->dialog);
    if (window->topLevel && window->topLevel->button == TitleButton::Close)
        RememberDisplayPlace();
    WithdrawWindow(window);
    KillTimersOf(window);
    DropMessagesOf(window);
    if (WindowObject* parent = LiveWindow(window->parent))
        std::erase(parent->children, window);
    QWidget* widget = window->widget;
    UnbindWidget(widget);
    BuryWidget(window->topLevel ? window->topLevel->frame.data() : widget);
    ForgetWindow(window);
}

HWND MakeWindow(const CREATESTRUCTW& create, UINT id) {
    const WindowClass* windowClass = FindWindowClass(create.lpszClass);
    const WindowObject* parent = LiveWindow(create.hwndParent);
    if (!windowClass || ((create.style & WS_CHILD) && (!parent || parent->destroying)))
        return nullptr;
    NewWindow window(AddWindow(DescribeWindow(create, *windowClass, id)), DestroyWindow);
    if (window->parent)
        window->parent->children.push_back(window.get());
    else
        TopLevelWindows().insert(TopLevelWindows().begin(), window.get());
    MakeWidget(window.get());
    if (!CompleteCreation(window.get(), create))
        return nullptr;
    if (window->parent && window->id == kMenuBarId)
        LayOutTopLevel(TopLevelOf(window.get()));
    if (window->topLevel && !windowClass->builtIn)
        AnnounceWindow(window.get());
    return window.release();
}

} // namespace

} // namespace ui

using namespace ui;

HWND CreateWindowExW(DWORD exStyle, const WCHAR* className, const WCHAR* windowName, DWORD style, int x,
                     int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance, void* param) {
    EnsureWindowSystem();
    const CREATESTRUCTW create{param, instance, parent,     height,    width,  y,
                               x,     style,    windowName, className, exStyle};
    const UINT id = static_cast<UINT>(reinterpret_cast<std::uintptr_t>(menu));
    return UnlessOutOfMemory<HWND>(nullptr, [&] { return MakeWindow(create, id); });
}

BOOL DestroyWindow(HWND window) {
    WindowObject* object = LiveWindow(window);
    if (!object || object->destroying)
        return FALSE;
    if (object->topLevel) {
        // Windows that it owns are destroyed first: they cannot stay without their owner.
        const std::vector<HWND> others = TopLevelWindows();
        for (HWND other : others)
            if (LiveWindow(other) && other->owner == window)
                DestroyWindow(other);
        if (!LiveWindow(window))
            return TRUE;
        object->destroying = true;
        PassActivationOn(window);
    }
    DropFocusInside(window);
    if (LiveWindow(window))
        DestroyTree(window);
    HideCoveredFrames();
    if (!GetFocus())
        ActivateTopLevel(ActiveTopLevel());
    UpdateTitleBar();
    return TRUE;
}
