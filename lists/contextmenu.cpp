#include "lists/contextmenu.h"

#include "platform/controls.h"

POINT MenuPointOfFocusedRow(HWND list) {
    const int row = ListView_GetNextItem(list, -1, LVNI_FOCUSED);
    ListView_EnsureVisible(list, row);
    RECT label = {};
    ListView_GetLabelRect(list, row, &label);
    POINT point = {label.left, label.bottom};
    ClientToScreen(list, &point);
    return point;
}
