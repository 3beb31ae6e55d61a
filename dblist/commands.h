// The main window's commands, and the state of its menus.
#pragma once

#include "platform/types.h"

// While one lives a command runs: `idle` is clear, and the menus are brought up to date at its end. One
// command may be chosen while another shows its progress, and does not leave the window free to close.
class CommandFrame {
public:
    CommandFrame();
    ~CommandFrame();
    CommandFrame(const CommandFrame&) = delete;
    CommandFrame& operator=(const CommandFrame&) = delete;

private:
    BYTE idleBefore;
};

// Runs a command by its id.
void RunMainCommand(HWND mainWindow, UINT command);
// Greys and checks the items of the menu (null: the menu bar's) and the bar's buttons by the list's
// selection, view and order.
void UpdateMainMenu(HMENU menu);
