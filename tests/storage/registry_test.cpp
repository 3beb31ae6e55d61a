#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/errors.h"
#include "platform/handles.h"
#include "platform/registry.h"
#include "tests/platform/otherprocess.h"
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

LONG Open(HKEY parent, const WCHAR* path, HKEY* key) {
    return RegOpenKeyExW(parent, path, 0, KEY_READ, key);
}

// Name and class, for which so many characters are left beside their terminators.
LONG KeyAt(HKEY key, DWORD index, std::u16string* found, DWORD room = 255, DWORD classRoom = 255) {
    WCHAR name[MAX_PATH];
    WCHAR keyClass[MAX_PATH];
    ++room;
    ++classRoom;
    const LONG result = RegEnumKeyExW(key, index, name, &room, nullptr, keyClass, &classRoom, nullptr);
    *found = result == 0 ? std::u16string(name, room) + u" " + keyClass : u"";
    return result;
}

LONG ValueAt(HKEY key, DWORD index, std::u16string* found) {
    WCHAR name[MAX_PATH];
    DWORD length = MAX_PATH;
    const LONG result = RegEnumValueW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr);
    *found = std::u16string(name, result == 0 ? length : 0);
    return result;
}

// In the order of the enumeration.
std::vector<std::u16string> ValueNames(HKEY key) {
    std::vector<std::u16string> names;
    std::u16string name;
    LONG result = 0;
    while ((result = ValueAt(key, static_cast<DWORD>(names.size()), &name)) == 0)
        names.push_back(name);
    EXPECT_EQ(result, LONG{ERROR_NO_MORE_ITEMS});
    return names;
}

TEST(Registry, KeysAreFoundWithoutRegardToCaseAndKeepTheirSpelling) {
    TestDevice device;
    HKEY key = 0;
    DWORD disposition = 0;
    const auto make = [&](const WCHAR* path, const WCHAR* keyClass) {
        EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, keyClass, 0, KEY_ALL_ACCESS, nullptr, &key,
                                  &disposition),
                  0);
        return disposition;
    };
    EXPECT_EQ(Open(HKEY_CURRENT_USER, u"Software\\Acme", &key), LONG{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(make(u"Software\\Acme\\Tool", u"Sort"), REG_CREATED_NEW_KEY);
    EXPECT_EQ(Set(key, u"Number", REG_DWORD, {1, 2, 3, 4}), 0);
    EXPECT_EQ(RegCloseKey(key), 0);
    EXPECT_EQ(RegCloseKey(key), LONG{ERROR_INVALID_HANDLE});
    EXPECT_EQ(Set(key, u"Number", REG_DWORD, {}), LONG{ERROR_INVALID_HANDLE});
    device.Restart();
    EXPECT_EQ(make(u"SOFTWARE\\acme\\TOOL", u"Other"), REG_OPENED_EXISTING_KEY);
    DWORD size = 4;
    BYTE data[4];
    EXPECT_EQ(RegQueryValueExW(key, u"NUMBER", nullptr, nullptr, data, &size), 0);
    EXPECT_EQ(Open(HKEY_LOCAL_MACHINE, u"Software", &key), LONG{ERROR_FILE_NOT_FOUND})
        << "the main keys are apart";

    HKEY same = 0;
    std::u16string found;
    const HKEY acme = Make(HKEY_CURRENT_USER, u"software\\acme");
    ASSERT_EQ(Open(acme, u"", &same), 0);
    EXPECT_EQ(KeyAt(same, 0, &found), 0);
    EXPECT_EQ(found, u"Tool Sort");
    EXPECT_EQ(KeyAt(same, 1, &found), LONG{ERROR_NO_MORE_ITEMS});
    EXPECT_EQ(Open(acme, std::u16string(256, u'k').c_str(), &same), LONG{ERROR_INVALID_PARAMETER});

    ASSERT_EQ(Open(HKEY_CURRENT_USER, u"", &key), 0);
    EXPECT_EQ(RegCloseKey(key), 0);
    EXPECT_EQ(RegCloseKey(key), LONG{ERROR_INVALID_HANDLE}) << "it is gone, not kept for ever";
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), 0);
    EXPECT_EQ(Set(HKEY_CURRENT_USER, u"Own", REG_SZ, {1}), 0) << "a main key itself stays open";
    EXPECT_EQ(ValueNames(HKEY_CURRENT_USER), std::vector<std::u16string>{u"Own"});
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

TEST(Registry, NamesAndPathsHaveTheirLimits) {
    TestDevice device;
    HKEY key = 0;
    const auto make = [&](HKEY parent, std::size_t rest) {
        const std::u16string path = u"\\two\\" + std::u16string(rest, u'p');
        return RegCreateKeyExW(parent, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    };
    const HKEY deep = Make(HKEY_CURRENT_USER, std::u16string(200, u'd').c_str());
    EXPECT_EQ(make(deep, 55), LONG{ERROR_FILENAME_EXCED_RANGE}) << "200 + 4 + 56 characters";
    std::u16string found;
    EXPECT_EQ(KeyAt(deep, 0, &found), LONG{ERROR_NO_MORE_ITEMS});
    EXPECT_EQ(make(deep, 54), 0);
    EXPECT_EQ(make(key, 1), LONG{ERROR_FILENAME_EXCED_RANGE}) << "counted from the main key";
    EXPECT_EQ(Set(deep, std::u16string(260, u'n').c_str(), REG_SZ, {}), LONG{ERROR_INVALID_PARAMETER});
}

// Enumerations read some items at a time, and know that something has changed.
TEST(Registry, EnumerationsGoThroughManyKeysAndValues) {
    TestDevice device;
    constexpr int kMany = 150;
    const auto nameOf = [](int number) {
        return std::u16string{u'n', static_cast<char16_t>(u'0' + number / 100),
                              static_cast<char16_t>(u'0' + number / 10 % 10),
                              static_cast<char16_t>(u'0' + number % 10)};
    };
    const HKEY key = Make(HKEY_LOCAL_MACHINE, u"Many");
    for (int number = kMany - 1; number >= 0; --number) {
        Set(key, nameOf(number).c_str(), REG_BINARY, std::vector<BYTE>(1000, static_cast<BYTE>(number)));
        RegCloseKey(Make(HKEY_LOCAL_MACHINE, (u"Many\\" + nameOf(number)).c_str(), nameOf(number).c_str()));
    }
    std::u16string found;
    std::vector<BYTE> data(1000);
    for (int number = 0; number < kMany; ++number) {
        const std::u16string name = nameOf(number);
        ASSERT_EQ(KeyAt(key, static_cast<DWORD>(number), &found, 4, 4), 0);
        EXPECT_EQ(found, name + u" " + name);
        DWORD size = 1000;
        ASSERT_EQ(RegQueryValueExW(key, name.c_str(), nullptr, nullptr, data.data(), &size), 0);
        EXPECT_EQ(data, std::vector<BYTE>(1000, static_cast<BYTE>(number)));
    }
    EXPECT_EQ(ValueNames(key).size(), std::size_t{kMany});
    EXPECT_EQ(KeyAt(key, kMany, &found), LONG{ERROR_NO_MORE_ITEMS});
    EXPECT_EQ(KeyAt(key, 140, &found, 4, 3), LONG{ERROR_MORE_DATA});
    EXPECT_EQ(KeyAt(key, 3, &found, 3, 4), LONG{ERROR_MORE_DATA});

    // From the other end, and with a key that is new between two steps.
    EXPECT_EQ(KeyAt(key, 3, &found), 0);
    RegCloseKey(Make(HKEY_LOCAL_MACHINE, u"Many\\a"));
    EXPECT_EQ(KeyAt(key, 4, &found), 0);
    EXPECT_EQ(found, u"n003 n003");
    // What moves into a place that a deletion has freed is not looked at again.
    EXPECT_EQ(ValueAt(key, 0, &found), 0);
    EXPECT_EQ(RegDeleteValueW(key, u"N000"), 0);
    EXPECT_EQ(ValueAt(key, 1, &found), 0);
    EXPECT_EQ(found, u"n002");
    // Neighbours whose values are read together do not get each other's.
    for (int round = 0; round < 2; ++round) {
        for (int number = 0; number < kMany; ++number) {
            const HKEY below = Make(key, nameOf(number).c_str());
            EXPECT_EQ(ValueNames(below).size(), number % 3 == 0 ? std::size_t(round) : 0U);
            if (number % 3 == 0)
                Set(below, nameOf(number).c_str(), REG_NONE, {});
            RegCloseKey(below);
        }
    }
    const HKEY last = Make(key, nameOf(kMany - 3).c_str());
    EXPECT_EQ(ValueNames(last), std::vector<std::u16string>{nameOf(kMany - 3)});
}

// Made and set in one step, with the handle's end.
TEST(Registry, ChangesThroughOneKeyAreOneStep) {
    TestDevice device;
    OtherProcess other({[] {
                            HKEY key = 0;
                            return Open(HKEY_CURRENT_USER, u"New\\Key", &key) == 0 &&
                                   ValueNames(key).size() == 2;
                        },
                        [] {
                            const HKEY key = Make(HKEY_CURRENT_USER, u"Other");
                            Set(key, u"lost", REG_SZ, {});
                            return true; // and it is killed
                        }});
    HKEY key = Make(HKEY_CURRENT_USER, u"New\\Key", u"Class");
    for (const WCHAR* name : {u"one", u"two", u"three"})
        EXPECT_EQ(Set(key, name, REG_SZ, {1}), 0);
    EXPECT_EQ(RegDeleteValueW(key, u"ONE"), 0);
    EXPECT_EQ(RegDeleteValueW(key, u"one"), LONG{ERROR_FILE_NOT_FOUND});
    EXPECT_FALSE(other.Run(0));
    EXPECT_EQ(RegCloseKey(key), 0);
    EXPECT_TRUE(other.Run(0));
    EXPECT_TRUE(other.Run(1));
    other.Kill();
    EXPECT_EQ(Open(HKEY_CURRENT_USER, u"Other", &key), LONG{ERROR_FILE_NOT_FOUND});

    // A step that cannot be written is told of by whatever was to write it, and leaves nothing.
    device.RunSql("CREATE TRIGGER refuse BEFORE INSERT ON vals WHEN NEW.folded = 'bad' "
                  "BEGIN SELECT RAISE(FAIL, 'no'); END");
    key = Make(HKEY_CURRENT_USER, u"Third");
    EXPECT_EQ(Set(key, u"good", REG_SZ, {}), 0);
    EXPECT_EQ(Set(key, u"bad", REG_SZ, {}), 0);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExW(key, u"good", nullptr, nullptr, nullptr, &size), LONG{ERROR_FILE_CORRUPT});
    EXPECT_EQ(RegCloseKey(key), LONG{ERROR_FILE_CORRUPT});
    EXPECT_EQ(Open(HKEY_CURRENT_USER, u"Third", &key), LONG{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(Set(HKEY_CURRENT_USER, u"bad", REG_SZ, {}), LONG{ERROR_FILE_CORRUPT});
    EXPECT_EQ(Set(HKEY_CURRENT_USER, u"good", REG_SZ, {}), 0);
}

} // namespace
