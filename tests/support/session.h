// A user's session with the whole program: what is tapped, typed and seen, through the real windows.
#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "tests/support/stylus.h"
#include "tests/support/testdevice.h"

// RunProgram starts the program with the user's steps beside it. Each step waits until its window takes
// input, and returns when everything that follows from it has happened. A message box, menu or picker that no
// step expects fails the test; a step that waits in vain ends it.
class Session : public testing::Test {
protected:
    Session();

    // Closes the main window after the last step.
    void RunProgram(const std::function<void()>& steps);

    // The window that steps act in from here on: the main window between two commands, or a dialog by its
    // template.
    void InMainWindow() { InWindow(0); }
    void InWindow(UINT templateId) { currentTemplate = templateId; }
    // It, once it takes input.
    HWND Window();
    HWND Control(int controlId) { return GetDlgItem(Window(), controlId); }
    std::u16string Text(int controlId) { return TextOf(Window(), controlId); }

    void Tap(int controlId);
    void TapTitleButton(); // OK, or the cross
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    void Type(const std::u16string& text); // where the focus is
    // Taps into an edit box, and types over what it holds.
    void TypeInto(int controlId, const std::u16string& text);
    void TapRow(int listId, const std::u16string& text);
    void TapRowTwice(int listId, const std::u16string& text);
    // Selects the row with that text by the arrow keys; the list has the focus.
    void SelectRow(int listId, const std::u16string& text);
    void TapHeader(int listId, const std::u16string& title);
    // "Tools/Options...", as Stylus::ChooseFromBar has it.
    void Choose(const std::u16string& path);
    // From the menu that opens where a row is held, or touched with the mouse's other button.
    void ChooseFromPopup(int listId, const std::u16string& rowText, const std::u16string& item);
    void ChooseByRightButton(int listId, const std::u16string& rowText, const std::u16string& item);
    void WaitFor(const std::function<bool()>& condition, const char* what);

    // What opens next, to be said before the step that opens it: a message box with this text, which gets
    // this answer; a picker, which is given this name, or cancelled when it is empty.
    void ExpectMessage(const std::u16string& text, int answer = IDOK) { stylus.ExpectBox(text, answer); }
    void PickToSave(const std::u16string& name) { stylus.ExpectPicker(true, name); }
    void PickToOpen(const std::u16string& name) { stylus.ExpectPicker(false, name); }

    static int SelectedRow(HWND list);
    // The text of the selected row's first column.
    std::u16string SelectedText(int listId);

    // From here on the help viewer writes down what it was to show; the second waits for that.
    void CatchHelp();
    std::string HelpShown();

    TestDevice device;
    Stylus stylus;

private:
    struct WaitedInVain {};

    HWND CurrentWindow() const;
    // Does one thing in the window, and lets everything follow that does.
    void Do(const std::function<void(HWND)>& act);
    void CloseEverything();

    UINT currentTemplate = 0;
    std::u16string helpViewer;
    std::map<const DLGTEMPLATE*, HWND> opened;
};
