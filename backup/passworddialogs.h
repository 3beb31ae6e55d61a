// The dialogs that ask for passwords: of backups, of the registry's too.
#pragma once

#include "backup/archive.h"

// "Protect Backup": a new password, typed twice. True when the user gave one; it is in `password` then, not
// scrambled.
bool AskNewPassword(PasswordBlock* password, HWND owner);
// "Enter Password": true when the user typed what is in `stored` (not scrambled). True at once for an empty
// one.
bool AskPassword(const PasswordBlock& stored, HWND owner);
