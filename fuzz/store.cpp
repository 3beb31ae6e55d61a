// A store with any rows in its tables: everything is read, changed and deleted.
#include "fuzz/targets.h"
#include "regbackup/registrybackup.h"
#include "store/dbhandle.h"
#include "tests/storage/storesupport.h"

namespace {

struct Table {
    const char* insert;
    int columns;
};
constexpr Table kTables[] = {
    {"INSERT OR REPLACE INTO identifiers VALUES (?)", 1},
    {"INSERT OR REPLACE INTO databases VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)", 11},
    {"INSERT OR REPLACE INTO records VALUES (?, ?, ?)", 3},
    {"INSERT OR REPLACE INTO sortkeys VALUES (?, ?, ?)", 3},
    {"INSERT OR REPLACE INTO keys VALUES (?, ?, ?, ?, ?)", 5},
    {"INSERT OR REPLACE INTO vals VALUES (?, ?, ?, ?, ?)", 5},
};

// A value of any type, whatever its column is for.
void BindValue(sqlite3_stmt* row, int column, Input& input) {
    switch (input.Byte() % 8) {
    case 0:
        sqlite3_bind_int64(row, column, static_cast<signed char>(input.Byte()));
        return;
    case 1:
        sqlite3_bind_int64(row, column, input.Number(4));
        return;
    case 2:
        sqlite3_bind_int64(row, column, input.Number(8));
        return;
    case 3: { // a record's row below its database's
        const std::int64_t database = input.Byte();
        sqlite3_bind_int64(row, column, database << 32 | input.Byte());
        return;
    }
    case 4: {
        const std::u16string text = input.Text(input.Byte());
        sqlite3_bind_text16(row, column, text.data(), static_cast<int>(text.size() * sizeof(WCHAR)),
                            SQLITE_TRANSIENT);
        return;
    }
    case 5: {
        const std::string_view bytes = input.Bytes(static_cast<std::size_t>(input.Number(2)));
        sqlite3_bind_blob(row, column, bytes.data(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
        return;
    }
    case 6:
        sqlite3_bind_double(row, column, static_cast<double>(input.Number(8)));
        return;
    }
    sqlite3_bind_null(row, column);
}

void InsertRows(Input& input, sqlite3* store) {
    while (!input.Ended()) {
        const Table& table = kTables[input.Byte() % std::size(kTables)];
        sqlite3_stmt* row = nullptr;
        sqlite3_prepare_v2(store, table.insert, -1, &row, nullptr);
        for (int column = 1; column <= table.columns; ++column)
            BindValue(row, column, input);
        sqlite3_step(row); // a row that the table's own rules refuse is left out
        sqlite3_finalize(row);
    }
}

void ChangeDatabase(const WCHAR* name) {
    DbHandle database(nullptr);
    if (database.Open(name, 0, 0) == INVALID_HANDLE_VALUE)
        return;
    DWORD index = 0;
    RecordBuffer record;
    if (WalkToFirst(database, &index) && database.ReadRecord(&record)) {
        database.WriteRecord(0, record);
        const CEOID made = Values().Number(1, 5).Text(2, u"Zoe").Write(database.handle);
        database.DeleteRecord(made);
    }
    CEDBASEINFO info;
    database.GetInfo(&info);
    database.Close();
    std::swap(info.rgSortSpecs[0], info.rgSortSpecs[1]);
    info.wNumSortOrder = 1;
    database.SetInfo(database.oid, info);
}

void ChangeEverything() {
    const HANDLE databases = CeFindFirstDatabase(0);
    if (databases == INVALID_HANDLE_VALUE)
        return;
    while (const CEOID oid = CeFindNextDatabase(databases)) {
        CEOIDINFO info = {};
        if (!CeOidGetInfo(oid, &info))
            continue;
        ChangeDatabase(info.infDatabase.szDbaseName);
        CeDeleteDatabase(oid);
    }
    CloseHandle(databases);
}

} // namespace

void FuzzStore(Input input) {
    Scratch& scratch = Scratch::Fresh();
    sqlite3* store = nullptr;
    sqlite3_open((scratch.device.folder + "/objectstore.db").c_str(), &store);
    sqlite3_exec(store, "BEGIN", nullptr, nullptr, nullptr);
    InsertRows(input, store);
    sqlite3_exec(store, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(store);
    if (!OpenDeviceStore())
        return;
    ReadEverything();
    RegistryBackup(nullptr, u"\\all.rbk").Save();
    ChangeEverything();
}
