#include "app/aboutdialog.h"

#include <cstdint>
#include <iterator>

#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "platform/files.h"
#include "platform/objectstore.h"
#include "platform/text.h"
#include "resources/resource.h"

namespace {

constexpr int kLineCapacity = 128;
constexpr int kSizeCapacity = 32;
constexpr int kBytesToKilobytes = 10; // bits to shift
constexpr std::uint64_t kUnitStep = 1024;

void ShowKilobytes(HWND dialog, int control, UINT formatId, DWORD bytes) {
    WCHAR format[kLineCapacity];
    WCHAR line[kLineCapacity];
    LoadText(formatId, format);
    wsprintfW(line, format, bytes >> kBytesToKilobytes);
    SetDlgItemTextW(dialog, control, line);
}

// "13.6 MB": with a decimal, in the largest unit of which there is at least one; "712 KB" below.
void FormatBytes(std::uint64_t bytes, WCHAR (&text)[kSizeCapacity]) {
    const WCHAR* const units[] = {u"MB", u"GB", u"TB"};
    std::uint64_t kilobytes = bytes >> kBytesToKilobytes;
    if (kilobytes < kUnitStep) {
        wsprintfW(text, u"%d KB", static_cast<int>(kilobytes));
        return;
    }
    const WCHAR* const* unit = units;
    for (; kilobytes >= kUnitStep * kUnitStep && unit != std::end(units) - 1; ++unit)
        kilobytes /= kUnitStep;
    const auto tenths = static_cast<int>(kilobytes * 10 / kUnitStep);
    wsprintfW(text, u"%d.%d %s", tenths / 10, tenths % 10, *unit);
}

// The memory above is counted as a handheld can; this is the disk that it really lies on.
void ShowDisk(HWND dialog, std::uint64_t used) {
    std::uint64_t available = 0;
    std::uint64_t total = 0;
    if (!GetDiskFreeSpaceExW(u"\\", &available, &total))
        return;
    WCHAR sizes[3][kSizeCapacity];
    FormatBytes(used, sizes[0]);
    FormatBytes(total, sizes[1]);
    FormatBytes(available, sizes[2]);
    WCHAR format[kLineCapacity];
    WCHAR line[kLineCapacity];
    LoadText(IDS_DISK_USE, format);
    wsprintfW(line, format, sizes[0], sizes[1], sizes[2]);
    SetDlgItemTextW(dialog, IDC_ABOUT_DISK, line);
}

void InitAbout(HWND dialog) {
    InitDialogFrame(dialog, kDoneButton);
    STORE_INFORMATION store = {};
    if (!GetStoreInformation(&store))
        return; // the template's own texts say so
    ShowKilobytes(dialog, IDC_ABOUT_AVAILABLE, IDS_AVAILABLE_MEMORY, store.dwStoreSize);
    ShowKilobytes(dialog, IDC_ABOUT_FREE, IDS_FREE_MEMORY, store.dwFreeSize);
    ShowDisk(dialog, store.dwStoreSize - store.dwFreeSize);
}

void OnAboutCommand(HWND dialog, UINT command) {
    switch (command) {
    case IDOK:
    case IDCANCEL:
        EndDialog(dialog, IDOK);
        break;
    }
}

LONG_PTR AboutProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, u"tarnwickscope.htm#tarnwickscope_help"))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        InitAbout(dialog);
        return TRUE;
    case WM_COMMAND:
        OnAboutCommand(dialog, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}

} // namespace

void ShowAboutDialog(HWND owner) {
    RunDialog(IDD_ABOUT, owner, AboutProcedure, 0);
}
