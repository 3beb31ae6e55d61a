// The order of a list view's rows: the comparison that the list of databases and the viewer's list share.
#pragma once

#include <memory>
#include <optional>

#include "platform/types.h"

// What one sorting works with.
struct ListSort {
    bool ascending;
    int column;
    DWORD key; // a SortKey; any other number leaves the rows as they are
    HWND list;
    // Last-modified times by row parameter, read from the store when first asked for: a comparison sort asks
    // again and again. Without memory for them, or behind the last one, they are read each time.
    struct Modified {
        bool known = false;
        std::optional<FILETIME> time; // none: the database cannot be opened
    };
    std::unique_ptr<Modified[]> modified = {};
    LPARAM modifiedCount = 0;
};

// The column that a key sorts by.
int ColumnOfSortKey(DWORD key);
// Sorts the list and repaints its header.
void SortListView(ListSort& sort);
// A sorting of the list by the settings' key and direction.
ListSort SettingsSort(HWND list);
// Makes a key the settings' own, or turns the direction when it is already.
void SetSortKey(DWORD key);
