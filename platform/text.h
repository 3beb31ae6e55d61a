// Plain text work on UTF-16: copying, comparing, formatting.
//
// Every function that fills a buffer is told its room in characters, terminator included; it cuts the text to
// fit and always terminates it. A room of 0 leaves the buffer alone.
#pragma once

#include <cstdarg>

#include "platform/types.h"

// Returns the characters written, terminator not counted.
int CopyText(WCHAR* out, std::size_t capacity, const WCHAR* text); // null text counts as empty
template <std::size_t N>
int CopyText(WCHAR (&out)[N], const WCHAR* text) {
    return CopyText(out, N, text);
}

// Formats %s (const WCHAR*; null shows as "(null)"), %c (WCHAR), %d %ld (signed, 32 bits), %u %lu %x %X
// (unsigned, 32 bits; `l` changes nothing) and %%, each with an optional width, zero-filled after a leading
// 0. Anything else after % is written as it stands. Formats come from the program's string table and are
// trusted. Returns the characters written, terminator not counted.
int FormatText(WCHAR* out, std::size_t capacity, const WCHAR* format, va_list arguments);
template <std::size_t N>
int wsprintfW(WCHAR (&out)[N], const WCHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = FormatText(out, N, format, arguments);
    va_end(arguments);
    return length;
}

int lstrlenW(const WCHAR* text); // null is 0
// Less than, equal to or greater than 0, by code unit; lstrcmpiW ignores case. Null counts as empty.
int lstrcmpW(const WCHAR* left, const WCHAR* right);
int lstrcmpiW(const WCHAR* left, const WCHAR* right);
// Lowers a text in place and returns it.
WCHAR* CharLowerW(WCHAR* text);
// Whether the character separates words: blanks, tabs, line ends and the like.
bool IsSpaceCharacter(WCHAR character);
