// Autobackup scripts: one backup written down, so that it can be repeated without dialogs.
#pragma once

#include "backup/archive.h"

struct ScriptHeader {
    DWORD headerSize;
    DWORD mark; // kScriptMark, or it is no script
    DWORD compressed;
    DWORD reserved;
    WCHAR archivePath[MAX_PATH];
    PasswordBlock password; // scrambled; empty: none
    DWORD databaseCount;
    DWORD reservedToo[2];
};
static_assert(sizeof(ScriptHeader) == 588 && offsetof(ScriptHeader, archivePath) == 16 &&
              offsetof(ScriptHeader, password) == 536 && offsetof(ScriptHeader, databaseCount) == 576);

constexpr DWORD kScriptMark = 288;

struct ScriptEntry {
    WCHAR databaseName[CEDB_MAXDBASENAMELEN];
    DWORD reserved[2];
};
static_assert(sizeof(ScriptEntry) == 72);

// Writes the script that goes with a backup. Its troubles never stop the backup: they are reported (unless
// the program runs unattended), the script is deleted, and later calls do nothing.
class ScriptWriter {
public:
    ~ScriptWriter();

    // At the settings' scriptName. The password is scrambled; null for none.
    void Create(HWND owner, const WCHAR* archivePath, bool compressed, const PasswordBlock* password);
    void Append(HWND owner, const WCHAR* databaseName);
    // With all that was to be in it, it replaces an older script; otherwise that one stays as its name with a
    // `~`.
    void Complete(HWND owner, DWORD databaseCount, bool complete);

    HANDLE file = INVALID_HANDLE_VALUE;
    WCHAR path[MAX_PATH] = {};

private:
    void GiveUp(HWND owner);
};

// Replays the script named by the settings' scriptName. False on any failure, which is reported and leaves no
// archive behind.
bool RunAutobackup(HWND owner);
