// A fresh, empty device in a temporary folder, chosen for as long as this lives.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "platform/device.h"
#include "platform/storage/store.h"

class TestDevice {
public:
    TestDevice() {
        std::string name = (std::filesystem::temp_directory_path() / "device.XXXXXX").string();
        folder = mkdtemp(name.data()) ? name : std::string();
        EXPECT_FALSE(folder.empty());
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

    std::string folder;
};
