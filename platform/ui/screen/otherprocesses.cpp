// What reaches this process from others on the same device: requests for its window, changes of the store.
#include <QSocketNotifier>
#include <QTimer>
#include <map>
#include <memory>
#include <unistd.h>

#include "platform/base/instance.h"
#include "platform/storage/watch.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

constexpr int kStorePollInterval = 200; // milliseconds

struct Announcement {
    std::unique_ptr<QSocketNotifier> notifier;
    int listener = -1;
};

std::map<HWND, Announcement>& Announcements() {
    static auto* announcements = new std::map<HWND, Announcement>;
    return *announcements;
}

// What FindWindowW claimed, until the window is made. By the class's folded name.
std::map<QString, int>& Claims() {
    static auto* claims = new std::map<QString, int>;
    return *claims;
}

// Stands for the window of another process; never in the registry, so that nothing else works on it.
struct ForeignWindow {
    WindowObject handle;
    std::u16string className;
};

ForeignWindow& Foreign() {
    static auto* foreign = new ForeignWindow;
    return *foreign;
}

} // namespace

bool ForegroundElsewhere(HWND window) {
    return window == &Foreign().handle && RequestForeground(Foreign().className.c_str());
}

void AnnounceWindow(HWND window) {
    const QString folded = window->windowClass->name.toCaseFolded();
    const auto claim = Claims().extract(folded);
    const int listener = claim ? claim.mapped() : ClaimWindow(folded.toStdU16String().c_str()).listener;
    if (listener < 0)
        return;
    Announcement& announcement = Announcements()[window];
    announcement.listener = listener;
    announcement.notifier = std::make_unique<QSocketNotifier>(listener, QSocketNotifier::Read);
    QObject::connect(announcement.notifier.get(), &QSocketNotifier::activated, [window, listener] {
        const ForegroundRequests requests = AcceptForegroundRequests(listener);
        if (requests.any)
            SetForegroundWindow(window);
        DropFiles(window, requests.documents);
    });
}

void WithdrawWindow(HWND window) {
    const auto found = Announcements().find(window);
    if (found == Announcements().end())
        return;
    // The notifier may be the one whose signal is being handled: it only must not fire again.
    found->second.notifier->setEnabled(false);
    found->second.notifier.release()->deleteLater();
    close(found->second.listener);
    Announcements().erase(found);
}

void WatchStore() {
    static QTimer* timer = nullptr;
    const bool wanted = StoreWatchWanted();
    if (wanted == (timer && timer->isActive()))
        return;
    if (!timer) {
        timer = new QTimer;
        QObject::connect(timer, &QTimer::timeout, [] { PollStoreChanges(); });
    }
    if (wanted)
        timer->start(kStorePollInterval);
    else
        timer->stop();
}

} // namespace ui

using namespace ui;

HWND FindWindowW(const WCHAR* className, const WCHAR* windowName) {
    const QString wantedClass = HostText(className);
    for (HWND window : TopLevelWindows()) {
        const bool classFits =
            !className || window->windowClass->name.compare(wantedClass, Qt::CaseInsensitive) == 0;
        if (classFits && (!windowName || window->text == HostText(windowName)))
            return window;
    }
    const QString folded = wantedClass.toCaseFolded();
    if (!className || windowName || Claims().contains(folded))
        return nullptr;
    Foreign().className = folded.toStdU16String();
    const WindowClaim claim = ClaimWindow(Foreign().className.c_str());
    if (claim.taken)
        return &Foreign().handle;
    if (claim.listener >= 0)
        Claims()[folded] = claim.listener;
    return nullptr;
}
