// Whether there is anyone to show a window to.
#pragma once

class QString;

namespace ui {

// Without a display nothing may wait for an answer: message boxes go to standard error, dialogs and pickers
// are cancelled at once. The host's window system is started to find out, unless it is running.
bool NoDisplay();
// For tests, whose platform shows nothing and yet is to be worked with: what NoDisplay says from now on.
void SetNoDisplay(bool noDisplay);

// Whether that platform of Qt is one on which nobody sees anything, be it the user's choice.
bool ShowsNothing(const QString& platform);

} // namespace ui
