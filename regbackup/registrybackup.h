// Saving the registry below its main keys to a file, and writing it back.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/progressdisplay.h"
#include "regbackup/registryfile.h"

// Runs a backup, or a restore; without a file name (null) the user picks one. Failures are reported here.
// True when it went to its end.
bool BackupRegistry(HWND owner, const WCHAR* fileName);
bool RestoreRegistry(HWND owner, const WCHAR* fileName);

// One backup or restore.
class RegistryBackup {
public:
    RegistryBackup(HWND owner, const WCHAR* fileName);
    virtual ~RegistryBackup();
    RegistryBackup(const RegistryBackup&) = delete;
    RegistryBackup& operator=(const RegistryBackup&) = delete;

    // A backup, behind the dialog: writes the chosen main keys to the file. One that is not complete is
    // deleted.
    bool Save();
    // A restore, before the dialog: opens the file, reads its header and asks for its password.
    bool Open();
    // And behind it: restores the keys below the chosen main keys. False also for a file without keys.
    bool Restore();

    // The value that is read at the moment; one byte more than is offered to the registry. Null: no memory.
    static constexpr DWORD kValueRoom = 16384;
    std::unique_ptr<BYTE[]> valueBuffer;
    HANDLE file = INVALID_HANDLE_VALUE;
    DWORD keyCount = 0; // written, or to be read
    HKEY currentMainKey = HKEY_CLASSES_ROOT;
    bool passwordChosen = false;
    PasswordBlock password = {}; // scrambled
    bool saveClassesRoot = true;
    bool saveLocalMachine = true;
    bool saveCurrentUser = true;
    WCHAR fileName[MAX_PATH] = {};
    HWND owner;
    bool restoreMode = false;
    bool cleanRegistry = false; // never set: a restore removes no keys
    ProgressDisplay progress;

private:
    void ReportFailure(UINT stringId) const;
    void ReportOutOfMemory() const;
    bool BeginProgress();

    bool WriteHeader();
    bool SaveMainKeys(RecordWriter& writer);
    bool CloseSaved(bool whole);
    bool Walk(HKEY key, const WCHAR* path, RecordWriter& writer);
    bool SaveKey(HKEY key, const WCHAR* path, const WCHAR* keyClass, RecordWriter& writer);
    bool ReadValues(HKEY key, RegKeyRecord* record);
    bool ShowKey(const WCHAR* path);

    // What a key lacks to be as in the file.
    struct Difference {
        bool differs = false;
        std::vector<std::u16string> added; // names of values to delete
    };
    bool ReadHeader();
    bool RestoreKeys();
    bool RestoreRecords(RecordReader& reader);
    bool IsChosen(HKEY mainKey) const;
    bool RestoreKey(const RegKeyRecord& record);
    Difference Compare(const RegKeyRecord& record);
    bool ValueMatches(HKEY key, const RegValueRecord& value);
    void FindAdded(HKEY key, const RegKeyRecord& record, Difference* difference);
    bool WriteKey(const RegKeyRecord& record, const Difference& difference);
    int AskAfterFailure() const;

    RegistryBackupHeader header = {};
    RegKeyRecord saving;    // the key that is saved at the moment
    RegValueRecord present; // the value that is compared at the moment
};

// Lets the user choose main keys, and a password for a backup. False on Cancel.
bool ShowMainKeys(HWND owner, RegistryBackup* backup);
