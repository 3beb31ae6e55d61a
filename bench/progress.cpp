// Prints what showing progress adds to a restore, as a share of the whole processor time, and the longest
// time between two looks at what the user does, in seconds: bench-progress DIR ARCHIVE
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>

#include "app/application.h"
#include "app/start/mainwindow.h"
#include "backup/restore.h"
#include "platform/device.h"

namespace {

constexpr int kRuns = 3;
constexpr UINT kTimer = 1;
constexpr DWORD kTimerInterval = 10; // milliseconds

double longestPause = 0;

// A timer of our own comes through whenever the restore looks for messages.
LRESULT Watch(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    using Clock = std::chrono::steady_clock;
    static Clock::time_point last = Clock::now();
    if (message == WM_TIMER) {
        const Clock::time_point now = Clock::now();
        longestPause = std::max(longestPause, std::chrono::duration<double>(now - last).count());
        last = now;
    } else if (message == WM_USER) {
        last = Clock::now();
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

double SecondsOfRestore(HWND watch, const WCHAR* archive, bool showProgress) {
    App().settings->noProgress = !showProgress;
    if (showProgress) {
        SendMessageW(watch, WM_USER, 0, 0);
        SetTimer(watch, kTimer, kTimerInterval, nullptr);
    }
    const std::clock_t start = std::clock();
    RestoreCommand(nullptr, archive);
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    KillTimer(watch, kTimer);
    return seconds;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3 || !UseDevice(argv[1])) {
        std::fputs("usage: bench-progress DIR ARCHIVE\n", stderr);
        return 2;
    }
    static char module;
    App().instance = reinterpret_cast<HINSTANCE>(&module);
    WNDCLASSW watchClass = {};
    watchClass.lpfnWndProc = Watch;
    watchClass.lpszClassName = u"Watch";
    RegisterClassW(&watchClass);
    if (!RegisterMainWindowClass() || !CreateMainWindow())
        return 1;
    const HWND watch = CreateWindowExW(0, u"Watch", u"", WS_CHILD, 0, 0, 0, 0, App().mainWindow, ChildId(1),
                                       AppInstance(), nullptr);
    App().settings->interactive = 0; // no questions
    const std::string name = argv[2];
    const std::u16string archive(name.begin(), name.end());
    std::array<double, kRuns> without = {};
    std::array<double, kRuns> with = {};
    for (int run = 0; run < kRuns; ++run) {
        without[run] = SecondsOfRestore(watch, archive.c_str(), false);
        with[run] = SecondsOfRestore(watch, archive.c_str(), true);
    }
    std::sort(without.begin(), without.end());
    std::sort(with.begin(), with.end());
    const double whole = with[kRuns / 2];
    std::printf("share %.4f\npause %.4f\n", std::max(0.0, whole - without[kRuns / 2]) / whole, longestPause);
    return 0;
}
