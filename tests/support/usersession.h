// A user's session with the whole program: what is tapped, typed and seen, in order, through the real
// windows.
#pragma once

#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "tests/support/stylus.h"
#include "tests/support/testdevice.h"

// Steps are queued first; RunProgram then starts the program, takes each step as soon as its window is up and
// takes input, and closes the main window after the last. A message box, menu or picker that no step expects
// fails the test.
class UserSession : public testing::Test {
protected:
    UserSession();

    // The window that steps act in from here on: the main window, or a dialog by its template.
    void InMainWindow() { InWindow(0); }
    void InWindow(UINT templateId) { currentTemplate = templateId; }

    // One thing that the user does, or sees.
    void Do(std::function<void(HWND)> act);
    void Tap(int controlId);
    void TapTitleButton(); // OK, or the cross
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    void Type(std::u16string text); // where the focus is
    // Types over what an edit box holds.
    void TypeInto(int controlId, std::u16string text);
    // Selects the row with that text in the first column of a list view.
    void TapRow(int listId, const std::u16string& text);
    // Touches that row where it stands, with all that a touch brings about.
    void TouchRow(int listId, const std::u16string& text);
    // A command of a menu.
    void Choose(UINT command);
    // Waits until something has come true.
    void WaitFor(std::function<bool(HWND)> condition);
    // What opens next, to be said before the step that opens it: a message box with this text, which gets
    // this answer; a picker, which is given this name, or cancelled when it is empty.
    void ExpectMessage(const std::u16string& text, int answer = IDOK) { stylus.ExpectBox(text, answer); }
    void PickToSave(const std::u16string& name) { stylus.ExpectPicker(true, name); }
    void PickToOpen(const std::u16string& name) { stylus.ExpectPicker(false, name); }

    void RunProgram();

    static std::u16string Text(HWND dialog, int controlId) { return TextOf(dialog, controlId); }
    static std::u16string RowText(HWND list, int row, int column);
    static std::vector<std::u16string> Column(HWND list, int column);
    static int SelectedRow(HWND list);

    TestDevice device;
    Stylus stylus;

private:
    struct Step {
        UINT templateId;
        std::function<bool(HWND)> act; // false: not yet, try again
    };

    HWND WindowOf(UINT templateId) const;
    static int RowOf(HWND list, const std::u16string& text); // -1, and a failed test, for none
    bool Take(const Step& step);
    void TakeSteps();

    UINT currentTemplate = 0;
    std::deque<Step> steps;
    std::map<const DLGTEMPLATE*, HWND> opened;
};
