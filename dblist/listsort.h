// The order of a list view's rows: the comparison that the main list and the viewer's list share.
#pragma once

#include <optional>
#include <vector>

#include "platform/types.h"

enum class SortKind : int { Name = 0, Size = 1, Date = 2, NameToo = 3, Integer = 4 };

// What one sorting works with.
struct ListSort {
    bool ascending;
    int subItem;
    int kind; // a SortKind; anything else leaves the rows as they are
    HWND list;
    // Last-modified times by row parameter, read from the store when first asked for: a comparison sort asks
    // again and again.
    struct Modified {
        bool known = false;
        std::optional<FILETIME> time; // none: the database cannot be opened
    };
    std::vector<Modified> modified = {};
};

// Sorts the list and repaints its header.
void SortListView(ListSort& sort);
// A sorting of the list by the settings' key and direction.
ListSort SettingsSort(HWND list);
// Makes a key the settings' own, or turns the direction when it is already.
void SetSortKey(DWORD key);
// Sorts the database list by the settings' key and direction, under the wait cursor.
void SortDatabaseList();
// A column was tapped: its own key, or the other direction when it is the key already.
void SortByColumn(int column);
