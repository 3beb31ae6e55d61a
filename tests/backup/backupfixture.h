// What the tests of archives and scripts share: bytes written down by hand, files as bytes, and a quiet run
// on a fresh device.
#pragma once

#include <deque>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "app/settings.h"
#include "backup/backup.h"
#include "store/dbhandle.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/testdevice.h"

using Bytes = std::vector<BYTE>;

Bytes FromHex(const char* text); // blanks and line ends are passed over
Bytes Slice(const Bytes& bytes, std::size_t from, std::size_t count);
void PutNumber(Bytes* bytes, std::size_t offset, DWORD value);
Bytes Changed(Bytes bytes, std::size_t offset, DWORD value);
DWORD NumberAt(const Bytes& bytes, std::size_t offset);

// One database "Ab" with one record, written down by hand: plain, and compressed with the password "open".
extern const char* const kPlainArchive;
extern const char* const kCompressedArchive;
constexpr std::size_t kPlainBlock = 24;
constexpr std::size_t kPlainRecord = 168;
// The plain archive's entry several times, the first letter of each name replaced ("\\" gives a system
// database).
Bytes ArchiveOf(const std::u16string& letters);

Bytes FileBytes(const WCHAR* path);
void WriteBytes(const WCHAR* path, const Bytes& bytes);
bool FileExists(const WCHAR* path);
void DeleteAllBut(const std::u16string& name);
// The database that the archives above hold, and what Contents says of it.
void MakeSample(const WCHAR* name = u"Ab");
extern const std::u16string kSampleContents;
// Records with a number, and a text and a blob of lengths of their own.
void MakeRecords(const WCHAR* name, int count);
// Whether all of it was backed up, with the engine's options.
bool BackUp(BackupEngine& engine, const WCHAR* path, std::initializer_list<const WCHAR*> names);

// No dialogs and no progress. Message boxes come in the order expected; any other fails the test.
class BackupTest : public testing::Test {
protected:
    BackupTest();
    ~BackupTest() override;
    // 0 is the answer where nobody can be asked.
    void ExpectMessage(const std::u16string& text, int answer = IDOK);

    TestDevice device;
    Settings settings;

private:
    struct Message {
        std::u16string text;
        int answer;
    };
    std::deque<Message> expected;
};
