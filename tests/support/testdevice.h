// A fresh, empty device in a temporary folder, chosen for as long as this lives.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <string>

#include "platform/device.h"
#include "platform/storage/store.h"

class TestDevice {
public:
    TestDevice() {
        std::string name = (std::filesystem::temp_directory_path() / "device.XXXXXX").string();
        folder = mkdtemp(name.data()) ? name : std::string();
        EXPECT_FALSE(folder.empty());
        setenv("XDG_CONFIG_HOME", (folder + "/config").c_str(), 1);
        storage::CloseStore();
        EXPECT_TRUE(UseDevice(folder));
    }
    TestDevice(const TestDevice&) = delete;
    TestDevice& operator=(const TestDevice&) = delete;
    ~TestDevice() {
        storage::CloseStore();
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    // Drops all that the process knows of the store, as a new start would. No database may be open.
    void Restart() { storage::CloseStore(); }

    // A table of the store that cannot be read, as on a disk that has gone bad, until it is whole again.
    void BreakTable(const std::string& table) { RenameTable(table, table + "_broken"); }
    void MendTable(const std::string& table) { RenameTable(table + "_broken", table); }
    // Changes the store as no program of ours would. No database may be open.
    void RunSql(const std::string& sql) {
        Restart();
        sqlite3* store = nullptr;
        ASSERT_EQ(sqlite3_open((folder + "/objectstore.db").c_str(), &store), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(store, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(store);
        sqlite3_close(store);
    }

    std::string folder;

private:
    static void RenameTable(const std::string& from, const std::string& to) {
        const std::string rename = "ALTER TABLE " + from + " RENAME TO " + to;
        EXPECT_EQ(storage::TheStore()->connection.Execute(rename.c_str()), 0);
    }
};
