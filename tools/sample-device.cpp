// Makes a device with sample databases: sample-device DIR
#include <cstdio>
#include <filesystem>
#include <string_view>

#include "platform/device.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "tools/sampledata/sampledatabases.h"

namespace {

constexpr std::string_view kReadme =
    "Welcome to your device\r\n"
    "\r\n"
    "The databases on it are samples: nobody in them exists. Look at them, change them,\r\n"
    "delete them. Backups land in this folder unless another one is chosen.\r\n";

bool WriteReadme() {
    std::error_code error;
    std::filesystem::create_directories(DeviceRootFolder() + "/My Documents", error);
    const HANDLE file = CreateFileW(u"\\My Documents\\readme.txt", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, 0);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    DWORD written = 0;
    const bool whole = WriteFile(file, kReadme.data(), static_cast<DWORD>(kReadme.size()), &written, nullptr);
    return CloseHandle(file) && whole;
}

bool FillDevice() {
    return MakeContacts() && MakeCalendar() && MakeMail() && MakeNotes() && MakeJournals() && MakeCallLog() &&
           MakeVocabulary() && MakeLibrary() && MakeSketches() && MakeOddities() && MakeSystemDatabases() &&
           MakeRegistry() && WriteReadme();
}

int Complain(const char* folder, const char* what) {
    std::fprintf(stderr, "sample-device: %s %s\n", folder, what);
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    // No device is named like an option; one that asks for help gets it.
    if (argc != 2 || argv[1][0] == '-') {
        std::fputs("usage: sample-device DIR\n", stderr);
        return 2;
    }
    const char* folder = argv[1];
    if (!UseDevice(folder))
        return Complain(folder, "cannot be made or opened");
    if (std::filesystem::exists(DeviceStorePath()))
        return Complain(folder, "holds a device already");
    if (!FillDevice()) {
        std::fprintf(stderr, "sample-device: error %u while filling %s\n", GetLastError(), folder);
        return 1;
    }
    return 0;
}
