// The owner-drawn header of the lists, with its sort arrows.
#pragma once

#include "platform/controls.h"

// Makes every item of the list view's header owner-drawn.
void MakeHeaderOwnerDrawn(HWND list);
// Draws one item for WM_DRAWITEM, with an arrow when the settings sort by its column.
void DrawHeaderItem(const DRAWITEMSTRUCT& item);
