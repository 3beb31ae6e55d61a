// Files of the program's own that the user opens from outside: dropped on the window, or by a double click
// elsewhere.
#pragma once

#include "platform/shell.h"

// Offers to restore an archive or a saved registry, or to run an Autobackup script, by the files' extensions;
// other files are reported. While a command runs the files wait for its end. Takes over `dropped`.
void OpenDocuments(HWND mainWindow, HDROP dropped);
