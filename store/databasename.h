// The dialog that asks for a new database name, and the name it left.
#pragma once

#include "store/dbhandle.h"

// Both ask for a name other than `sourceName` that no database has; null when the user cancelled or entered
// nothing. The name lives in the buffer below until the next question.
const WCHAR* AskNewDatabaseName(HWND owner, const WCHAR* sourceName); // titled as a rename
const WCHAR* AskCopyName(HWND owner, const WCHAR* sourceName);

// Room for kNameCapacity characters.
WCHAR* NewNameBuffer();
