// The main window's commands, and the state of its menus.
#pragma once

#include "platform/types.h"

// Runs a command by its id; `idle` is clear meanwhile, and the menus are brought up to date at the end.
void RunMainCommand(HWND mainWindow, UINT command);
// Greys and checks the items of the menu (null: the menu bar's) and the bar's buttons by the list's
// selection, view and order.
void UpdateMainMenu(HMENU menu);
