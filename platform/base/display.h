// Whether there is anyone to show a window to.
#pragma once

// Without a display nothing may wait for an answer: message boxes go to standard error, dialogs and pickers
// are cancelled at once. The host's window system is started to find out, unless it is running. A platform
// of Qt that shows nothing is none, even when the user chose it.
bool NoDisplay();
// For tests, whose platform shows nothing and yet is to be worked with: what NoDisplay says from now on.
void SetNoDisplay(bool noDisplay);
