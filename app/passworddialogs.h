// The passwords of backups, of databases and of the registry: how they are stored, and the dialogs that ask
// for them.
#pragma once

#include "platform/types.h"

constexpr int kPasswordCapacity = 20; // characters, terminator included

// A password as archives, scripts and registry backups store it: scrambled, ended by a zero.
struct PasswordBlock {
    WCHAR text[kPasswordCapacity];
};
static_assert(sizeof(PasswordBlock) == 40);

// Scrambles a password in place, or unscrambles it. The result always ends within the block, with zeros
// behind its end: a character that equals the mask becomes the end.
void ScramblePassword(PasswordBlock* password);

// "Protect Backup": a new password, typed twice. True when the user gave one; it is in `password` then, not
// scrambled.
bool AskNewPassword(PasswordBlock* password, HWND owner);
// "Enter Password": true when the user typed what is in `stored` (not scrambled). True at once for an empty
// one.
bool AskPassword(const PasswordBlock& stored, HWND owner);
