// The least that a program can do with SQLite, as the peer of what the store does with it:
//   bench-store insert FILE RECORDS BYTES   makes FILE anew and inserts records, each its own durable step
//   bench-store keys FILE KEYS              the same with keys of the registry and three values each
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

// A new file with these tables and the store's own settings.
sqlite3* OpenAnew(const std::string& file, const std::string& tables) {
    for (const char* ending : {"", "-wal", "-shm"})
        unlink((file + ending).c_str());
    sqlite3* database = Open(file);
    const std::string settings =
        "PRAGMA encoding = 'UTF-16le'; PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;";
    if (sqlite3_exec(database, (settings + tables).c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        Fail(database);
    return database;
}

void Insert(const std::string& file, int records, int bytes) {
    sqlite3* database = OpenAnew(
        file,
        "CREATE TABLE records (id INTEGER PRIMARY KEY, properties INTEGER NOT NULL, data BLOB NOT NULL)");
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

// With the tables and texts that a registry of so many keys has.
void InsertKeys(const std::string& file, int keys) {
    sqlite3* database = OpenAnew(
        file,
        "CREATE TABLE keys (id INTEGER PRIMARY KEY, parent INTEGER NOT NULL, name TEXT NOT NULL, folded TEXT "
        "NOT "
        "NULL, class TEXT NOT NULL, UNIQUE (parent, folded));"
        "CREATE TABLE vals (key INTEGER NOT NULL, folded TEXT NOT NULL, name TEXT NOT NULL, type INTEGER NOT "
        "NULL, data BLOB NOT NULL, PRIMARY KEY (key, folded)) WITHOUT ROWID");
    sqlite3_stmt* begin = Prepare(database, "BEGIN IMMEDIATE");
    sqlite3_stmt* key = Prepare(database, "INSERT INTO keys VALUES (?1, ?2, ?3, ?4, 'Item')");
    sqlite3_stmt* value = Prepare(database, "INSERT INTO vals VALUES (?1, ?2, ?3, 1, ?4)");
    sqlite3_stmt* commit = Prepare(database, "COMMIT");
    const struct {
        const char16_t* name;
        const char16_t* folded;
        int length;
        int bytes;
    } values[] = {{u"Description", u"description", 11, 48},
                  {u"Number", u"number", 6, 4},
                  {u"Settings", u"settings", 8, 32}};
    const std::string data(48, 'd');
    for (int number = 1; number <= keys; ++number) {
        std::u16string name = u"Item 00000";
        for (int digit = 9, rest = number; digit > 4; --digit, rest /= 10)
            name[static_cast<std::size_t>(digit)] = static_cast<char16_t>(u'0' + rest % 10);
        std::u16string folded = name;
        folded[0] = u'i';
        Run(database, begin);
        sqlite3_bind_int(key, 1, number);
        sqlite3_bind_int(key, 2, number / 50);
        sqlite3_bind_text16(key, 3, name.data(), 20, SQLITE_STATIC);
        sqlite3_bind_text16(key, 4, folded.data(), 20, SQLITE_STATIC);
        Run(database, key);
        for (const auto& one : values) {
            sqlite3_bind_int(value, 1, number);
            sqlite3_bind_text16(value, 2, one.folded, 2 * one.length, SQLITE_STATIC);
            sqlite3_bind_text16(value, 3, one.name, 2 * one.length, SQLITE_STATIC);
            sqlite3_bind_blob(value, 4, data.data(), one.bytes, SQLITE_STATIC);
            Run(database, value);
        }
        Run(database, commit);
    }
    for (sqlite3_stmt* statement : {begin, key, value, commit})
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
    } else if (what == "keys" && argc == 4) {
        InsertKeys(argv[2], std::atoi(argv[3]));
    } else if (what == "read" && argc == 3) {
        Read(argv[2]);
    } else {
        std::fputs("usage: bench-store insert FILE RECORDS BYTES | keys FILE KEYS | read FILE\n", stderr);
        return 2;
    }
    return 0;
}
