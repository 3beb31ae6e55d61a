// The order of a list view's rows: the comparison that the list of databases and the viewer's list share.
#pragma once

#include <memory>
#include <optional>

#include "platform/types.h"

// How a list is to be sorted, and what that needs meanwhile.
struct ListSort {
    bool ascending;
    int column;
    DWORD key; // a SortKey; any other number leaves the rows as they are
    HWND list;
    // Last-modified times by row parameter. Each is read from the store when it is first asked for, because a
    // sort asks for it many times. Without memory for them they are read each time.
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
// How the settings want the list sorted.
ListSort SettingsSort(HWND list);
// Makes the settings sort by a key, or turns their direction when they already do.
void SetSortKey(DWORD key);
