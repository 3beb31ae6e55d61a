#include "tests/backup/backupfixture.h"

#include "tests/storage/storesupport.h"

const char* const kPlainArchive = R"(
    31 30 56 4e 18 00 00 00 01 00 00 00 00 00 00 00
    00 00 00 00 18 00 00 00 90 00 00 00 0f 00 00 00
    41 00 62 00 00 00 00 00 00 00 00 00 00 00 00 00
    00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
    00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
    00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
    01 00 00 00 01 00 01 00 28 00 00 00 00 80 3e d5
    ab d5 c2 01 03 00 01 00 00 00 00 00 00 00 00 00
    00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
    00 00 00 00 d3 07 02 00 05 00 0e 00 09 00 1e 00
    0f 00 fa 00 e0 00 00 00 02 00 00 00 01 00 00 00
    00 00 00 00 28 00 00 00 03 00 01 00 00 00 00 00
    07 00 00 00 00 00 00 00 1f 00 02 00 00 00 00 00
    20 00 00 00 00 00 00 00 41 00 6e 00 6e 00 00 00)";

const char* const kCompressedArchive = R"(
    31 30 56 4e 18 00 00 00 01 00 00 00 01 00 00 00
    10 00 00 00 40 00 00 00 55 5c 4a 5c 5f 5c 54 5c
    00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
    00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
    ac 00 00 00 3b 00 00 00 90 00 08 7c 20 10 40 10
    00 62 0a 2a 5c c8 b0 a1 c3 87 10 1f 06 28 38 71
    22 0a 85 80 7c 54 5b 55 4d 58 80 01 00 26 46 1c
    b9 70 da 01 01 00 0a 00 70 00 20 01 00 0f 00 08
    ea 5b 08 02 00 00 00 01 00 00 00 00 00 00 00 19
    00 00 00 03 00 04 00 40 90 e0 81 82 08 3f 00 10
    80 10 00 88 86 04 83 00 70 33 b1 20)";

Bytes ArchiveOf(const std::u16string& letters) {
    const Bytes one = FromHex(kPlainArchive);
    Bytes archive = Slice(one, 0, kPlainBlock);
    PutNumber(&archive, 8, static_cast<DWORD>(letters.size()));
    for (const WCHAR letter : letters) {
        Bytes entry = Slice(one, kPlainBlock, one.size());
        entry[8] = static_cast<BYTE>(letter);
        PutNumber(&entry, 140, static_cast<DWORD>(archive.size() + entry.size()));
        archive.insert(archive.end(), entry.begin(), entry.end());
    }
    return archive;
}

void DeleteAllBut(const std::u16string& name) {
    for (const std::u16string& other : DatabaseNames())
        EXPECT_TRUE(other == name || DbHandle(nullptr).DeleteDatabase(other.c_str()));
}

const std::u16string kSampleContents = u"1=7 2=Ann\n";

void MakeSample(const WCHAR* name) {
    MakeDatabase(name, {{NumberValue(1, CEVT_I4, 7), TextValue(2, u"Ann")}}, {{0x00010003, 0}});
}

void MakeRecords(const WCHAR* name, int count) {
    MakeDatabase(name, {});
    const HANDLE database = OpenById(FindDatabase(name));
    for (int i = 0; i < count; ++i) {
        const std::string blob(i * i % 5000, static_cast<char>(i));
        EXPECT_NE(Values().Number(1, i).Text(2, std::u16string(i % 50, u'x')).Blob(3, blob).Write(database),
                  0u);
    }
    CloseHandle(database);
}

bool BackUp(BackupEngine& engine, const WCHAR* path, std::initializer_list<const WCHAR*> names) {
    if (!engine.BeginBackup(nullptr, false, path))
        return false;
    bool whole = true;
    for (const WCHAR* name : names)
        whole = whole && engine.WriteDatabase(name);
    return engine.Finish() && whole;
}
