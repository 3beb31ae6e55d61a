// The list view's window procedure: input on its way to the views, and what it means here.
#include <QAbstractItemView>

#include "platform/base/outofmemory.h"
#include "platform/ui/controls/header.h"
#include "platform/ui/controls/listmessages.h"

namespace ui {

namespace {

constexpr UINT kFirstListMessage = 0x1000;
constexpr UINT kLastListMessage = 0x10FF;
constexpr UINT VK_F2 = 0x71;

QWidget* MakeList(WindowObject& window, QWidget* parent) {
    return new ListWidget(window, parent);
}

LRESULT AnswerList(ListWidget& list, UINT message, WPARAM wParam, LPARAM lParam) {
    ListAnswer answer = RowMessage(list, message, wParam, lParam);
    if (!answer)
        answer = ColumnMessage(list, message, wParam, lParam);
    if (!answer)
        answer = ViewMessage(list, message, wParam, lParam);
    return answer.value_or(0);
}

LRESULT ListMessage(ListWidget& list, UINT message, WPARAM wParam, LPARAM lParam) {
    const bool answersPlace =
        message == LVM_INSERTITEMW || message == LVM_INSERTCOLUMNW || message == LVM_FINDITEMW;
    return UnlessOutOfMemory<LRESULT>(answersPlace ? -1 : 0,
                                      [&] { return AnswerList(list, message, wParam, lParam); });
}

void NotifyDoubleTap(HWND window, int row) {
    NMLISTVIEW notification{};
    notification.iItem = row;
    NotifyParent(window, &notification.hdr, NM_DBLCLK);
}

// True when the list takes the key for itself.
bool TakeKey(ListWidget& list, WPARAM key) {
    list.ForgetLabelTap();
    if (key == VK_F2 && list.model->FocusedRow() >= 0)
        return list.EditLabel(list.model->FocusedRow());
    if (key == VK_F6 && list.View() == LVS_REPORT && GetKeyState(VK_SHIFT) >= 0)
        return SetFocus(list.header) == list.handle;
    return key == VK_SPACE && list.ToggleFocusedCheck();
}

LRESULT InputMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    ListWidget* list = WidgetOf<ListWidget>(window);
    QPoint point(SignedLoWord(lParam), SignedHiWord(lParam));
    bool pressed = message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK;
    if (message == WM_KEYDOWN && TakeKey(*list, wParam))
        return 0;
    if (pressed) {
        list->FinishLabelEdit(true);
        if (!(list = WidgetOf<ListWidget>(window)))
            return 0;
        if (list->ToggleCheckAt(point))
            return 0;
        list->LabelPressed(point);
    }
    const LRESULT result = DefaultControlProcedure(window, message, wParam, lParam);
    // Each of these may tell the program something that makes it destroy the window.
    if ((list = WidgetOf<ListWidget>(window)))
        list->TakeViewSelection();
    list = WidgetOf<ListWidget>(window);
    if (list && message == WM_LBUTTONUP)
        list->LabelReleased(point);
    if (list && message == WM_LBUTTONDBLCLK) {
        list->ForgetLabelTap();
        NotifyDoubleTap(window, list->RowAt(point));
    }
    return result;
}

LRESULT ListProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    ListWidget* list = WidgetOf<ListWidget>(window);
    if (!list)
        return DefaultControlProcedure(window, message, wParam, lParam);
    if (message >= kFirstListMessage && message <= kLastListMessage)
        return ListMessage(*list, message, wParam, lParam);
    switch (message) {
    case WM_CREATE:
        list->header = CreateWindowExW(0, u"SysHeader32", u"", WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, window,
                                       ChildId(0), nullptr, nullptr);
        return list->header ? 0 : -1;
    case WM_NAMEWINDOW:
        list->SetName(HostText(reinterpret_cast<const WCHAR*>(lParam)));
        return 0;
    case WM_SETREDRAW:
        list->SetRedraw(wParam != 0);
        return 0;
    case WM_STYLECHANGED:
        list->ApplyStyle();
        return 0;
    case WM_SETFONT: {
        const LRESULT result = DefaultControlProcedure(window, message, wParam, lParam);
        list->ApplyStyle();
        return result;
    }
    case WM_KILLFOCUS:
        list->FinishLabelEdit(true);
        [[fallthrough]];
    case WM_SETFOCUS:
        if ((list = WidgetOf<ListWidget>(window)))
            list->BeginAtSelection();
        if ((list = WidgetOf<ListWidget>(window)))
            list->CurrentView()->viewport()->update(); // the selection shows who has the focus
        break;
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    }
    const bool input = (message >= WM_KEYDOWN && message <= WM_SYSKEYUP) ||
                       (message >= WM_MOUSEMOVE && message <= WM_MOUSEWHEEL);
    if (input)
        return InputMessage(window, message, wParam, lParam);
    return DefaultControlProcedure(window, message, wParam, lParam);
}

} // namespace

void EndLabelEdit() {
    if (ListWidget* list = WidgetOf<ListWidget>(GetFocus())) // an edit lasts as long as the focus
        list->FinishLabelEdit(true);
}

void RegisterListViewClass() {
    RegisterHeaderClass();
    RegisterBuiltInClass(u"SysListView32", ListProcedure, MakeList);
}

} // namespace ui
