// Plain text for the clipboard, which any other program can paste.
#pragma once

#include "platform/clipboard.h"

// Adds the text to what is on the clipboard; it is open and was emptied. False when there is no memory.
bool OfferText(const WCHAR* text);

// The selected rows of a list of that many columns take the place of what is on the clipboard: a line a row,
// tabs between the columns. Nothing happens without a selected row.
void CopyRowsAsText(HWND list, int columns);
