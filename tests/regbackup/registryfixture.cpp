#include "tests/regbackup/registryfixture.h"

#include <gtest/gtest.h>
const char* const kSampleFile = R"(
    31 30 57 52 54 00 00 00 00 00 00 00 00 00 00 00
    00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
    00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
    02 00 00 00 54 00 00 00 00 80 3e d5 ab d5 c2 01
    01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
    00 00 00 00
    02 00 00 00 01 00 00 80 06 00 00 00 41 00 62 00
    00 00 04 00 00 00 63 00 00 00
    02 00 00 00 00 00 01 00 00 00 04 00 00 00 78 00
    00 00
    04 00 00 00 6e 00 00 00 04 00 00 00 04 00 00 00
    07 00 00 00)";

namespace {

std::string Narrow(const WCHAR* text) {
    return testing::PrintToString(std::u16string(text));
}

constexpr DWORD kRoom = 1 << 15;

// Opens a key while it lives, and makes it first.
class TestKey {
public:
    TestKey(HKEY mainKey, const std::u16string& path, const WCHAR* keyClass = u"") {
        EXPECT_EQ(
            RegCreateKeyExW(mainKey, path.c_str(), 0, keyClass, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
            0);
    }
    ~TestKey() { EXPECT_EQ(RegCloseKey(key), 0); }
    HKEY key = 0;
};

std::string ValuesOf(HKEY key) {
    std::string listing;
    for (DWORD index = 0;; ++index) {
        WCHAR name[MAX_PATH];
        static BYTE data[kRoom];
        DWORD length = MAX_PATH, type = 0, size = kRoom;
        if (RegEnumValueW(key, index, name, &length, nullptr, &type, data, &size) != 0)
            return listing;
        listing += "  " + Narrow(name) + " " + std::to_string(type) + " " +
                   testing::PrintToString(std::string(reinterpret_cast<const char*>(data), size)) + "\n";
    }
}

std::string Below(HKEY key, const std::string& path) {
    std::string listing;
    for (DWORD index = 0;; ++index) {
        WCHAR name[MAX_PATH], keyClass[MAX_PATH];
        DWORD length = MAX_PATH, classLength = MAX_PATH;
        if (RegEnumKeyExW(key, index, name, &length, nullptr, keyClass, &classLength, nullptr) != 0)
            return listing;
        HKEY subkey = 0;
        EXPECT_EQ(RegOpenKeyExW(key, name, 0, KEY_READ, &subkey), 0);
        const std::string subpath = path + "\\" + Narrow(name);
        listing += subpath + " [" + Narrow(keyClass) + "]\n" + ValuesOf(subkey) + Below(subkey, subpath);
        RegCloseKey(subkey);
    }
}

} // namespace

void SetBytes(HKEY mainKey, const std::u16string& path, const std::u16string& name, DWORD type,
              const std::string& bytes) {
    const TestKey key(mainKey, path);
    EXPECT_EQ(RegSetValueExW(key.key, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                             static_cast<DWORD>(bytes.size())),
              0);
}

void SetText(HKEY mainKey, const std::u16string& path, const std::u16string& name,
             const std::u16string& text) {
    const char* const bytes = reinterpret_cast<const char*>(text.c_str());
    SetBytes(mainKey, path, name, REG_SZ, {bytes, (text.size() + 1) * sizeof(WCHAR)});
}

void DeleteValue(HKEY mainKey, const std::u16string& path, const std::u16string& name) {
    const TestKey key(mainKey, path);
    EXPECT_EQ(RegDeleteValueW(key.key, name.c_str()), 0);
}

void MakeSampleKey() {
    { const TestKey withClass(HKEY_CURRENT_USER, u"Ab", u"c"); }
    SetText(HKEY_CURRENT_USER, u"Ab", u"", u"x");
    SetBytes(HKEY_CURRENT_USER, u"Ab", u"n", REG_DWORD, {"\7\0\0\0", 4});
}

std::string Listing(HKEY mainKey) {
    return Below(mainKey, "");
}

std::string WholeRegistry() {
    return "CLASSES\n" + Listing(HKEY_CLASSES_ROOT) + "USER\n" + Listing(HKEY_CURRENT_USER) + "MACHINE\n" +
           Listing(HKEY_LOCAL_MACHINE);
}
