// The "Backup Databases" options.
#pragma once

#include "platform/types.h"

class BackupEngine;

// Fills the options of the engine; false when the user cancelled.
bool ShowBackupOptions(HWND owner, BackupEngine* engine);
