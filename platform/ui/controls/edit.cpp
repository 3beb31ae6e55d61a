// The edit box's messages.
#include <QContextMenuEvent>
#include <QCoreApplication>

#include "platform/ui/controls/editbox.h"

namespace ui {

namespace {

QWidget* MakeEdit(WindowObject& window, QWidget* parent) {
    QWidget* widget = nullptr;
    if (window.style & ES_MULTILINE)
        widget = new TextBox(window, parent);
    else
        widget = new LineBox(window, parent);
    NameAfterLabel(window, widget);
    return widget;
}

LRESULT GetSelection(const EditBox& box, WPARAM startOut, LPARAM endOut) {
    auto [start, end] = box.Selection();
    if (startOut)
        *reinterpret_cast<DWORD*>(startOut) = static_cast<DWORD>(start);
    if (endOut)
        *reinterpret_cast<DWORD*>(endOut) = static_cast<DWORD>(end);
    if (start > 0xFFFF || end > 0xFFFF)
        return -1;
    return static_cast<LRESULT>(MAKELONG(static_cast<WORD>(start), static_cast<WORD>(end)));
}

LRESULT SetSelection(EditBox& box, int start, int end) {
    if (start < 0)
        start = end = box.Selection().second; // only takes the selection away
    else if (end < 0)
        end = static_cast<int>(box.Text().size());
    box.Select(start, end);
    return 0;
}

LRESULT EditMessage(EditBox& box, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case EM_GETSEL:
        return GetSelection(box, wParam, lParam);
    case EM_SETSEL:
        return SetSelection(box, static_cast<int>(wParam), static_cast<int>(lParam));
    case EM_SETLIMITTEXT:
        box.SetLimit(static_cast<int>(wParam));
        return 0;
    case EM_CANUNDO:
        return box.CanUndo();
    case EM_EMPTYUNDOBUFFER:
        box.EmptyUndoBuffer();
        return 0;
    }
    return 0;
}

LRESULT SetText(HWND window, EditBox& box, const WCHAR* text) {
    box.SetText(HostText(text));
    CommandToParent(window, EN_CHANGE);
    return TRUE;
}

// The host's menu for editing, at the caret.
LRESULT OpenMenu(QWidget& widget) {
    const QPoint caret = widget.inputMethodQuery(Qt::ImCursorRectangle).toRect().bottomLeft();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, caret, widget.mapToGlobal(caret));
    QCoreApplication::sendEvent(&widget, &event);
    return 0;
}

LRESULT EditDialogCode(HWND window) {
    LRESULT code = DLGC_HASSETSEL | DLGC_WANTCHARS | DLGC_WANTARROWS;
    if ((window->style & ES_MULTILINE) && (window->style & ES_WANTRETURN))
        code |= DLGC_WANTALLKEYS;
    return code;
}

LRESULT EditProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    EditBox* box = WidgetOf<EditBox>(window);
    if (!box)
        return DefaultControlProcedure(window, message, wParam, lParam);
    switch (message) {
    case WM_SETTEXT:
        return SetText(window, *box, reinterpret_cast<const WCHAR*>(lParam));
    case WM_GETTEXT:
        return CopyHostText(reinterpret_cast<WCHAR*>(lParam), static_cast<int>(wParam), box->Text());
    case WM_GETTEXTLENGTH:
        return box->Text().size();
    case WM_CUT:
    case WM_COPY:
    case WM_PASTE:
    case WM_UNDO:
        box->Edit(message);
        return TRUE;
    case WM_GETDLGCODE:
        return EditDialogCode(window);
    case WM_CONTEXTMENU:
        return OpenMenu(*window->widget);
    }
    if (message >= EM_GETSEL && message <= EM_EMPTYUNDOBUFFER)
        return EditMessage(*box, message, wParam, lParam);
    return DefaultControlProcedure(window, message, wParam, lParam);
}

} // namespace

void RegisterEditClass() {
    RegisterBuiltInClass(u"EDIT", EditProcedure, MakeEdit);
}

} // namespace ui
