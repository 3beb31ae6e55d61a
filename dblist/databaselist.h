// The main window's list of databases: one row a database, kept nowhere else.
#pragma once

#include <memory>

#include "platform/controls.h"
#include "platform/types.h"
#include "store/dbhandle.h"

enum DatabaseColumn { kNameColumn, kSizeColumn, kDateColumn, kDatabaseColumnCount };

// Makes the settings, the menu bar and the list in the main window; false on failure.
bool CreateDatabaseList(HWND mainWindow);
// Moves the list below the menu bar, whose height is read anew.
void LayOutDatabaseList(HWND mainWindow);
// The three columns as shares of the width, in pixels.
void SetListColumnWidths(int width);
// Applies the settings' fullRow and listFont.
void ApplyListOptions();
// The view: LVS_ICON, LVS_REPORT, LVS_SMALLICON or LVS_LIST.
DWORD CurrentListStyle();
void SetListStyle(DWORD listStyle);

// Reads all databases from the store anew, sorts and selects as before. A database that the store cannot tell
// is missing, which is reported. Does nothing without a list.
void NameRowIcons(HWND list); // for assistive programs
void RebuildDatabaseList();
// Reads icon, size and date of the selected rows' databases anew; the order of the rows stays.
void UpdateSelectedRows();
// Sorts by the settings' key and direction, under the wait cursor.
void SortDatabaseList();
// For a tap on a column: sorts by it, or in the other direction when the list is sorted by it already.
void SortByColumn(int column);
// Puts a new name into the row of the old one, so that what is chosen before the list is read anew finds the
// database. The row stays where it is.
void ShowRenamedDatabase(const WCHAR* name, const WCHAR* newName);
// Remembers the selected rows in the settings.
void SaveListSelection();

// The rows of one moment: a refresh leaves them as they were.
struct ListedDatabase {
    WCHAR name[kNameCapacity];
    bool selected;
};
// Copies all rows, in their order. Null when memory is short.
std::unique_ptr<ListedDatabase[]> CopyRows(int* count);

int DatabaseRowCount();
// The next selected row after one (-1: from the first on), -1 for none.
int NextSelectedRow(int after);
int SelectedRowCount();
void DatabaseNameOfRow(int row, WCHAR (&name)[kNameCapacity]);
// The first selected row's name; false when no row is selected.
bool SelectedDatabaseName(WCHAR (&name)[kNameCapacity]);
