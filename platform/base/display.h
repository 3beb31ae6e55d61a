// Whether there is anyone to show a window to.
#pragma once

// Without a display nothing may wait for an answer: message boxes go to standard error, dialogs and pickers
// are cancelled at once. False until set.
bool NoDisplay();
void SetNoDisplay(bool noDisplay);

// Looks for a display that answers. Where there is none, sets Qt's offscreen platform and NoDisplay; a
// platform that the environment names for Qt is left as it is and counts as a display. Called before Qt
// starts.
void ChooseDisplay();
