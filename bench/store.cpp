// The least that a program can do with SQLite, as the peer of what the store does with it:
//   bench-store insert FILE RECORDS BYTES   makes FILE anew and inserts records, each its own durable step
//   bench-store read FILE                   reads every record of a device's objectstore.db once, in order
#include <cstdio>
#include <cstdlib>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

[[noreturn]] void Fail(sqlite3* database) {
    std::fprintf(stderr, "bench-store: %s\n", sqlite3_errmsg(database));
    std::exit(1);
}

sqlite3_stmt* Prepare(sqlite3* database, const char* sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) != SQLITE_OK)
        Fail(database);
    return statement;
}

void Run(sqlite3* database, sqlite3_stmt* statement) {
    if (sqlite3_step(statement) != SQLITE_DONE)
        Fail(database);
    sqlite3_reset(statement);
}

sqlite3* Open(const std::string& file) {
    sqlite3* database = nullptr;
    if (sqlite3_open(file.c_str(), &database) != SQLITE_OK)
        Fail(database);
    return database;
}

// With the store's own settings.
void Insert(const std::string& file, int records, int bytes) {
    for (const char* ending : {"", "-wal", "-shm"})
        unlink((file + ending).c_str());
    sqlite3* database = Open(file);
    if (sqlite3_exec(
            database,
            "PRAGMA encoding = 'UTF-16le'; PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;"
            "CREATE TABLE records (id INTEGER PRIMARY KEY, properties INTEGER NOT NULL, data BLOB NOT NULL)",
            nullptr, nullptr, nullptr) != SQLITE_OK)
        Fail(database);
    sqlite3_stmt* begin = Prepare(database, "BEGIN IMMEDIATE");
    sqlite3_stmt* insert = Prepare(database, "INSERT INTO records VALUES (?1, 4, ?2)");
    sqlite3_stmt* commit = Prepare(database, "COMMIT");
    std::string data(static_cast<std::size_t>(bytes), 'd');
    for (int record = 1; record <= records; ++record) {
        Run(database, begin);
        sqlite3_bind_int(insert, 1, record);
        sqlite3_bind_blob(insert, 2, data.data(), bytes, SQLITE_STATIC);
        Run(database, insert);
        Run(database, commit);
    }
    for (sqlite3_stmt* statement : {begin, insert, commit})
        sqlite3_finalize(statement);
    sqlite3_close(database);
}

void Read(const std::string& file) {
    sqlite3* database = Open(file);
    sqlite3_stmt* select = Prepare(database, "SELECT properties, data FROM records ORDER BY id");
    long long properties = 0;
    long long bytes = 0;
    int result = sqlite3_step(select);
    for (; result == SQLITE_ROW; result = sqlite3_step(select)) {
        properties += sqlite3_column_int(select, 0);
        const void* data = sqlite3_column_blob(select, 1);
        bytes += data ? sqlite3_column_bytes(select, 1) : 0;
    }
    if (result != SQLITE_DONE)
        Fail(database);
    std::printf("%lld %lld\n", properties, bytes);
    sqlite3_finalize(select);
    sqlite3_close(database);
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view what = argc > 1 ? argv[1] : "";
    if (what == "insert" && argc == 5) {
        Insert(argv[2], std::atoi(argv[3]), std::atoi(argv[4]));
    } else if (what == "read" && argc == 3) {
        Read(argv[2]);
    } else {
        std::fputs("usage: bench-store insert FILE RECORDS BYTES | read FILE\n", stderr);
        return 2;
    }
    return 0;
}
