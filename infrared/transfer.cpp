#include "infrared/transfer.h"

#include "app/application.h"
#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "platform/datetime.h"
#include "platform/text.h"
#include "resources/resource.h"

namespace {

constexpr DWORD kSendPause = 50; // milliseconds
constexpr DWORD kPollPause = 5;
constexpr int kStatusCapacity = 256;

void InitTransfer(HWND dialog) {
    InitDialogFrame(dialog, kNoButtons);
    App().cancelRequested = 0;
}

LONG_PTR TransferProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, nullptr))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        InitTransfer(dialog);
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) != IDCANCEL)
            return FALSE;
        App().cancelRequested = 1;
        return TRUE;
    }
    return FALSE;
}

bool PumpWhileBlocked(void* transfer) {
    return static_cast<Transfer*>(transfer)->Pump();
}

HWND MakeDialog(HWND owner) {
    const DLGTEMPLATE* dialogTemplate = FindDialogTemplate(IDD_TRANSFER);
    return dialogTemplate
               ? CreateDialogIndirectParamW(AppInstance(), dialogTemplate, owner, TransferProcedure, 0)
               : nullptr;
}

} // namespace

Transfer::Transfer(HWND main, UINT titleString, const WCHAR* name)
    : mainWindow(main), window(MakeDialog(main)), channel(window) {
    if (!window)
        return;
    SetTitle(titleString, name);
    ShowWindow(window, SW_SHOWNORMAL);
    EnableWindow(mainWindow, FALSE);
    UpdateWindow(window);
    SetBlockingHook(PumpWhileBlocked, this);
}

Transfer::~Transfer() {
    SetBlockingHook(nullptr, nullptr);
    channel.Close();
    EnableWindow(mainWindow, TRUE);
    DestroyWindow(window);
}

void Transfer::SetTitle(UINT titleString, const WCHAR* name) {
    WCHAR title[kTitleCapacity];
    WCHAR text[kTitleCapacity];
    LoadText(titleString, title);
    wsprintfW(text, *name ? u"%s [%s]" : u"%s", title, name);
    SetWindowTextW(window, text);
}

void Transfer::SetStatus(UINT stringId) {
    SetStatus(stringId, 0, 0);
}

void Transfer::SetStatus(UINT formatId, DWORD number, DWORD count) {
    WCHAR format[kStatusCapacity];
    WCHAR text[kStatusCapacity];
    LoadText(formatId, format);
    wsprintfW(text, format, number, count);
    SetDlgItemTextW(window, IDC_TRANSFER_STATUS, text);
}

void Transfer::ShowBar() {
    SendDlgItemMessageW(window, IDC_TRANSFER_BAR, PBM_SETSTEP, 1, 0);
    ShowWindow(GetDlgItem(window, IDC_TRANSFER_HINT), SW_HIDE);
    ShowWindow(GetDlgItem(window, IDC_TRANSFER_BAR), SW_SHOW);
}

void Transfer::SetSteps(DWORD steps) {
    SendDlgItemMessageW(window, IDC_TRANSFER_BAR, PBM_SETRANGE32, 0, static_cast<LPARAM>(steps));
}

void Transfer::Step() {
    SendDlgItemMessageW(window, IDC_TRANSFER_BAR, PBM_STEPIT, 0, 0);
}

int Transfer::Show(UINT stringId, UINT style) {
    return MessageFromString(window, stringId, style);
}

// False when the program is to end; that message is meant for its own loop.
bool Transfer::DispatchWaiting() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return false;
        }
        if (IsDialogMessageW(window, &message))
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return true;
}

bool Transfer::Pump() {
    stopped = stopped || !DispatchWaiting() ||
              (App().cancelRequested && Show(IDS_CONFIRM_CANCEL_TRANSFER, kQuestionBox) == IDYES);
    if (stopped)
        return false;
    App().cancelRequested = 0;
    UpdateWindow(window);
    UpdateWindow(mainWindow);
    return true;
}

bool Transfer::PumpAndPause() {
    if (!Pump())
        return false;
    Sleep(kSendPause);
    return true;
}

bool Transfer::WaitReadable(bool primary) {
    while (Pump()) {
        if (channel.PollReadable(primary))
            return true;
        if (channel.broken)
            return false;
        Sleep(kPollPause);
    }
    return false;
}

// Quirk: the message speaks of the other device also when this one's user has cancelled.
TransferCode Transfer::AwaitAnswer() {
    TransferCode code = 0;
    while (code != kAcknowledge && code != kCancel)
        code = WaitReadable(true) ? channel.ReceiveCode(true) : kCancel;
    if (code == kCancel)
        Show(IDS_CANCELLED_BY_HOST, kFailureBox);
    return code;
}
