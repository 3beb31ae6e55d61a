// The commands that act on one whole database. Failures of the store are reported by the database handle.
#pragma once

#include "store/dbhandle.h"

// Each returns true when the list of databases has to be read anew.
bool DeleteDatabaseCommand(HWND owner, const WCHAR* name);
bool EmptyDatabaseCommand(HWND owner, const WCHAR* name);
// A copy whose records could not all be written stays with those that were, and counts as made.
bool CopyDatabaseCommand(HWND owner, const WCHAR* name);
// With `prompt` the new name is asked for, else it is what the new-name buffer holds.
bool RenameDatabaseCommand(HWND owner, const WCHAR* name, bool prompt);
// Renames without asking, as after an edit in place; the list shows the new name at once. False also when the
// name is not a new one.
bool RenameDatabaseTo(HWND owner, const WCHAR* name, const WCHAR* newName);
