#include "tests/backup/backupfixture.h"

#include <algorithm>
#include <cstring>

#include "app/application.h"
#include "platform/files.h"
#include "platform/ui/core/testhooks.h"
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

Bytes FromHex(const char* text) {
    Bytes bytes;
    unsigned value = 0;
    for (int read = 0; std::sscanf(text, " %2x%n", &value, &read) == 1; text += read)
        bytes.push_back(static_cast<BYTE>(value));
    return bytes;
}

Bytes Slice(const Bytes& bytes, std::size_t from, std::size_t count) {
    const std::size_t begin = std::min(from, bytes.size());
    const std::size_t end = begin + std::min(count, bytes.size() - begin);
    return {bytes.begin() + begin, bytes.begin() + end};
}

void PutNumber(Bytes* bytes, std::size_t offset, DWORD value) {
    std::memcpy(bytes->data() + offset, &value, sizeof value);
}

Bytes Changed(Bytes bytes, std::size_t offset, DWORD value) {
    PutNumber(&bytes, offset, value);
    return bytes;
}

DWORD NumberAt(const Bytes& bytes, std::size_t offset) {
    DWORD value = 0;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

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

Bytes FileBytes(const WCHAR* path) {
    Bytes bytes;
    const HANDLE file = CreateFileW(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, 0);
    EXPECT_NE(file, INVALID_HANDLE_VALUE) << testing::PrintToString(path);
    if (file == INVALID_HANDLE_VALUE)
        return bytes;
    bytes.resize(GetFileSize(file, nullptr));
    DWORD read = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    CloseHandle(file);
    return bytes;
}

void WriteBytes(const WCHAR* path, const Bytes& bytes) {
    const HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, 0);
    ASSERT_NE(file, INVALID_HANDLE_VALUE) << testing::PrintToString(path);
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
}

bool FileExists(const WCHAR* path) {
    const HANDLE file =
        CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, 0);
    return file != INVALID_HANDLE_VALUE && CloseHandle(file);
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

BackupTest::BackupTest() {
    App().settings = &settings;
    settings.interactive = 0;
    settings.noProgress = 1;
    ui::TestHooks().dialog = [this](const ui::DialogSeen&) { EXPECT_FALSE(settings.noProgress); };
    ui::TestHooks().messageBox = [this](const ui::MessageBoxSeen& box) {
        const Message next = expected.empty() ? Message{u"no message", IDOK} : expected.front();
        EXPECT_EQ(next.text, box.text);
        if (!expected.empty())
            expected.pop_front();
        ui::AnswerMessageBox(next.answer);
    };
}

BackupTest::~BackupTest() {
    EXPECT_TRUE(expected.empty()) << "a message was expected in vain";
    ui::TestHooks() = {};
    App().settings = nullptr;
}

void BackupTest::ExpectMessage(const std::u16string& text, int answer) {
    expected.push_back({text, answer});
}
