// The program's resources: compiled scripts linked into the program, found by type and number.
#pragma once

#include "platform/types.h"

using HRSRC = const struct ResourceEntry*;
using HGLOBAL = const void*;

inline const WCHAR* const RT_BITMAP = MAKEINTRESOURCEW(2);
inline const WCHAR* const RT_MENU = MAKEINTRESOURCEW(4);
inline const WCHAR* const RT_DIALOG = MAKEINTRESOURCEW(5);
inline const WCHAR* const RT_RCDATA = MAKEINTRESOURCEW(10);

HRSRC FindResourceW(HINSTANCE instance, const WCHAR* name, const WCHAR* type); // null when absent
HGLOBAL LoadResource(HINSTANCE instance, HRSRC resource); // the resource's bytes, never released
DWORD SizeofResource(HINSTANCE instance, HRSRC resource); // bytes
// Copies at most capacity - 1 characters and a terminator; returns the characters copied, 0 when absent.
int LoadStringW(HINSTANCE instance, UINT id, WCHAR* text, int capacity);
