// What a window is inside the platform: a class, a procedure, extra bytes and the host widget that shows it.
#pragma once

#include <QPointer>
#include <QRect>
#include <QScrollBar>
#include <QSize>
#include <QString>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "platform/dialog.h"

namespace ui {

// A host widget for a new window of a built-in class, already a child of `parentWidget`; the window object's
// style, id and text are set. Null for a class that the program registered: the platform makes a plain one.
using WidgetFactory = QWidget* (*)(WindowObject& window, QWidget* parentWidget);

struct WindowClass {
    QString name; // as registered; found without regard to case
    WNDPROC procedure = nullptr;
    int extraBytes = 0;
    UINT style = 0;
    HBRUSH background = nullptr;
    HICON icon = nullptr;
    WidgetFactory makeWidget = nullptr;
    bool builtIn = false;
};

// A control's own state, owned by its window.
struct ControlState {
    virtual ~ControlState() = default;
};

// A control's rectangle when its dialog was made.
struct ControlHome {
    HWND control;
    QRect rect;
};

// What only dialogs have.
struct DialogData {
    DLGPROC procedure = nullptr;
    bool modal = false;
    bool ended = false;
    LONG_PTR result = 0;
    UINT defaultId = 0; // the default push button's id, 0 for none
    // How the controls follow the screen: the template's size, the controls' rectangles in it, and those of
    // controls that the program added, counted from the screen's right side.
    QSize natural;
    std::vector<ControlHome> homes;
    std::vector<ControlHome> added;
    QPointer<QScrollBar> scrollBars[2]; // across and down, made when first needed
    QRect shown;                        // the part of the frame that shows the dialog
    // Set by the dialog manager; null in a dialog that does not care.
    void (*layOut)(HWND dialog,
                   const QRect& client) = nullptr; // a full-screen dialog gets that part of its frame
    void (*focusMoved)(HWND dialog) = nullptr;     // to or within the dialog
};

enum class TitleButton { None, Ok, Close };

// What only top-level windows have.
struct TopLevelState {
    QPointer<QWidget> frame; // fills the screen's area, around the window's own widget
    HWND lastFocus = nullptr;
    TitleButton button = TitleButton::None;
    bool acceptsFiles = false;
    QString documentTitle;  // empty for most
    bool fullScreen = true; // else a card of `cardSize` in the middle of the screen
    QSize cardSize;
    std::function<void(const QSize& area)>
        fitCard; // chooses the card's size for a screen of that size, or null
};

} // namespace ui

struct WindowObject {
    const ui::WindowClass* windowClass = nullptr;
    WNDPROC procedure = nullptr;
    HWND parent = nullptr; // of a child
    HWND owner = nullptr;  // of a top-level window
    UINT id = 0;
    DWORD style = 0;
    DWORD exStyle = 0;
    LONG_PTR userData = 0;
    std::vector<std::byte> extra;
    QString text; // for classes without a text of their own
    HFONT font = nullptr;
    HICON icon = nullptr;
    QPointer<QWidget> widget;   // its client area; for the built-in classes the control itself
    std::vector<HWND> children; // in creation order, which is the Tab order
    std::unique_ptr<ui::TopLevelState> topLevel;
    std::shared_ptr<ui::DialogData> dialog;    // dialogs only
    std::unique_ptr<ui::ControlState> control; // built-in classes only
    bool destroying = false;
};

namespace ui {

// Built-in classes register themselves once, at the start of the window system.
void RegisterBuiltInClass(const char16_t* name, WNDPROC procedure, WidgetFactory makeWidget);
// Text as it is, lone surrogates and byte order marks included, which the host's own conversions would mend.
// Null: empty.
QString HostText(const WCHAR* text);
// At most capacity - 1 characters and a terminator, as WM_GETTEXT and its relatives answer; returns the
// characters copied.
int CopyHostText(WCHAR* out, int capacity, const QString& text);

// The live window, or null for null and destroyed handles: handles are never used unchecked.
WindowObject* LiveWindow(HWND window);
// The window that shows the widget: itself or the nearest ancestor that is one.
HWND WindowOfWidget(const QWidget* widget);
// The window's top-level ancestor.
HWND TopLevelOf(HWND window);

// Sent by SetWindowLongPtrW(GWL_STYLE) after the style has changed.
constexpr UINT WM_STYLECHANGED = 0x007D;

// Runs the message loop until `done` is true: the base of every modal thing. A quit message is put aside
// meanwhile and posted again for the loops around this one: what is asked is seen and answered first. `done`
// is looked at after each message, so whatever sets it while none is being dispatched posts a WM_NULL.
constexpr UINT WM_NULL = 0;
void RunModal(const bool& done);

// The id that every menu bar has. In a dialog the bar is above the client area, elsewhere at its top.
constexpr UINT kMenuBarId = 10005;

} // namespace ui
