// The user of a test: taps, types, chooses from menus and answers what opens, all through the host's own
// event path. A message box, dialog, menu or picker that the test did not expect fails it and is closed
// safely.
#pragma once

#include <QPoint>
#include <QPointer>
#include <Qt>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/dialog.h"
#include "platform/ui/core/testhooks.h"

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
    // The row with that text in its first column; its label is tapped.
    void TapRow(HWND list, const std::u16string& text);
    void TapRowTwice(HWND list, const std::u16string& text);
    // Presses on that row and moves so far before the button is released.
    void DragRow(HWND list, const std::u16string& text, QPoint distance);
    // The column with that title.
    void TapHeader(HWND list, const std::u16string& title);
    // From the bar: "Tools/Options...", "View/Sort By/Unsorted", or the name of a button that is a command.
    void ChooseFromBar(HWND window, const std::u16string& path);
    // Holds a row until its menu opens.
    void ChooseFromPopup(HWND list, const std::u16string& rowText, const std::u16string& item);
    // The same with the mouse's other button.
    void ChooseByRightButton(HWND list, const std::u16string& rowText, const std::u16string& item);
    void Resize(int width, int height); // the display
    void CloseDisplay();                // by the host's own means

    // ---- expecting, in the order in which things open ----
    // Answered by a tap on that button.
    void ExpectBox(const std::u16string& text, int answer);
    // Types the name and accepts; an empty name cancels.
    void ExpectPicker(bool save, const std::u16string& name);

    // ---- the program's own loop ----
    // Runs the program, a call that has a message loop in it, with the steps beside it. The steps make it
    // end; when they do not, the test fails and every window goes.
    void Beside(const std::function<void()>& program, std::function<void()> steps);

    // ---- waiting ----
    // Dispatches messages until the condition holds; false, and a failed test, after twenty seconds.
    bool WaitFor(const std::function<bool()>& condition, const char* what);
    // Everything that is due has happened.
    void Settle();
    // What was expected and has opened so far has its answer.
    bool AllAnswered() const { return answering == 0; }

private:
    enum class Kind { Box, Menu, Picker };
    struct Expected {
        Kind kind;
        std::u16string text;
        int number = 0; // answer, or whether to save
    };

    // For what opens a menu itself: what the item is to open is expected already.
    void ExpectMenuFirst(const std::u16string& item);
    // What was expected first, if that fits; otherwise nothing, and a failed test.
    std::optional<Expected> Take(Kind kind, const std::string& what,
                                 const std::function<bool(const Expected&)>& fits);
    void BoxOpened(const ui::MessageBoxSeen& box);
    void MenuOpened(QMenu* menu);
    void PickerOpened(const ui::PickerSeen& picker);
    void ChooseItem(QMenu* menu, const std::u16string& item);
    void FinishPicker(QWidget* picker, const std::u16string& name);
    void Answer(std::function<void()> act);
    QPoint RowPoint(HWND list, const std::u16string& text);
    std::string Waiting() const;

    std::deque<Expected> expected;
    int opened = 0;
    int answering = 0;
};

std::u16string TextOf(HWND window);
std::u16string TextOf(HWND dialog, int controlId);
std::u16string CellText(HWND list, int row, int column);
std::vector<std::u16string> ColumnTexts(HWND list, int column);
// The sort arrow that the header shows beside a column's title, by what is drawn there.
enum class HeaderArrow { None, Up, Down };
HeaderArrow ArrowBeside(HWND list, const std::u16string& title);
