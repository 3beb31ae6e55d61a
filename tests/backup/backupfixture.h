// What the tests of archives and scripts share: archives written down by hand, and databases to put into
// them.
#pragma once

#include <gtest/gtest.h>
#include <string>

#include "backup/backup.h"
#include "store/dbhandle.h"
#include "tests/support/filebytes.h"
#include "tests/support/quiettest.h"
#include "tests/support/sampledatabases.h"

// One database "Ab" with one record, written down by hand: plain, and compressed with the password "open".
extern const char* const kPlainArchive;
extern const char* const kCompressedArchive;
constexpr std::size_t kPlainBlock = 24;
constexpr std::size_t kPlainRecord = 168;
// The plain archive's entry several times, the first letter of each name replaced ("\\" gives a system
// database).
Bytes ArchiveOf(const std::u16string& letters);

void DeleteAllBut(const std::u16string& name);
// The database that the archives above hold, and what Contents says of it.
void MakeSample(const WCHAR* name = u"Ab");
extern const std::u16string kSampleContents;
// Records with a number, and a text and a blob of lengths of their own.
void MakeRecords(const WCHAR* name, int count);
// Whether all of it was backed up, with the engine's options.
bool BackUp(BackupEngine& engine, const WCHAR* path, std::initializer_list<const WCHAR*> names);

using BackupTest = QuietTest;
