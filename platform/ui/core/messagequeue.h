// The one queue: posted messages, timers and input in the order in which they came.
#pragma once

#include <QEvent>
#include <QPointer>
#include <QWidget>
#include <memory>

#include "platform/window.h"

namespace ui {

// A host event that became a message, and the widget that it was meant for.
struct HostInput {
    std::unique_ptr<QEvent> event;
    QPointer<QWidget> receiver;
};

void QueueInput(const MSG& message, std::unique_ptr<HostInput> input);
// The input that waits at the end of the queue, if it is of that message and widget; null otherwise. For
// joining pointer moves.
HostInput* LastQueuedInput(UINT message, const QWidget* receiver, MSG** entry);
// Nothing for that window is left in the queue.
void DropMessagesOf(HWND window);
void DropTimerMessage(HWND window, UINT id);
bool MessageQueued(HWND window, UINT message, WPARAM wParam);
// The first waiting message of those kinds, whatever its window; null when none waits.
const MSG* FindQueued(UINT first, UINT last);

// Lets the host do what is due: input, painting, timers. Waits for something when asked to.
void PumpHost(bool wait);
// Calls of DispatchMessageW that are on the stack, and pumping inside them.
int DispatchDepth();

// The message being dispatched, null outside.
const MSG* CurrentMessage();
// The host event behind the message being dispatched, once: null when it has none, or was handed out before.
HostInput* TakeCurrentInput(HWND window, UINT message);

// The host event is handed to its widget again with the filter off, until this goes.
class ReplayScope {
public:
    explicit ReplayScope(HWND window);
    ~ReplayScope();
    ReplayScope(const ReplayScope&) = delete;
    ReplayScope& operator=(const ReplayScope&) = delete;

private:
    HWND previous;
};
// The window whose input is being handed to its widget right now, null for none.
HWND ReplayingWindow();

} // namespace ui
