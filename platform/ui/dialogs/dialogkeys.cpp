// The keys of dialogs: Tab, arrows, Enter, Escape and mnemonics.
#include <QAbstractButton>
#include <QPushButton>

#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/core/keyboard.h"
#include "platform/ui/dialogs/dialogcore.h"

namespace ui {

namespace {

LRESULT CodeOf(HWND control) {
    return SendMessageW(control, WM_GETDLGCODE, 0, 0);
}

bool IsPushButton(HWND control) {
    return CodeOf(control) & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON);
}

bool IsRadio(HWND control) {
    return CodeOf(control) & DLGC_RADIOBUTTON;
}

bool IsChecked(HWND control) {
    return SendMessageW(control, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

bool CanBeReached(HWND control) {
    return control->style & WS_VISIBLE && !(control->style & WS_DISABLED);
}

// The dialog's own child that holds the window.
HWND ChildHolding(HWND dialog, HWND window) {
    WindowObject* object = LiveWindow(window);
    while (object && object->parent != dialog)
        object = LiveWindow(object->parent);
    return object;
}

// The controls from the last WS_GROUP at or before this one up to the next.
std::vector<HWND> GroupOf(HWND dialog, HWND control) {
    std::vector<HWND> group;
    bool reached = false;
    for (HWND child : dialog->children) {
        if (child->style & WS_GROUP) {
            if (reached)
                break;
            group.clear();
        }
        reached = reached || child == control;
        group.push_back(child);
    }
    return group;
}

// Tab enters a group of radio buttons at the checked one.
HWND CheckedInGroup(HWND dialog, HWND radio) {
    for (HWND member : GroupOf(dialog, radio))
        if (IsRadio(member) && CanBeReached(member) && IsChecked(member))
            return member;
    return radio;
}

bool SameRadioGroup(HWND dialog, HWND one, HWND other) {
    if (!one || !IsRadio(one) || !IsRadio(other))
        return false;
    const std::vector<HWND> group = GroupOf(dialog, one);
    return std::find(group.begin(), group.end(), other) != group.end();
}

void Press(HWND control) {
    if (auto* button = WidgetOf<QAbstractButton>(control))
        button->click();
}

bool MoveInGroup(HWND dialog, HWND control, bool backwards) {
    if (!control || !(CodeOf(control) & DLGC_BUTTON))
        return false;
    const bool radio = IsRadio(control);
    std::vector<HWND> group;
    for (HWND member : GroupOf(dialog, control))
        if (member == control ||
            (CanBeReached(member) && CodeOf(member) & DLGC_BUTTON && IsRadio(member) == radio))
            group.push_back(member);
    const auto index = std::find(group.begin(), group.end(), control) - group.begin();
    const auto count = static_cast<std::ptrdiff_t>(group.size());
    const HWND next = group[static_cast<std::size_t>((index + (backwards ? count - 1 : 1)) % count)];
    if (next != control) {
        SetFocus(next);
        if (radio)
            Press(next);
    }
    return true;
}

// What Enter presses: the push button with the focus, else the default one.
UINT DefaultId(HWND dialog) {
    const HWND focus = ChildHolding(dialog, GetFocus());
    if (focus && IsPushButton(focus) && CanBeReached(focus))
        return focus->id;
    return dialog->dialog->defaultId ? dialog->dialog->defaultId : static_cast<UINT>(IDOK);
}

void SendCommand(HWND dialog, UINT id) {
    const HWND button = GetDlgItem(dialog, static_cast<int>(id));
    if (!button || !(button->style & WS_DISABLED))
        SendMessageW(dialog, WM_COMMAND, MAKELONG(static_cast<WORD>(id), BN_CLICKED),
                     reinterpret_cast<LPARAM>(button));
}

bool HasMnemonic(HWND control, char16_t letter) {
    const LRESULT code = CodeOf(control);
    const bool label = code & DLGC_STATIC && !(control->style & SS_NOPREFIX && !(code & DLGC_BUTTON));
    if (!CanBeReached(control) || !(label || code & DLGC_BUTTON))
        return false;
    const QString& text = control->text;
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != u'&')
            continue;
        ++i;
        if (text[i] != u'&' && text[i].toUpper() == QChar(letter))
            return true;
    }
    return false;
}

void FollowMnemonic(HWND dialog, HWND control) {
    if (CodeOf(control) & DLGC_STATIC) {
        FocusByKey(NextTabStop(dialog, control, false));
        return;
    }
    SetFocus(control);
    Press(control);
}

bool Mnemonic(HWND dialog, HWND focus, char16_t letter) {
    const std::vector<HWND> children = dialog->children;
    const auto start = std::find(children.begin(), children.end(), focus) - children.begin();
    const auto count = static_cast<std::ptrdiff_t>(children.size());
    for (std::ptrdiff_t step = 1; step <= count; ++step) {
        const HWND control = children[static_cast<std::size_t>((start + step) % count)];
        if (HasMnemonic(control, letter)) {
            FollowMnemonic(dialog, control);
            return true;
        }
    }
    return false;
}

bool HandleKey(HWND dialog, const MSG& message) {
    const HWND control = ChildHolding(dialog, message.hwnd);
    const LRESULT code = CodeOf(message.hwnd);
    const bool controlHeld = GetKeyState(VK_CONTROL) < 0;
    switch (message.wParam) {
    case VK_TAB:
        FocusByKey(NextTabStop(dialog, control, GetKeyState(VK_SHIFT) < 0));
        return true;
    case VK_LEFT:
    case VK_UP:
    case VK_RIGHT:
    case VK_DOWN:
        return !(code & (DLGC_WANTARROWS | DLGC_WANTALLKEYS)) &&
               MoveInGroup(dialog, control, message.wParam == VK_LEFT || message.wParam == VK_UP);
    case VK_PRIOR:
    case VK_NEXT:
        return !(code & (DLGC_WANTARROWS | DLGC_WANTALLKEYS)) &&
               ScrollByPage(dialog, message.wParam == VK_PRIOR);
    case VK_RETURN:
        if (code & DLGC_WANTALLKEYS)
            return false;
        SendCommand(dialog, DefaultId(dialog));
        return true;
    case VK_ESCAPE:
        SendCommand(dialog, IDCANCEL);
        return true;
    }
    const bool plainLetter =
        IsLetterOrDigit(message.wParam) && !controlHeld && !(code & (DLGC_WANTCHARS | DLGC_WANTALLKEYS));
    return plainLetter && Mnemonic(dialog, control, static_cast<char16_t>(message.wParam));
}

} // namespace

HWND NextTabStop(HWND dialog, HWND from, bool backwards) {
    std::vector<HWND> order = dialog->children;
    if (backwards)
        std::reverse(order.begin(), order.end());
    const auto count = static_cast<std::ptrdiff_t>(order.size());
    const auto found = std::find(order.begin(), order.end(), from);
    const std::ptrdiff_t start = found == order.end() ? -1 : found - order.begin();
    for (std::ptrdiff_t step = 1; step <= count; ++step) {
        const HWND candidate = order[static_cast<std::size_t>((start + step) % count)];
        if (!(candidate->style & WS_TABSTOP) || !CanBeReached(candidate) ||
            SameRadioGroup(dialog, from, candidate))
            continue;
        return IsRadio(candidate) ? CheckedInGroup(dialog, candidate) : candidate;
    }
    return nullptr;
}

void FocusByKey(HWND control) {
    if (!LiveWindow(control))
        return;
    SetFocus(control);
    if (CodeOf(control) & DLGC_HASSETSEL)
        SendMessageW(control, EM_SETSEL, 0, -1);
}

void ShowDefaultButton(HWND dialog) {
    if (!LiveWindow(dialog) || !dialog->dialog)
        return;
    const UINT id = DefaultId(dialog);
    const HWND focus = ChildHolding(dialog, GetFocus());
    const bool focusIsIt = focus && focus->id == id;
    for (HWND child : dialog->children)
        if (auto* button = WidgetOf<QPushButton>(child))
            button->setDefault(focusIsIt ? child == focus : child->id == id);
}

} // namespace ui

using namespace ui;

BOOL IsDialogMessageW(HWND dialog, MSG* message) {
    const WindowObject* object = LiveWindow(dialog);
    if (!object || !object->dialog || !IsInside(message->hwnd, dialog))
        return FALSE;
    if (message->message == WM_KEYDOWN && HandleKey(dialog, *message))
        return TRUE;
    if (message->message == WM_SYSKEYDOWN && IsLetterOrDigit(message->wParam) &&
        Mnemonic(dialog, ChildHolding(dialog, message->hwnd), static_cast<char16_t>(message->wParam)))
        return TRUE;
    TranslateMessage(message);
    DispatchMessageW(message);
    return TRUE;
}
