// Classes, handles, and which widget belongs to which window.
#include <QHash>
#include <deque>
#include <map>
#include <unordered_map>

#include "platform/ui/core/messagequeue.h"
#include "platform/ui/core/windowcore.h"

namespace ui {

namespace {

// How many destroyed windows keep their memory, so that a handle that is still in use reads a dead window.
constexpr std::size_t kRememberedWindows = 512;

struct BuriedWidget {
    QPointer<QWidget> widget;
    int depth; // of dispatching, when it was buried
};

struct Registry {
    std::map<QString, std::unique_ptr<WindowClass>> classes; // by folded name
    std::unordered_map<HWND, std::unique_ptr<WindowObject>> windows;
    std::deque<std::unique_ptr<WindowObject>> destroyed;
    QHash<const QWidget*, HWND> widgets;
    std::vector<HWND> topLevel;
    std::vector<BuriedWidget> buried;
    ATOM lastAtom = 0xC000;
};

// Never destroyed: widgets that are deleted at process end still look themselves up.
Registry& TheRegistry() {
    static auto* registry = new Registry;
    return *registry;
}

bool AddClass(const QString& name, std::unique_ptr<WindowClass> windowClass) {
    return TheRegistry().classes.emplace(name.toCaseFolded(), std::move(windowClass)).second;
}

} // namespace

QString HostText(const WCHAR* text) {
    if (!text)
        return QString();
    return QString(reinterpret_cast<const QChar*>(text),
                   static_cast<qsizetype>(std::char_traits<WCHAR>::length(text)));
}

int CopyHostText(WCHAR* out, int capacity, const QString& text) {
    if (!out || capacity <= 0)
        return 0;
    const int length = std::min(static_cast<int>(text.size()), capacity - 1);
    std::copy_n(reinterpret_cast<const WCHAR*>(text.constData()), length, out);
    out[length] = 0;
    return length;
}

void RegisterBuiltInClass(const char16_t* name, WNDPROC procedure, WidgetFactory makeWidget) {
    auto added = std::make_unique<WindowClass>();
    added->name = HostText(name);
    added->procedure = procedure;
    added->makeWidget = makeWidget;
    added->builtIn = true;
    AddClass(HostText(name), std::move(added));
}

const WindowClass* FindWindowClass(const WCHAR* name) {
    const auto& classes = TheRegistry().classes;
    const auto found = classes.find(HostText(name).toCaseFolded());
    return found == classes.end() ? nullptr : found->second.get();
}

HWND AddWindow(std::unique_ptr<WindowObject> window) {
    const HWND handle = window.get();
    TheRegistry().windows.emplace(handle, std::move(window));
    return handle;
}

void ForgetWindow(HWND window) {
    Registry& registry = TheRegistry();
    auto node = registry.windows.extract(window);
    if (node.empty())
        return;
    std::erase(registry.topLevel, window);
    node.mapped()->control.reset();
    registry.destroyed.push_back(std::move(node.mapped()));
    if (registry.destroyed.size() > kRememberedWindows)
        registry.destroyed.pop_front();
}

WindowObject* LiveWindow(HWND window) {
    return window && TheRegistry().windows.contains(window) ? window : nullptr;
}

void BindWidget(HWND window, QWidget* widget) {
    TheRegistry().widgets.insert(widget, window);
}

void UnbindWidget(const QWidget* widget) {
    TheRegistry().widgets.remove(widget);
}

HWND WindowOfWidget(const QWidget* widget) {
    const auto& widgets = TheRegistry().widgets;
    for (; widget; widget = widget->isWindow() ? nullptr : widget->parentWidget())
        if (const HWND window = widgets.value(widget))
            return LiveWindow(window);
    return nullptr;
}

std::vector<HWND>& TopLevelWindows() {
    return TheRegistry().topLevel;
}

HWND TopLevelOf(HWND window) {
    WindowObject* object = LiveWindow(window);
    while (object && object->parent)
        object = LiveWindow(object->parent);
    return object;
}

bool IsInside(HWND window, HWND ancestor) {
    for (WindowObject* object = LiveWindow(window); object; object = LiveWindow(object->parent))
        if (object == ancestor)
            return true;
    return false;
}

void BuryWidget(QWidget* widget) {
    if (!widget)
        return;
    widget->hide();
    TheRegistry().buried.push_back({widget, DispatchDepth()});
}

void DeleteBuriedWidgets(int dispatchDepth) {
    auto& buried = TheRegistry().buried;
    for (std::size_t i = 0; i < buried.size();) {
        if (buried[i].depth > dispatchDepth || dispatchDepth == 0) {
            const QPointer<QWidget> widget = buried[i].widget;
            buried.erase(buried.begin() + static_cast<std::ptrdiff_t>(i));
            delete widget.data();
        } else {
            ++i;
        }
    }
}

} // namespace ui

using namespace ui;

ATOM RegisterClassW(const WNDCLASSW* windowClass) {
    if (!windowClass || !windowClass->lpszClassName || !windowClass->lpfnWndProc)
        return 0;
    auto added = std::make_unique<WindowClass>();
    added->name = HostText(windowClass->lpszClassName);
    added->procedure = windowClass->lpfnWndProc;
    added->extraBytes = std::max(0, windowClass->cbWndExtra);
    added->style = windowClass->style;
    added->background = windowClass->hbrBackground;
    added->icon = windowClass->hIcon;
    const QString name = added->name;
    return AddClass(name, std::move(added)) ? ++TheRegistry().lastAtom : 0;
}

BOOL IsWindow(HWND window) {
    return LiveWindow(window) != nullptr;
}
