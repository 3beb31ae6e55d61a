#include "app/progressdialog.h"

#include "app/application.h"
#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "platform/datetime.h"
#include "platform/text.h"
#include "resources/resource.h"

namespace {

constexpr int kFormatCapacity = 256;
constexpr DWORD kShowInterval = 60; // milliseconds
constexpr DWORD kPumpInterval = 20;
constexpr int kLeastShare = 100; // showing may take this part of the time in any case

} // namespace

ProgressDialog::ProgressDialog(UINT confirm, UINT title, int initialRange)
    : confirmString(confirm), titleString(title), range(initialRange) {}

ProgressDialog::~ProgressDialog() {
    if (window)
        DestroyWindow(window);
}

bool ProgressDialog::Create(HWND owner) {
    const DLGTEMPLATE* dialogTemplate = FindDialogTemplate(IDD_PROGRESS);
    if (!dialogTemplate)
        return false;
    window = CreateDialogIndirectParamW(AppInstance(), dialogTemplate, owner, Procedure,
                                        reinterpret_cast<LPARAM>(this));
    if (!window)
        return false;
    createdAt = std::chrono::steady_clock::now();
    ShowWindow(window, SW_SHOWNORMAL);
    UpdateWindow(window);
    return true;
}

void ProgressDialog::SetRange(int n) {
    range = n;
    barPosition = 0;
    SendDlgItemMessageW(window, IDC_PROGRESS_BAR, PBM_SETRANGE32, 0, n);
    SendDlgItemMessageW(window, IDC_PROGRESS_BAR, PBM_SETSTEP, 1, 0);
    SendDlgItemMessageW(window, IDC_PROGRESS_BAR, PBM_SETPOS, 0, 0);
}

void ProgressDialog::SetText(UINT formatString, int newPosition, const WCHAR* argument) {
    position = newPosition == kNextPosition ? position + 1 : newPosition;
    barPosition = position + 1;
    lineFormat = formatString;
    CopyText(lineArgument, argument);
    lineWaits = true;
    ShowLater();
}

void ProgressDialog::SetLine(const WCHAR* text) {
    lineFormat = 0;
    CopyText(lineArgument, text);
    lineWaits = true;
    ShowLater();
}

void ProgressDialog::Step() {
    ++barPosition;
    ShowLater();
}

void ProgressDialog::DisableCancel() {
    EnableWindow(GetDlgItem(window, IDCANCEL), FALSE);
}

void ProgressDialog::ShowLater() {
    waits = true;
    if (IsDue())
        ShowNow();
}

// A line is shown at once while that takes little of the time, for nobody knows how long the next step takes.
bool ProgressDialog::IsDue() const {
    return GetTickCount() - shownAt >= kShowInterval ||
           showing * kLeastShare <= std::chrono::steady_clock::now() - createdAt;
}

void ProgressDialog::ShowWaitingText() {
    if (waits)
        ShowNow();
}

void ProgressDialog::ShowNow() {
    const auto begin = std::chrono::steady_clock::now();
    if (lineWaits)
        ShowLine();
    SendDlgItemMessageW(window, IDC_PROGRESS_BAR, PBM_SETPOS, static_cast<WPARAM>(barPosition), 0);
    UpdateWindow(window);
    lineWaits = waits = false;
    shownAt = GetTickCount();
    showing += std::chrono::steady_clock::now() - begin;
}

void ProgressDialog::ShowLine() {
    WCHAR format[kFormatCapacity];
    WCHAR line[kFormatCapacity + MAX_PATH];
    if (lineFormat) {
        LoadText(lineFormat, format);
        wsprintfW(line, format, lineArgument, position, range - 1);
    }
    SetDlgItemTextW(window, IDC_PROGRESS_TEXT, lineFormat ? line : lineArgument);
}

void ProgressDialog::DispatchWaiting() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            // It is meant for the program's own loop, which the operation ends early to get back to.
            cancelled = 1;
            PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        if (IsDialogMessageW(window, &message))
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

bool ProgressDialog::Pump() {
    const DWORD now = GetTickCount();
    if (now - pumpedAt >= kPumpInterval) {
        if (IsDue())
            ShowWaitingText();
        DispatchWaiting();
        pumpedAt = GetTickCount();
    }
    return !cancelled;
}

void ProgressDialog::Init(HWND dialog) {
    InitDialogFrame(dialog, kNoButtons);
    WCHAR title[kFormatCapacity];
    LoadText(titleString, title);
    SetFrameTitle(dialog, title);
    SetWindowTextW(dialog, title);
    SetDlgItemTextW(dialog, IDC_PROGRESS_TEXT, u"");
    SendDlgItemMessageW(dialog, IDC_PROGRESS_BAR, PBM_SETRANGE32, 0, range);
    SendDlgItemMessageW(dialog, IDC_PROGRESS_BAR, PBM_SETSTEP, 0, 0);
}

void ProgressDialog::AskToCancel() {
    if (!IsWindowEnabled(GetDlgItem(window, IDCANCEL))) // the cross of the window still is
        return;
    if (MessageFromString(window, confirmString, kQuestionBox) == IDYES)
        cancelled = 1;
}

LONG_PTR ProgressDialog::Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, nullptr))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        SetDialogState(dialog, lParam);
        DialogState<ProgressDialog>(dialog)->Init(dialog);
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) != IDCANCEL)
            return FALSE;
        DialogState<ProgressDialog>(dialog)->AskToCancel();
        return TRUE;
    }
    return FALSE;
}
