// A user's session with the whole program: what is tapped, typed and seen, in order, through the real
// windows.
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "platform/ui/testhooks.h"
#include "platform/window.h"
#include "tests/support/testdevice.h"

// Steps are queued first; RunProgram then starts the program, takes each step as soon as its window is up and
// takes input, and closes the main window after the last. A message box or a dialog that no step expects
// fails the test.
class UserSession : public testing::Test {
protected:
    UserSession();
    ~UserSession() override;

    // The window that steps act in from here on: the main window, or a dialog by its template.
    void InMainWindow() { InWindow(0); }
    void InWindow(UINT templateId) { currentTemplate = templateId; }

    // One thing that the user does, or sees.
    void Do(std::function<void(HWND)> act);
    void Tap(int controlId);
    void TapTitleButton(); // OK, or the cross
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    void Type(const char* text); // where the focus is
    // Types over what an edit box holds.
    void TypeInto(int controlId, const char* text);
    // Selects the row with that text in the first column of a list view, as a tap on it does.
    void TapRow(int listId, const std::u16string& text);
    // A command of a menu.
    void Choose(UINT command);
    // Waits until something has come true.
    void WaitFor(std::function<bool(HWND)> condition);
    // The next message box has this text and gets this answer. To be queued before the step that brings it
    // up.
    void ExpectMessage(std::u16string text, int answer = IDOK);
    // The next picker is given this name, or cancelled when it is empty.
    void PickName(const char* name);

    void RunProgram();

    static std::u16string Text(HWND dialog, int controlId);
    static std::u16string RowText(HWND list, int row, int column);
    static std::vector<std::u16string> Column(HWND list, int column);
    static int SelectedRow(HWND list);

    TestDevice device;

private:
    struct Step {
        UINT templateId;
        std::function<bool(HWND)> act; // false: not yet, try again
    };

    HWND WindowOf(UINT templateId) const;
    void Go();
    void MessageBoxOpened(const MessageBoxSeen& seen);
    void DialogOpened(const DialogSeen& seen);
    void GiveUp();

    UINT currentTemplate = 0;
    std::deque<Step> steps;
    std::deque<std::pair<std::u16string, int>> messages;
    std::deque<std::string> names;
    std::map<const DLGTEMPLATE*, HWND> opened;
    QElapsedTimer sinceStep;
    bool gaveUp = false;
};
