// Prints what rebuilding and sorting the main window's list takes, in seconds of processor time, the median
// of several runs: bench-list DIR
#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

#include "app/application.h"
#include "app/start/mainwindow.h"
#include "dblist/databaselist.h"
#include "lists/listsort.h"
#include "platform/device.h"

namespace {

constexpr int kRuns = 7;

void HandleMessages() {
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}

template <typename Work>
void Print(const char* name, Work work) {
    std::array<double, kRuns> seconds = {};
    for (double& taken : seconds) {
        const std::clock_t start = std::clock();
        work();
        HandleMessages(); // what the step leaves to be painted counts
        taken = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    }
    std::nth_element(seconds.begin(), seconds.begin() + kRuns / 2, seconds.end());
    std::printf("%s %.4f\n", name, seconds[kRuns / 2]);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || !UseDevice(argv[1])) {
        std::fputs("usage: bench-list DIR\n", stderr);
        return 2;
    }
    static char module;
    App().instance = reinterpret_cast<HINSTANCE>(&module);
    if (!RegisterMainWindowClass() || !CreateMainWindow())
        return 1;
    HandleMessages();
    std::printf("rows %d\n", DatabaseRowCount());
    Print("rebuild", RebuildDatabaseList);
    Print(
        "name", [] { SortByColumn(kNameColumn); });
    Print(
        "size", [] { SortByColumn(kSizeColumn); });
    Print("date", [] { SortByColumn(kDateColumn); });
    return 0;
}
