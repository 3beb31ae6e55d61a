// The order of a list view's rows: the comparison that the list of databases and the viewer's list share.
#pragma once

#include <memory>
#include <optional>

#include "app/settings.h"
#include "platform/types.h"

// What the columns of the two lists sort by.
constexpr int kListColumns = 3;
using ColumnKeys = SortKey[kListColumns];
constexpr ColumnKeys kDatabaseColumnKeys = {kSortByName, kSortBySize, kSortByDate};
constexpr ColumnKeys kPropertyColumnKeys = {kSortByName, kSortBySize, kSortByInteger};

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

// The column that a key sorts by; the first one for any other number.
int ColumnOfSortKey(DWORD key);
// Sorts the list and repaints its header.
void SortListView(ListSort& sort);
// How the settings want the list sorted.
ListSort SettingsSort(HWND list);
// For a tap on a column: makes the settings sort by its key, or turns their direction when they already do.
void ChooseSortColumn(const ColumnKeys& keys, int column);
