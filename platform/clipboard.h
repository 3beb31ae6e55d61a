// The clipboard: one block of the local heap a format, shared with the host's other programs.
#pragma once

#include "platform/window.h"

constexpr UINT CF_UNICODETEXT = 13;

// The same number for the same name; 0 on failure.
UINT RegisterClipboardFormatW(const WCHAR* name);
// Between these two the clipboard is this window's; false while another has it open.
BOOL OpenClipboard(HWND window);
BOOL CloseClipboard();
BOOL EmptyClipboard();
// Takes over a block of the local heap; on failure it stays the caller's. Null on failure.
void* SetClipboardData(UINT format, void* block);
// A block that stays the clipboard's, valid until it is closed or changed; null when the format is absent.
// LocalSize tells how many bytes another program really put there: nothing in them is to be trusted.
void* GetClipboardData(UINT format);
BOOL IsClipboardFormatAvailable(UINT format);
