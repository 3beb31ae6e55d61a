// The progress of a long operation, with a Cancel button that asks before it takes effect at the next Pump.
// While the settings' noProgress is set an operation makes none, and shows a WaitCursor instead.
#pragma once

#include <chrono>

#include "platform/window.h"

class ProgressDialog {
public:
    ProgressDialog(UINT confirmString, UINT titleString, int initialRange);
    virtual ~ProgressDialog();
    ProgressDialog(const ProgressDialog&) = delete;
    ProgressDialog& operator=(const ProgressDialog&) = delete;

    // Shown at once. False: it cannot be made.
    bool Create(HWND owner);
    // The bar gets n steps and goes back to its start.
    void SetRange(int n);
    // The line becomes the format filled with the argument (a database name, or another text of fewer than
    // MAX_PATH characters), the position and range - 1. Position kNextPosition: one more than before.
    void SetText(UINT formatString, int newPosition, const WCHAR* argument);
    // The line becomes this text, of fewer than MAX_PATH characters.
    void SetLine(const WCHAR* text);
    // The bar goes on by one step.
    void Step();
    // From here on the user cannot cancel.
    void DisableCancel();
    // Shows what still waits for its turn: for before a step that may take long.
    void ShowWaitingText();
    // Dispatches every waiting message; false once the user has cancelled or the program is to end.
    bool Pump();

    static constexpr int kNextPosition = -1;

    HWND window = nullptr;
    DWORD cancelled = 0; // set by the user's Yes, and when the program is to end; never cleared
    UINT confirmString;
    UINT titleString;
    int range;        // steps; the item count shown is range - 1
    int position = 0; // current step

private:
    static LONG_PTR Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    void Init(HWND dialog);
    void AskToCancel();
    void ShowLater();
    void ShowNow();
    void ShowLine();
    void DispatchWaiting();
    bool IsDue() const;

    // Showing every step of a long walk would cost more than the walk itself, so a line waits here until it
    // is due, and messages are looked for as often: many times a second, which the eye and the stylus cannot
    // tell from always.
    UINT lineFormat = 0; // 0: the argument itself is the line
    WCHAR lineArgument[MAX_PATH] = {};
    bool lineWaits = false;
    int barPosition = 0;
    bool waits = false; // the line or the bar
    DWORD shownAt = 0;  // tick counts
    DWORD pumpedAt = 0;
    std::chrono::steady_clock::time_point createdAt;
    std::chrono::steady_clock::duration showing{0}; // spent on it so far
};
