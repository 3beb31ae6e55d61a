// The Registry backup file: its header, and the records of keys and values that follow it. docs/formats.md
// describes the file.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "app/passworddialogs.h"
#include "platform/datetime.h"
#include "platform/registry.h"
#include "platform/types.h"
#include "regbackup/recordstream.h"

// All numbers are little-endian, all texts UTF-16.
struct RegistryBackupHeader {
    BYTE magic[4]; // "10WR"
    DWORD headerSize;
    PasswordBlock password; // scrambled; empty: none
    DWORD mainKeys;         // kClassesRootSaved and so on
    DWORD dataOffset;       // of the first key record
    FILETIME time;          // local, when the header was written
    DWORD keyCount;
    BYTE reserved[16];
};
static_assert(sizeof(RegistryBackupHeader) == 84 && offsetof(RegistryBackupHeader, password) == 8 &&
              offsetof(RegistryBackupHeader, mainKeys) == 48 && offsetof(RegistryBackupHeader, time) == 56 &&
              offsetof(RegistryBackupHeader, keyCount) == 64);

constexpr DWORD kClassesRootSaved = 1;
constexpr DWORD kCurrentUserSaved = 2;
constexpr DWORD kLocalMachineSaved = 4;

// Fills in what is the same in every header, and the time. The password, the main keys and the count stay.
void CompleteHeader(RegistryBackupHeader* header);
bool IsRegistryBackup(const RegistryBackupHeader& header);

// One value.
struct RegValueRecord {
    // False when there is no memory; the record is empty then. A null name is an empty one.
    bool Set(const WCHAR* newName, DWORD newType, const BYTE* newData, DWORD newLength);
    void Clear();
    // The name exactly, with regard to case.
    bool Equals(const RegValueRecord& other) const;
    // False when the file failed, and when what it holds is not a value.
    bool Write(RecordWriter& file) const;
    bool Read(RecordReader& file);
    bool Apply(HKEY key) const;

    DWORD type = 0;
    std::u16string name;          // no larger than its text: there may be very many values
    DWORD length = 0;             // bytes
    std::unique_ptr<BYTE[]> data; // null when there are none

private:
    bool Allocate(const WCHAR* newName, DWORD bytes);
};

// A key with its values.
struct RegKeyRecord {
    void Reset();
    void Initialise(const WCHAR* newPath, HKEY newMainKey, const WCHAR* newClass);
    // Writes nothing for a key without values.
    bool Write(RecordWriter& file) const;
    // A record that is not whole is discarded.
    bool Read(RecordReader& file);
    // A new, empty value at the end; null when there is no memory.
    RegValueRecord* Append();

    WCHAR path[MAX_PATH] = {};
    WCHAR keyClass[MAX_PATH] = {};
    LONG valueCount = 0; // as the file has it
    HKEY mainKey = HKEY_CLASSES_ROOT;
    std::vector<std::unique_ptr<RegValueRecord>> values;

private:
    bool ReadWhole(RecordReader& file);
};
