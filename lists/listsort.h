// The order of a list view's rows: the comparison that the list of databases and the viewer's list share.
#pragma once

#include <optional>
#include <vector>

#include "platform/types.h"

// What one sorting works with.
struct ListSort {
    bool ascending;
    int subItem;
    DWORD key; // a SortKey; anything else leaves the rows as they are
    HWND list;
    // Last-modified times by row parameter, read from the store when first asked for: a comparison sort asks
    // again and again.
    struct Modified {
        bool known = false;
        std::optional<FILETIME> time; // none: the database cannot be opened
    };
    std::vector<Modified> modified = {};
};

// The column that a key sorts by.
int ColumnOfSortKey(DWORD key);
// Sorts the list and repaints its header.
void SortListView(ListSort& sort);
// A sorting of the list by the settings' key and direction.
ListSort SettingsSort(HWND list);
// Makes a key the settings' own, or turns the direction when it is already.
void SetSortKey(DWORD key);
