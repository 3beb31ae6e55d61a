// Timers: each is a host timer that posts WM_TIMER, once at a time.
#include <QTimer>
#include <map>
#include <memory>

#include "platform/base/outofmemory.h"
#include "platform/ui/core/messagequeue.h"
#include "platform/ui/core/windowcore.h"

namespace ui {

namespace {

using TimerKey = std::pair<HWND, UINT>;

std::map<TimerKey, std::unique_ptr<QTimer>>& Timers() {
    static auto* timers = new std::map<TimerKey, std::unique_ptr<QTimer>>;
    return *timers;
}

UINT StartTimer(HWND window, UINT id, DWORD milliseconds) {
    std::unique_ptr<QTimer>& timer = Timers()[{window, id}];
    if (!timer) {
        timer = std::make_unique<QTimer>();
        QObject::connect(timer.get(), &QTimer::timeout, timer.get(), [window, id] {
            if (!MessageQueued(window, WM_TIMER, id))
                PostMessageW(window, WM_TIMER, id, 0);
        });
    }
    timer->start(static_cast<int>(std::min<DWORD>(milliseconds, 0x7FFFFFFF)));
    return id ? id : 1;
}

} // namespace

void KillTimersOf(HWND window) {
    auto& timers = Timers();
    for (auto timer = timers.lower_bound({window, 0});
         timer != timers.end() && timer->first.first == window;) {
        const UINT id = timer->first.second;
        ++timer;
        KillTimer(window, id);
    }
}

} // namespace ui

using namespace ui;

UINT SetTimer(HWND window, UINT id, DWORD milliseconds, void*) {
    if (!LiveWindow(window))
        return 0;
    return UnlessOutOfMemory<UINT>(0, [&] { return StartTimer(window, id, milliseconds); });
}

BOOL KillTimer(HWND window, UINT id) {
    const auto found = Timers().find({window, id});
    if (found == Timers().end())
        return FALSE;
    Timers().erase(found);
    DropTimerMessage(window, id);
    return TRUE;
}
