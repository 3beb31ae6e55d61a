#include "platform/ui/core/keyboard.h"

#include <QKeyEvent>
#include <array>

namespace ui {

namespace {

struct KeyPair {
    int host;
    UINT virtualKey;
};

// HostKeyOf takes a virtual key's first entry.
constexpr std::array kKeys = {
    KeyPair{Qt::Key_Backspace, VK_BACK},  KeyPair{Qt::Key_Tab, VK_TAB},
    KeyPair{Qt::Key_Backtab, VK_TAB},     KeyPair{Qt::Key_Return, VK_RETURN},
    KeyPair{Qt::Key_Enter, VK_RETURN},    KeyPair{Qt::Key_Shift, VK_SHIFT},
    KeyPair{Qt::Key_Control, VK_CONTROL}, KeyPair{Qt::Key_Alt, VK_MENU},
    KeyPair{Qt::Key_Escape, VK_ESCAPE},   KeyPair{Qt::Key_Space, VK_SPACE},
    KeyPair{Qt::Key_PageUp, VK_PRIOR},    KeyPair{Qt::Key_PageDown, VK_NEXT},
    KeyPair{Qt::Key_End, VK_END},         KeyPair{Qt::Key_Home, VK_HOME},
    KeyPair{Qt::Key_Left, VK_LEFT},       KeyPair{Qt::Key_Up, VK_UP},
    KeyPair{Qt::Key_Right, VK_RIGHT},     KeyPair{Qt::Key_Down, VK_DOWN},
    KeyPair{Qt::Key_Insert, VK_INSERT},   KeyPair{Qt::Key_Delete, VK_DELETE},
    KeyPair{Qt::Key_Menu, VK_APPS},
};

constexpr int kFunctionKeys = 12;

} // namespace

bool IsLetterOrDigit(WPARAM key) {
    return (key >= '0' && key <= '9') || (key >= 'A' && key <= 'Z');
}

UINT VirtualKeyOf(int hostKey) {
    if (IsLetterOrDigit(static_cast<WPARAM>(hostKey)))
        return static_cast<UINT>(hostKey);
    if (hostKey >= Qt::Key_F1 && hostKey < Qt::Key_F1 + kFunctionKeys)
        return VK_F1 + static_cast<UINT>(hostKey - Qt::Key_F1);
    for (const KeyPair& pair : kKeys)
        if (pair.host == hostKey)
            return pair.virtualKey;
    return 0;
}

int HostKeyOf(UINT virtualKey) {
    if (IsLetterOrDigit(virtualKey))
        return static_cast<int>(virtualKey);
    if (virtualKey >= VK_F1 && virtualKey < VK_F1 + kFunctionKeys)
        return Qt::Key_F1 + static_cast<int>(virtualKey - VK_F1);
    for (const KeyPair& pair : kKeys)
        if (pair.virtualKey == virtualKey)
            return pair.host;
    return 0;
}

KeyboardState& Keyboard() {
    static KeyboardState state;
    return state;
}

void NoteKeys(const QEvent& event) {
    KeyboardState& keys = Keyboard();
    if (event.isInputEvent())
        keys.modifiers = static_cast<const QInputEvent&>(event).modifiers();
    if (event.type() != QEvent::KeyPress && event.type() != QEvent::KeyRelease)
        return;
    const int key = static_cast<const QKeyEvent&>(event).key();
    const Qt::KeyboardModifier own = key == Qt::Key_Shift     ? Qt::ShiftModifier
                                     : key == Qt::Key_Control ? Qt::ControlModifier
                                     : key == Qt::Key_Alt     ? Qt::AltModifier
                                                              : Qt::NoModifier;
    keys.modifiers.setFlag(own, event.type() == QEvent::KeyPress);
    // Done here, because the menu bar never sees a key that a dialog or an accelerator takes.
    if (key != Qt::Key_Alt)
        keys.altAlone = false;
}

} // namespace ui

using namespace ui;

std::int16_t GetKeyState(int virtualKey) {
    const Qt::KeyboardModifier modifier = virtualKey == static_cast<int>(VK_SHIFT)     ? Qt::ShiftModifier
                                          : virtualKey == static_cast<int>(VK_CONTROL) ? Qt::ControlModifier
                                          : virtualKey == static_cast<int>(VK_MENU)    ? Qt::AltModifier
                                                                                       : Qt::NoModifier;
    return modifier != Qt::NoModifier && Keyboard().modifiers.testFlag(modifier) ? std::int16_t{-128}
                                                                                 : std::int16_t{0};
}
