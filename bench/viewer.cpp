// Prints what the record viewer's steps take with 65,535 records of ten properties, in seconds of processor
// time, medians of several runs: bench-viewer DIR. Makes the databases when the device has none.
#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <functional>

#include "app/application.h"
#include "app/start/mainwindow.h"
#include "platform/device.h"
#include "platform/text.h"
#include "platform/ui/core/testhooks.h"
#include "resources/resource.h"
#include "tools/sampledata/sampletable.h"
#include "viewer/recordviewer.h"

namespace {

constexpr int kRuns = 7;
constexpr int kRecords = 65535;
constexpr int kTexts = 5; // of a record's ten properties
constexpr UINT kMeasureTimer = 1;
const WCHAR* const kLarge = u"Large";
const WCHAR* const kSmall = u"Small";

bool MakeDatabase(const WCHAR* name, int records) {
    SampleTable table(name, 1, {{PropertyId(1, CEVT_I4), CEDB_SORT_DESCENDING}});
    for (int i = 0; i < records; ++i) {
        SampleRecord record;
        for (WORD number = 1; number <= kTexts; ++number)
            record.Number(PropertyId(number, CEVT_I4), i * 7919 % kRecords + number);
        for (WORD number = kTexts + 1; number <= 2 * kTexts; ++number) {
            WCHAR text[64];
            wsprintfW(text, u"entry %d of record %d", number, i);
            record.Text(PropertyId(number, CEVT_LPWSTR), text);
        }
        table.Add(record);
    }
    return table.Succeeded();
}

void HandleMessages() {
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}

double SecondsOf(const std::function<void()>& work) {
    const std::clock_t start = std::clock();
    work();
    HandleMessages(); // what the step leaves to be painted counts
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

void Print(const char* name, const std::function<void()>& before, const std::function<void()>& work) {
    std::array<double, kRuns> seconds = {};
    for (double& taken : seconds) {
        before();
        HandleMessages();
        taken = SecondsOf(work);
    }
    std::nth_element(seconds.begin(), seconds.begin() + kRuns / 2, seconds.end());
    std::printf("%s %.5f\n", name, seconds[kRuns / 2]);
}

RecordViewer* shown = nullptr;
std::clock_t opened = 0;

void MeasureSteps(RecordViewer& viewer) {
    const auto run = [&viewer](UINT command) {
        return [&viewer, command] { viewer.RunCommand(command, 0, nullptr); };
    };
    Print("next", run(IDM_RECORD_FIRST), run(IDM_RECORD_NEXT));
    Print("last", run(IDM_RECORD_FIRST), run(IDM_RECORD_LAST));
    Print("previous", run(IDM_RECORD_LAST), run(IDM_RECORD_PREVIOUS));
    Print("first", run(IDM_RECORD_LAST), run(IDM_RECORD_FIRST));
    Print("sort", run(IDM_SORT_UNSORTED), run(IDM_SORT_FIRST));
    CopyText(viewer.findText, u"nowhere to be found");
    Print("search", run(IDM_SORT_UNSORTED), run(IDM_EDIT_FIND_NEXT));
}

// Called by a timer from within the viewer's own loop, so the viewer is up.
LRESULT Measure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_TIMER || !shown->active)
        return DefWindowProcW(window, message, wParam, lParam);
    KillTimer(window, kMeasureTimer);
    HandleMessages();
    const bool large = lstrcmpW(shown->databaseName, kLarge) == 0;
    std::printf("%s %.5f\n", large ? "large" : "small",
                static_cast<double>(std::clock() - opened) / CLOCKS_PER_SEC);
    if (large)
        MeasureSteps(*shown);
    shown->Close(kViewerCancelled);
    return 0;
}

void View(HWND measure, const WCHAR* name) {
    RecordViewer viewer;
    shown = &viewer;
    SetTimer(measure, kMeasureTimer, 1, nullptr);
    opened = std::clock();
    RunRecordViewer(&viewer, App().mainWindow, name);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || !UseDevice(argv[1])) {
        std::fputs("usage: bench-viewer DIR\n", stderr);
        return 2;
    }
    CEOIDINFO any = {};
    const HANDLE databases = CeFindFirstDatabase(0);
    const bool there = CeOidGetInfo(CeFindNextDatabase(databases), &any);
    CloseHandle(databases);
    if (!there && (!MakeDatabase(kSmall, 1) || !MakeDatabase(kLarge, kRecords)))
        return 1;
    static char module;
    App().instance = reinterpret_cast<HINSTANCE>(&module);
    ui::TestHooks().messageBox = [](const ui::MessageBoxSeen&) {
        ui::AnswerMessageBox(IDOK);
    }; // that nothing was found
    WNDCLASSW measureClass = {};
    measureClass.lpfnWndProc = Measure;
    measureClass.lpszClassName = u"Measure";
    RegisterClassW(&measureClass);
    if (!RegisterMainWindowClass() || !CreateMainWindow())
        return 1;
    const HWND measure = CreateWindowExW(0, u"Measure", u"", WS_CHILD, 0, 0, 0, 0, App().mainWindow,
                                         ChildId(1), AppInstance(), nullptr);
    HandleMessages();
    View(measure, kSmall);
    View(measure, kSmall); // the first has warmed up what all viewers share
    View(measure, kLarge);
    return 0;
}
