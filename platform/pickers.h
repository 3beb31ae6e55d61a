// The Open and Save file pickers.
#pragma once

#include "platform/window.h"

constexpr DWORD OFN_OVERWRITEPROMPT = 0x00000002; // ignored: the program asks by itself
constexpr DWORD OFN_HIDEREADONLY = 0x00000004;
constexpr DWORD OFN_FILEMUSTEXIST = 0x00001000;
constexpr DWORD OFN_EXPLORER = 0x00080000;

struct OPENFILENAMEW {
    DWORD lStructSize;
    HWND hwndOwner;
    HINSTANCE hInstance;
    const WCHAR* lpstrFilter; // pairs of name and pattern, each with its terminator, closed by an empty one
    DWORD nFilterIndex;
    WCHAR* lpstrFile; // in: the proposed name; out: the device path chosen
    DWORD nMaxFile;   // characters
    DWORD Flags;
    const WCHAR* lpstrDefExt; // given to a name without extension; leading "*." is passed over
};

// True when the user chose; starts in the documents folder. Dispatches messages meanwhile. A path that does
// not fit in nMaxFile is refused there, and the user may choose another. Without a display: false, with a
// line on standard error.
BOOL GetOpenFileNameW(OPENFILENAMEW* info);
BOOL GetSaveFileNameW(OPENFILENAMEW* info);
