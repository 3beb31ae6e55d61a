// The owner-drawn header of the lists, with its sort arrows.
#pragma once

#include "platform/controls.h"

// Makes every item of the list view's header owner-drawn.
void MakeHeaderOwnerDrawn(HWND list);
// Tells by the items' formats which column the settings sort by and which way, and draws the header anew.
void ShowSortOrder(HWND list);
// Draws one item for WM_DRAWITEM, with an arrow when the settings sort by its column.
void DrawHeaderItem(const DRAWITEMSTRUCT& item);
