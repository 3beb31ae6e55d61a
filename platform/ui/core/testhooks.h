// Called when something modal opens, before its message loop starts, so that a test can answer it. All empty
// in the program itself.
#pragma once

#include <functional>
#include <string>

#include "platform/dialog.h"

class QMenu;
class QMimeData;
class QWidget;

namespace ui {

struct MessageBoxSeen {
    std::u16string text;
    std::u16string caption;
    UINT style;
    HWND window;
};

struct DialogSeen {
    const DLGTEMPLATE* dialogTemplate;
    HWND window;
    bool modal; // modeless dialogs are told of too
};

struct PickerSeen {
    bool save;
    std::u16string proposedName;
    QWidget* widget;
};

struct ModalHooks {
    std::function<void(const MessageBoxSeen&)> messageBox;
    std::function<void(const DialogSeen&)> dialog;
    std::function<void(const PickerSeen&)> picker;
    std::function<void(QMenu*)> menu; // a tracked or dropped-down menu
    // What is dragged; stands for the host's own drag, where no other program can take part.
    std::function<void(const QMimeData&)> drag;
};
ModalHooks& TestHooks();

// Ends the innermost message box as if that button had been pressed.
void AnswerMessageBox(int button);

} // namespace ui
