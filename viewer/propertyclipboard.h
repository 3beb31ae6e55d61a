// One property on the clipboard, in a format of its own: a FlatProperty block. Beside it lies the value as
// text, for other programs.
#pragma once

#include "viewer/flatproperty.h"

UINT PropertyClipFormat();
// True when the property is on the clipboard, and also when the clipboard could not be opened. It is left
// open: the update of the menus that follows every command opens and closes it.
bool PutPropertyOnClipboard(HWND owner, const CEPROPVAL& property);
// A copy of the property on the clipboard, which must be open; null when there is none that fits its block.
// The caller releases it with LocalFree.
FlatProperty* CopyPropertyFromClipboard();
