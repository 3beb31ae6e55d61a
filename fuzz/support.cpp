#include "fuzz/support.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

#include "app/application.h"
#include "platform/base/paths.h"
#include "platform/datetime.h"
#include "platform/dialog.h"
#include "store/dbhandle.h"
#include "store/propertyvalues.h"
#include "tests/storage/storesupport.h"

namespace {

namespace fs = std::filesystem;

Scratch* scratch = nullptr;

void MakeDatabases() {
    const SORTORDERSPEC sort = {Prop(1, CEVT_I4), CEDB_SORT_DESCENDING};
    for (const WCHAR* name : {u"Ab", u"Notes", u"\\System"}) {
        const HANDLE database = OpenById(CeCreateDatabase(name, 7, 1, &sort));
        for (int number = 0; number < 3; ++number)
            Values().Number(1, number).Text(2, u"Ann").Blob(3, std::string(5000, 'b')).Write(database);
        CloseHandle(database);
    }
}

void ReadDatabase(CEOID oid, CEPROPID sort) {
    DbHandle database(nullptr);
    CEOIDINFO info = {};
    if (!CeOidGetInfo(oid, &info) ||
        database.Open(info.infDatabase.szDbaseName, sort, 0) == INVALID_HANDLE_VALUE)
        return;
    DWORD index = 0;
    RecordBuffer record;
    for (bool found = WalkToFirst(database, &index); found; found = WalkToNext(database, &index)) {
        if (!database.ReadRecord(&record))
            continue;
        WCHAR text[kValueTextCapacity];
        for (WORD place = 0; place < record.propCount; ++place)
            FormatPropertyText(record.Properties()[place], text);
        database.ReadRecordForStorage(&record);
    }
    for (bool found = database.SeekLast(&index); found; found = database.SeekPrevious(&index))
        continue;
}

} // namespace

// These stand in for the platform's own (the linker takes the first of each name).

void Sleep(DWORD) {
    if (scratch && scratch->sleeping)
        scratch->sleeping();
}

int MessageBoxW(HWND, const WCHAR*, const WCHAR*, UINT style) {
    switch (style & 0xF) {
    case MB_YESNO:
        return IDYES;
    case MB_ABORTRETRYIGNORE:
        return IDIGNORE;
    }
    return IDOK;
}

LONG_PTR DialogBoxIndirectParamW(HINSTANCE, const DLGTEMPLATE*, HWND, DLGPROC, LPARAM) {
    return scratch->dialogAnswer;
}

// In its place a window that nobody sees, without controls.
HWND CreateDialogIndirectParamW(HINSTANCE, const DLGTEMPLATE*, HWND, DLGPROC, LPARAM) {
    static const HWND hidden =
        CreateWindowExW(0, u"STATIC", nullptr, WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    return CreateWindowExW(0, u"STATIC", nullptr, WS_CHILD, 0, 0, 1, 1, hidden, nullptr, nullptr, nullptr);
}

std::string_view Input::Bytes(std::size_t count) {
    const std::string_view taken = rest.substr(0, count);
    rest.remove_prefix(taken.size());
    return taken;
}

std::int64_t Input::Number(std::size_t bytes) {
    std::uint64_t number = 0;
    const std::string_view taken = Bytes(bytes);
    for (std::size_t place = 0; place < taken.size(); ++place)
        number |= std::uint64_t{static_cast<BYTE>(taken[place])} << 8 * place;
    return static_cast<std::int64_t>(number);
}

std::u16string Input::Text(std::size_t characters) {
    std::u16string text;
    while (text.size() < characters && !Ended())
        text += static_cast<WCHAR>(Number(sizeof(WCHAR)));
    return text;
}

void Require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "It does not hold: %s\n", what);
    std::abort();
}

Scratch::Scratch() {
    scratch = this;
    MakeDatabases();
    storage::CloseStore();
    store = HostFile(device.folder + "/objectstore.db");
    fs::create_directories(device.folder + "/root");
    fs::current_path(device.folder + "/root"); // where paths without a root lead
}

Scratch& Scratch::Fresh() {
    static Scratch one;
    one.Reset();
    return one;
}

void Scratch::Reset() {
    storage::CloseStore();
    for (const char* ending : {"", "-wal", "-shm"})
        unlink((device.folder + "/objectstore.db" + ending).c_str());
    WriteHostFile(device.folder + "/objectstore.db", store);
    for (const fs::directory_entry& entry : fs::directory_iterator(device.folder + "/root"))
        fs::remove_all(entry.path());
    static_cast<SettingsData&>(settings) = [this] {
        SettingsData fresh;
        fresh.listFont = settings.listFont;
        fresh.boldFont = settings.boldFont;
        fresh.noProgress = 1;
        fresh.interactive = 0;
        return fresh;
    }();
    App().settings = &settings;
    dialogAnswer = IDOK;
    sleeping = nullptr;
}

void Scratch::Write(const char* name, std::string_view bytes) const {
    WriteHostFile(device.folder + "/root/" + name, std::string(bytes));
}

bool Scratch::Holds(const std::u16string& path) const {
    std::string host;
    const WCHAR* way = path.c_str();
    while (way[0] == u'\\' && way[1] == u'\\') // of doubled separators one may be taken away
        ++way;
    return HostPath(way, host) &&
           (fs::absolute(host).lexically_normal().string() + '/').starts_with(device.folder + "/root/");
}

void ReadEverything() {
    const HANDLE databases = CeFindFirstDatabase(0);
    if (databases == INVALID_HANDLE_VALUE)
        return;
    while (const CEOID oid = CeFindNextDatabase(databases)) {
        CEOIDINFO info = {};
        CeOidGetInfo(oid, &info);
        ReadDatabase(oid, 0);
        for (WORD order = 0; order < info.infDatabase.wNumSortOrder; ++order)
            ReadDatabase(oid, info.infDatabase.rgSortSpecs[order].propid);
    }
    CloseHandle(databases);
}
