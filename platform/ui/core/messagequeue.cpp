#include "platform/ui/core/messagequeue.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <deque>

#include "platform/base/outofmemory.h"
#include "platform/datetime.h"
#include "platform/ui/core/keyboard.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/core/windowsystem.h"

namespace ui {

namespace {

// How often the host handles its events while messages are waiting.
constexpr qint64 kPumpInterval = 10; // milliseconds

struct Entry {
    MSG message{};
    std::unique_ptr<HostInput> input;
};

struct DispatchFrame {
    MSG message{};
    std::unique_ptr<HostInput> input;
    bool inputTaken = false;
    DispatchFrame* outer = nullptr;
};

struct Queue {
    std::deque<Entry> entries;
    DWORD lastInput = 0;
    // Input of the message last retrieved, until it is dispatched or the next one is retrieved.
    DWORD retrieved = 0;
    std::unique_ptr<HostInput> retrievedInput;
    DispatchFrame* dispatching = nullptr;
    int depth = 0;
    HWND replaying = nullptr;
    QElapsedTimer sincePump;
};

Queue& TheQueue() {
    static auto* queue = new Queue;
    return *queue;
}

bool Matches(const MSG& message, HWND window, UINT first, UINT last) {
    if (message.message == WM_QUIT)
        return true;
    if (window && !IsInside(message.hwnd, window))
        return false;
    return (first == 0 && last == 0) || (message.message >= first && message.message <= last);
}

bool Retrieve(MSG* message, HWND window, UINT first, UINT last, bool remove) {
    Queue& queue = TheQueue();
    for (auto entry = queue.entries.begin(); entry != queue.entries.end(); ++entry) {
        if (!Matches(entry->message, window, first, last))
            continue;
        *message = entry->message;
        if (remove) {
            queue.retrieved = entry->message.input;
            queue.retrievedInput = std::move(entry->input);
            queue.entries.erase(entry);
            if (queue.retrievedInput)
                NoteKeys(*queue.retrievedInput->event);
        }
        return true;
    }
    return false;
}

bool PumpedLately() {
    const Queue& queue = TheQueue();
    return queue.sincePump.isValid() && queue.sincePump.elapsed() < kPumpInterval;
}

} // namespace

void QueueInput(const MSG& message, std::unique_ptr<HostInput> input) {
    Queue& queue = TheQueue();
    Entry entry{message, std::move(input)};
    entry.message.time = GetTickCount();
    entry.message.input = ++queue.lastInput ? queue.lastInput : ++queue.lastInput;
    queue.entries.push_back(std::move(entry));
}

HostInput* LastQueuedInput(UINT message, const QWidget* receiver, MSG** entry) {
    Queue& queue = TheQueue();
    if (queue.entries.empty())
        return nullptr;
    Entry& last = queue.entries.back();
    if (last.message.message != message || !last.input || last.input->receiver != receiver)
        return nullptr;
    *entry = &last.message;
    return last.input.get();
}

void DropMessagesOf(HWND window) {
    std::erase_if(
        TheQueue().entries, [window](const Entry& entry) { return window && entry.message.hwnd == window; });
}

void DropTimerMessage(HWND window, UINT id) {
    std::erase_if(
        TheQueue().entries,
        [window, id](const Entry& entry) {
            return entry.message.hwnd == window && entry.message.message == WM_TIMER &&
                   entry.message.wParam == id;
        });
}

bool MessageQueued(HWND window, UINT message, WPARAM wParam) {
    for (const Entry& entry : TheQueue().entries)
        if (entry.message.hwnd == window && entry.message.message == message &&
            entry.message.wParam == wParam)
            return true;
    return false;
}

const MSG* FindQueued(UINT first, UINT last) {
    for (const Entry& entry : TheQueue().entries)
        if (entry.message.message >= first && entry.message.message <= last)
            return &entry.message;
    return nullptr;
}

void PumpHost(bool wait) {
    EnsureWindowSystem();
    Queue& queue = TheQueue();
    DeleteBuriedWidgets(queue.depth);
    if (queue.depth == 0)
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    kHigherFloors.agreeOnFocus();
    kHigherFloors.watchStore();
    const HWND replaying = queue.replaying;
    queue.replaying = nullptr;
    ++queue.depth;
    QCoreApplication::processEvents(wait ? QEventLoop::WaitForMoreEvents : QEventLoop::AllEvents);
    --queue.depth;
    queue.replaying = replaying;
    queue.sincePump.start();
}

int DispatchDepth() {
    return TheQueue().depth;
}

const MSG* CurrentMessage() {
    const Queue& queue = TheQueue();
    return queue.dispatching ? &queue.dispatching->message : nullptr;
}

HostInput* TakeCurrentInput(HWND window, UINT message) {
    DispatchFrame* frame = TheQueue().dispatching;
    if (!frame || !frame->input || frame->inputTaken || frame->message.hwnd != window ||
        frame->message.message != message)
        return nullptr;
    frame->inputTaken = true;
    return frame->input.get();
}

ReplayScope::ReplayScope(HWND window) : previous(TheQueue().replaying) {
    TheQueue().replaying = window;
}

ReplayScope::~ReplayScope() {
    TheQueue().replaying = previous;
}

HWND ReplayingWindow() {
    return TheQueue().replaying;
}

} // namespace ui

using namespace ui;

BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (window && !LiveWindow(window))
        return FALSE;
    return UnlessOutOfMemory<BOOL>(FALSE, [&] {
        TheQueue().entries.push_back({MSG{window, message, wParam, lParam, GetTickCount(), 0}, nullptr});
        return TRUE;
    });
}

void PostQuitMessage(int exitCode) {
    PostMessageW(nullptr, WM_QUIT, static_cast<WPARAM>(exitCode), 0);
}

BOOL GetMessageW(MSG* message, HWND window, UINT first, UINT last) {
    if (WindowSystemStarted() && !PumpedLately())
        PumpHost(false);
    while (!Retrieve(message, window, first, last, true))
        PumpHost(true);
    return message->message != WM_QUIT;
}

BOOL PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT remove) {
    const bool taken = remove & PM_REMOVE;
    if (Retrieve(message, window, first, last, taken))
        return TRUE;
    if (!WindowSystemStarted() || PumpedLately())
        return FALSE;
    PumpHost(false);
    return Retrieve(message, window, first, last, taken);
}

BOOL TranslateMessage(const MSG*) {
    // A key's text travels with the host event that the control is handed when the key reaches it.
    return FALSE;
}

LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const WindowObject* object = LiveWindow(window);
    if (!object)
        return 0;
    return UnlessOutOfMemory<LRESULT>(0, [&] { return object->procedure(window, message, wParam, lParam); });
}

LRESULT CallWindowProcW(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!procedure || !LiveWindow(window))
        return 0;
    return UnlessOutOfMemory<LRESULT>(0, [&] { return procedure(window, message, wParam, lParam); });
}

LRESULT DispatchMessageW(const MSG* message) {
    if (!message || !LiveWindow(message->hwnd))
        return 0;
    Queue& queue = TheQueue();
    DispatchFrame frame;
    frame.message = *message;
    frame.outer = queue.dispatching;
    if (message->input && message->input == queue.retrieved)
        frame.input = std::move(queue.retrievedInput);
    const HWND replaying = queue.replaying;
    queue.replaying = nullptr;
    queue.dispatching = &frame;
    ++queue.depth;
    const LRESULT result = SendMessageW(message->hwnd, message->message, message->wParam, message->lParam);
    --queue.depth;
    queue.dispatching = frame.outer;
    queue.replaying = replaying;
    return result;
}
