#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/errors.h"
#include "platform/handles.h"
#include "platform/registry.h"
#include "tests/support/testdevice.h"

namespace {

HKEY Make(HKEY parent, const WCHAR* path, const WCHAR* keyClass = nullptr) {
    HKEY key = 0;
    EXPECT_EQ(RegCreateKeyExW(parent, path, 0, keyClass, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                              &key, nullptr),
              LONG{ERROR_SUCCESS});
    return key;
}

LONG Set(HKEY key, const WCHAR* name, DWORD type, const std::vector<BYTE>& bytes) {
    return RegSetValueExW(key, name, 0, type, bytes.data(), static_cast<DWORD>(bytes.size()));
}

// In the order of the enumeration.
std::vector<std::u16string> ValueNames(HKEY key) {
    std::vector<std::u16string> names;
    WCHAR name[MAX_PATH];
    for (DWORD index = 0;; ++index) {
        DWORD length = MAX_PATH;
        const LONG result = RegEnumValueW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (result != 0) {
            EXPECT_EQ(result, LONG{ERROR_NO_MORE_ITEMS});
            return names;
        }
        names.emplace_back(name, length);
    }
}

TEST(Registry, KeysAreFoundWithoutRegardToCaseAndKeepTheirSpelling) {
    TestDevice device;
    HKEY key = 0;
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\Acme", 0, KEY_READ, &key),
              LONG{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    DWORD disposition = 0;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, u"Software\\Acme\\Tool", 0, u"Sort", 0, KEY_ALL_ACCESS,
                              nullptr, &key, &disposition),
              0);
    EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
    EXPECT_EQ(Set(key, u"Number", REG_DWORD, {1, 2, 3, 4}), 0);
    EXPECT_EQ(RegCloseKey(key), 0);
    EXPECT_EQ(RegCloseKey(key), LONG{ERROR_INVALID_HANDLE});
    EXPECT_EQ(Set(key, u"Number", REG_DWORD, {}), LONG{ERROR_INVALID_HANDLE});
    device.Restart();
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, u"SOFTWARE\\acme\\TOOL", 0, u"Other", 0, KEY_ALL_ACCESS,
                              nullptr, &key, &disposition),
              0);
    EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
    DWORD size = 4;
    BYTE data[4];
    EXPECT_EQ(RegQueryValueExW(key, u"NUMBER", nullptr, nullptr, data, &size), 0);
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Software", 0, KEY_READ, &key), LONG{ERROR_FILE_NOT_FOUND})
        << "the main keys are apart";

    HKEY same = 0;
    const HKEY acme = Make(HKEY_CURRENT_USER, u"software\\acme");
    ASSERT_EQ(RegOpenKeyExW(acme, u"", 0, KEY_READ, &same), 0);
    WCHAR name[MAX_PATH];
    WCHAR keyClass[MAX_PATH];
    DWORD nameLength = MAX_PATH;
    DWORD classLength = MAX_PATH;
    ASSERT_EQ(RegEnumKeyExW(same, 0, name, &nameLength, nullptr, keyClass, &classLength, nullptr), 0);
    EXPECT_EQ(std::u16string(name), u"Tool");
    EXPECT_EQ(nameLength, 4U);
    EXPECT_EQ(std::u16string(keyClass), u"Sort");
    nameLength = 4;
    EXPECT_EQ(RegEnumKeyExW(same, 0, name, &nameLength, nullptr, nullptr, nullptr, nullptr),
              LONG{ERROR_MORE_DATA});
    EXPECT_EQ(RegEnumKeyExW(same, 1, name, &nameLength, nullptr, nullptr, nullptr, nullptr),
              LONG{ERROR_NO_MORE_ITEMS});
    EXPECT_EQ(RegOpenKeyExW(acme, std::u16string(256, u'k').c_str(), 0, KEY_READ, &same),
              LONG{ERROR_INVALID_PARAMETER});
}

TEST(Registry, ValuesComeBackWithTheirBytesWhateverTheTypeSays) {
    TestDevice device;
    const HKEY key = Make(HKEY_LOCAL_MACHINE, u"Values");
    const std::vector<BYTE> text(58, 0x41);
    EXPECT_EQ(Set(key, u"ScriptName", REG_DWORD, text), 0);
    EXPECT_EQ(Set(key, nullptr, REG_SZ, {}), 0);
    EXPECT_EQ(Set(key, u"large", REG_BINARY, std::vector<BYTE>(20000, 7)), 0);
    EXPECT_EQ(Set(key, u"Odd", 0x12345, {9}), 0);
    EXPECT_EQ(Set(key, u"SCRIPTNAME", REG_DWORD, text), 0) << "the same value, which keeps its spelling";
    EXPECT_EQ(ValueNames(key), (std::vector<std::u16string>{u"", u"large", u"Odd", u"ScriptName"}));

    DWORD type = 77;
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExW(key, u"scriptname", nullptr, &type, nullptr, &size), 0);
    EXPECT_EQ(type, REG_DWORD);
    EXPECT_EQ(size, 58U);
    std::vector<BYTE> data(16384, 0xEE);
    const auto query = [&](const WCHAR* name, DWORD room) {
        size = room;
        return RegQueryValueExW(key, name, nullptr, &type, data.data(), &size);
    };
    EXPECT_EQ(query(u"ScriptName", 57), LONG{ERROR_MORE_DATA});
    EXPECT_EQ(size, 58U);
    EXPECT_EQ(data[0], 0xEE);
    EXPECT_EQ(query(u"ScriptName", 58), 0);
    EXPECT_EQ(std::vector<BYTE>(data.begin(), data.begin() + 58), text);
    EXPECT_EQ(query(u"", 10), 0);
    EXPECT_EQ(size, 0U);
    EXPECT_EQ(query(u"missing", 10), LONG{ERROR_FILE_NOT_FOUND});

    const auto enumerate = [&](DWORD index) {
        WCHAR name[MAX_PATH];
        DWORD length = MAX_PATH;
        size = 16384;
        return RegEnumValueW(key, index, name, &length, nullptr, &type, data.data(), &size);
    };
    EXPECT_EQ(enumerate(1), LONG{ERROR_MORE_DATA});
    EXPECT_EQ(size, 20000U);
    EXPECT_EQ(enumerate(2), 0);
    EXPECT_EQ(type, 0x12345U);
    EXPECT_EQ(size, 1U);
    EXPECT_EQ(data[0], 9);
}

TEST(Registry, HandlesOnMainKeysAreClosedAndPathsHaveTheirLimit) {
    TestDevice device;
    HKEY key = 0;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"", 0, KEY_READ, &key), 0);
    EXPECT_EQ(RegCloseKey(key), 0);
    EXPECT_EQ(RegCloseKey(key), LONG{ERROR_INVALID_HANDLE}) << "it is gone, not kept for ever";
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), 0);
    EXPECT_EQ(Set(HKEY_CURRENT_USER, u"Own", REG_SZ, {1}), 0) << "a main key itself stays open";
    EXPECT_EQ(ValueNames(HKEY_CURRENT_USER), std::vector<std::u16string>{u"Own"});

    const auto make = [&](HKEY parent, std::size_t rest) {
        const std::u16string path = u"\\two\\" + std::u16string(rest, u'p');
        return RegCreateKeyExW(parent, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    };
    const HKEY deep = Make(HKEY_CURRENT_USER, std::u16string(200, u'd').c_str());
    EXPECT_EQ(make(deep, 55), LONG{ERROR_FILENAME_EXCED_RANGE}) << "200 + 4 + 56 characters";
    WCHAR name[MAX_PATH];
    DWORD length = MAX_PATH;
    EXPECT_EQ(RegEnumKeyExW(deep, 0, name, &length, nullptr, nullptr, nullptr, nullptr),
              LONG{ERROR_NO_MORE_ITEMS});
    EXPECT_EQ(make(deep, 54), 0);
    EXPECT_EQ(make(key, 1), LONG{ERROR_FILENAME_EXCED_RANGE}) << "counted from the main key";
}

TEST(Registry, EnumerationGoesOnAmongDeletions) {
    TestDevice device;
    const HKEY key = Make(HKEY_CLASSES_ROOT, u"Many");
    for (char16_t letter = u'a'; letter <= u'f'; ++letter)
        Set(key, std::u16string(1, letter).c_str(), REG_BINARY, {1});
    WCHAR name[MAX_PATH];
    DWORD length = MAX_PATH;
    ASSERT_EQ(RegEnumValueW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(RegDeleteValueW(key, u"A"), 0);
    length = MAX_PATH;
    ASSERT_EQ(RegEnumValueW(key, 1, name, &length, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(std::u16string(name), u"c") << "what moved into the freed place is not looked at again";
    EXPECT_EQ(RegDeleteValueW(key, u"a"), LONG{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(ValueNames(key).size(), 5U);
    EXPECT_EQ(RegSetValueExW(key, std::u16string(260, u'n').c_str(), 0, REG_SZ, nullptr, 0),
              LONG{ERROR_INVALID_PARAMETER});
}

} // namespace
