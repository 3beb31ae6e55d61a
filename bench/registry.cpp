// The registry's backup and restore, with their progress:
//   bench-registry make DIR KEYS      makes a device whose registry has so many keys with three values each
//   bench-registry save DIR FILE      backs the registry up
//   bench-registry restore DIR FILE   restores it
// The last two print the processor seconds that it took.
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>

#include "app/application.h"
#include "platform/device.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/ui/core/testhooks.h"
#include "regbackup/registrybackup.h"

namespace {

bool MakeKey(HKEY parent, const WCHAR* path, int number) {
    HKEY key = 0;
    if (RegCreateKeyExW(parent, path, 0, u"Item", REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &key,
                        nullptr) != ERROR_SUCCESS)
        return false;
    WCHAR text[40];
    wsprintfW(text, u"The value of item %05d", number);
    const BYTE bytes[32] = {static_cast<BYTE>(number)};
    const DWORD textBytes = static_cast<DWORD>((lstrlenW(text) + 1) * sizeof(WCHAR));
    RegSetValueExW(key, u"Description", 0, REG_SZ, reinterpret_cast<const BYTE*>(text), textBytes);
    RegSetValueExW(key, u"Number", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
    RegSetValueExW(key, u"Settings", 0, REG_BINARY, bytes, sizeof bytes);
    return RegCloseKey(key) == ERROR_SUCCESS;
}

bool Make(int keys) {
    HKEY software = 0;
    bool made = RegCreateKeyExW(HKEY_LOCAL_MACHINE, u"Software", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                &software, nullptr) == ERROR_SUCCESS;
    for (int number = 0; made && number < keys; ++number) {
        WCHAR path[100];
        wsprintfW(path, u"Maker %03d\\Product %02d\\Item %05d", number / 1000, number / 50 % 20, number);
        made = MakeKey(software, path, number);
    }
    return RegCloseKey(software) == ERROR_SUCCESS && made;
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view what = argc == 4 ? argv[1] : "";
    if ((what != "make" && what != "save" && what != "restore") || !UseDevice(argv[2])) {
        std::fputs("usage: bench-registry make DIR KEYS | save DIR FILE | restore DIR FILE\n", stderr);
        return 2;
    }
    if (what == "make")
        return Make(std::atoi(argv[3])) ? 0 : 1;
    static char module;
    App().instance = reinterpret_cast<HINSTANCE>(&module);
    const auto settings = std::make_unique<Settings>();
    App().settings = settings.get();
    ui::TestHooks().messageBox = [](const ui::MessageBoxSeen&) { ui::AnswerMessageBox(IDOK); };
    const std::string name = argv[3];
    const std::u16string path(name.begin(), name.end());
    if (what == "save")
        DeleteFileW(path.c_str()); // nobody would be asked whether to overwrite it
    const std::clock_t start = std::clock();
    RegistryBackup backup(nullptr, path.c_str());
    const bool done = what == "save" ? backup.Save() : backup.Open() && backup.Restore();
    std::printf("%.4f\n", static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    App().settings = nullptr;
    return done ? 0 : 1;
}
