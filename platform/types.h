// The handheld platform's basic types, in its own names and sizes. Text is UTF-16.
#pragma once

#include <cstddef>
#include <cstdint>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using UINT = std::uint32_t;
using BOOL = std::int32_t;
using WCHAR = char16_t;
using COLORREF = DWORD; // 0x00BBGGRR
using ATOM = WORD;

// Message parameters are as wide as a host pointer, since they carry pointers.
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using LONG_PTR = std::intptr_t;

// A kernel object: open file, open database, enumeration. 32 bits wide, as stored formats and fields expect.
using HANDLE = DWORD;
constexpr HANDLE INVALID_HANDLE_VALUE = 0xFFFFFFFF;
// A registry key: one of the three main keys, or an open key.
using HKEY = DWORD;

// Objects of the window system: opaque, null when absent.
using HWND = struct WindowObject*;
using HMENU = struct MenuObject*;
using HDROP = struct DroppedFiles*;
using HACCEL = struct AcceleratorTable*;
using HDC = struct DeviceContext*;
using HINSTANCE = struct ModuleObject*;
using HICON = struct IconObject*;
using HCURSOR = struct CursorObject*;
// Everything that DeleteObject releases; image lists are such objects here too.
using HGDIOBJ = struct GdiObject*;
using HFONT = HGDIOBJ;
using HBRUSH = HGDIOBJ;
using HBITMAP = HGDIOBJ;
using HIMAGELIST = HGDIOBJ;

using WNDPROC = LRESULT (*)(HWND, UINT, WPARAM, LPARAM);
using DLGPROC = LONG_PTR (*)(HWND, UINT, WPARAM, LPARAM);

constexpr BOOL TRUE = 1;
constexpr BOOL FALSE = 0;
// Room for a path or a registry name, terminator included.
constexpr int MAX_PATH = 260;

struct POINT {
    LONG x;
    LONG y;
};

struct SIZE {
    LONG cx;
    LONG cy;
};

struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

// 100-nanosecond steps since the first day of 1601, UTC unless said otherwise.
struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};
static_assert(sizeof(FILETIME) == 8);

struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;     // 1 to 12
    WORD wDayOfWeek; // 0 is Sunday
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};
static_assert(sizeof(SYSTEMTIME) == 16);

constexpr WORD LOWORD(std::uintptr_t value) {
    return static_cast<WORD>(value & 0xFFFF);
}
constexpr WORD HIWORD(std::uintptr_t value) {
    return static_cast<WORD>((value >> 16) & 0xFFFF);
}
constexpr std::uintptr_t MAKELONG(WORD low, WORD high) {
    return static_cast<std::uintptr_t>(low) | (static_cast<std::uintptr_t>(high) << 16);
}
// A coordinate packed into a message's lParam: signed, 16 bits.
constexpr LONG SignedLoWord(LPARAM value) {
    return static_cast<std::int16_t>(value & 0xFFFF);
}
constexpr LONG SignedHiWord(LPARAM value) {
    return static_cast<std::int16_t>((value >> 16) & 0xFFFF);
}

// A resource is named by its number, carried in a text pointer.
inline const WCHAR* MAKEINTRESOURCEW(WORD id) {
    return reinterpret_cast<const WCHAR*>(static_cast<std::uintptr_t>(id));
}
