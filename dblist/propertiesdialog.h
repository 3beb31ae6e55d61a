// The Database Properties dialog.
#pragma once

#include "platform/types.h"

// Shows the properties of the database that is selected in the list.
void ShowDatabaseProperties(HWND owner);
