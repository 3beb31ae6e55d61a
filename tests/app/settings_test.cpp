#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "app/settings.h"
#include "platform/errors.h"
#include "platform/registry.h"
#include "platform/text.h"
#include "tests/support/testdevice.h"

namespace {

const WCHAR* const kKey = u"Software\\Norvance\\Strandview\\Settings";

struct Value {
    DWORD type;
    std::vector<BYTE> bytes;
    bool operator==(const Value&) const = default;
};

Value Read(const WCHAR* name) {
    HKEY key = 0;
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_READ, &key), ERROR_SUCCESS);
    Value value = {0, std::vector<BYTE>(600)};
    auto size = static_cast<DWORD>(value.bytes.size());
    EXPECT_EQ(RegQueryValueExW(key, name, nullptr, &value.type, value.bytes.data(), &size), ERROR_SUCCESS);
    value.bytes.resize(size);
    RegCloseKey(key);
    return value;
}

} // namespace

TEST(Settings, StartWithDefaultsOnAFreshDevice) {
    const TestDevice device;
    const Settings settings;
    EXPECT_EQ(settings.sortKey, kSortByName);
    EXPECT_EQ(settings.sortAscending, 1);
    EXPECT_EQ(settings.showSystemDatabases, 0);
    EXPECT_EQ(settings.listStyle, 1u);
    EXPECT_EQ(settings.fullRow, 1u);
    EXPECT_EQ(settings.showWarning, 1u);
    EXPECT_EQ(settings.doubleTap, 0u);
    EXPECT_EQ(settings.selection[0], kNoSelection);
    EXPECT_EQ(settings.selection[kSelectionBytes - 1], kNoSelection);
    EXPECT_EQ(std::u16string(settings.scriptName), u"\\My Documents\\autobackup.abk");
}

// The bytes as other versions of the program wrote and read them.
TEST(Settings, StoreTheirBytesAsEver) {
    const TestDevice device;
    {
        alignas(Settings) BYTE used[sizeof(Settings)];
        std::memset(used, 0xCC, sizeof used); // what lies between the fields is stored, too
        const std::unique_ptr<Settings, void (*)(Settings*)> made(new (used) Settings,
                                                                  std::destroy_at<Settings>);
        Settings& settings = *made;
        settings.showSystemDatabases = 1;
        settings.listStyle = 3;
        settings.sortAscending = 0;
        settings.selection[1] = 7;
        CopyText(settings.scriptName, u"x");
    }
    EXPECT_EQ(Read(u"SortOrder"), (Value{REG_DWORD, {0, 1, 0, 0}}));
    EXPECT_EQ(Read(u"ShowSysDb"), (Value{REG_DWORD, {1, 0, 0, 3}}));
    EXPECT_EQ(Read(u"Style"), (Value{REG_DWORD, {3, 0, 0, 0}}));
    EXPECT_EQ(Read(u"ScriptName"), (Value{REG_DWORD, {'x', 0, 0, 0}}));
    const Value selection = Read(u"Selection");
    EXPECT_EQ(selection.type, REG_BINARY);
    ASSERT_EQ(selection.bytes.size(), 250u);
    EXPECT_EQ(selection.bytes[1], 7);

    const Settings again;
    EXPECT_EQ(again.showSystemDatabases, 1);
    EXPECT_EQ(again.listStyle, 3u);
    EXPECT_EQ(again.sortAscending, 0);
    EXPECT_EQ(std::u16string(again.scriptName), u"x");
}

TEST(Settings, DistrustWhatTheRegistryHolds) {
    const TestDevice device;
    { const Settings settings; }
    HKEY key = 0;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_ALL_ACCESS, &key), ERROR_SUCCESS);
    const std::vector<BYTE> unterminated(520, 0x41);
    const std::vector<BYTE> tooLong(521, 0x42);
    RegSetValueExW(key, u"ScriptName", 0, REG_SZ, unterminated.data(), 520);
    RegSetValueExW(key, u"Selection", 0, REG_BINARY, tooLong.data(), 521);
    RegSetValueExW(key, u"Bold", 0, REG_DWORD, tooLong.data(), 1);
    RegCloseKey(key);
    const Settings settings;
    EXPECT_EQ(std::u16string(settings.scriptName).size(), 259u);
    EXPECT_EQ(settings.selection[0], kNoSelection);
    EXPECT_EQ(settings.bold, 0x42u);
}
