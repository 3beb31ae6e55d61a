// The user of a test: taps, types, chooses from menus and answers what opens, all through the host's own
// event path. A message box, dialog, menu or picker that the test did not expect fails it and is closed
// safely.
#pragma once

#include <QPoint>
#include <QPointer>
#include <Qt>
#include <deque>
#include <functional>
#include <set>
#include <string>

#include "platform/dialog.h"
#include "platform/ui/testhooks.h"

class QMenu;
class QWidget;

class Stylus {
public:
    Stylus();
    ~Stylus(); // fails the test when something expected has not opened
    Stylus(const Stylus&) = delete;
    Stylus& operator=(const Stylus&) = delete;

    // ---- doing ----
    void Tap(HWND window, QPoint clientPoint);
    void Tap(HWND dialog, int controlId);
    void TapTwice(HWND window, QPoint clientPoint);
    void TapAndHold(HWND window, QPoint clientPoint); // until something opens or half a second is over
    void TapRight(HWND window, QPoint clientPoint);
    void TapTitleButton(); // OK or the cross
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void Type(const std::u16string& text);
    // Opens the bar's popup by its mnemonic and chooses from it; `item` as ExpectMenu has it.
    void ChooseFromBar(char16_t mnemonic, const std::u16string& item);
    void Resize(int width, int height); // the display

    // ---- expecting, in the order in which things open ----
    // Answered by a tap on that button.
    void ExpectBox(const std::u16string& text, int answer);
    // `act` runs beside the dialog's loop; it ends the dialog or makes it end. Without one it is cancelled.
    void ExpectDialog(int templateId, std::function<void(HWND)> act = nullptr);
    // Modeless dialogs that may come and go unseen, such as a progress display.
    void AllowDialog(int templateId);
    // Chooses the item with that text, without its mnemonic and accelerator; "Sort By/Unsorted" for a
    // submenu.
    void ExpectMenu(const std::u16string& item);
    // Types the name and accepts; an empty name cancels.
    void ExpectPicker(bool save, const std::u16string& name);

    // ---- the program's own loop ----
    // Runs the program, a call that has a message loop in it, with the steps beside it. The steps make it
    // end.
    void Beside(const std::function<void()>& program, std::function<void()> steps);

    // ---- waiting ----
    // Dispatches messages until the condition holds; false, and a failed test, after twenty seconds.
    bool WaitFor(const std::function<bool()>& condition, const char* what);
    // Everything that is due has happened.
    void Settle();

private:
    enum class Kind { Box, Dialog, Menu, Picker };
    struct Expected {
        Kind kind;
        std::u16string text;
        int number = 0; // answer, template, or whether to save
        std::function<void(HWND)> act;
    };

    bool Take(Kind kind, const std::function<bool(const Expected&)>& fits, Expected& taken);
    void BoxOpened(const MessageBoxSeen& box);
    void DialogOpened(const DialogSeen& dialog);
    void MenuOpened(QMenu* menu);
    void PickerOpened(const PickerSeen& picker);
    void ChooseItem(QMenu* menu, const std::u16string& item);
    void FinishPicker(QWidget* picker, const std::u16string& name);
    std::string Waiting() const;

    std::deque<Expected> expected;
    std::set<int> allowed;
    int opened = 0;
};

std::u16string TextOf(HWND window);
std::u16string TextOf(HWND dialog, int controlId);
