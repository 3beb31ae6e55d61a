// Backs up a device's databases: bench-backup DIR ARCHIVE plain|compressed
//
// The command line of the program always compresses; here one can choose.
#include "backup/backup.h"

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "app/application.h"
#include "platform/device.h"

namespace {

bool BackUp(const WCHAR* archive, bool compress) {
    const auto engine = std::make_unique<BackupEngine>();
    engine->compress = compress;
    if (!engine->BeginBackup(nullptr, false, archive))
        return false;
    const HANDLE databases = CeFindFirstDatabase(0);
    bool whole = databases != INVALID_HANDLE_VALUE;
    while (const CEOID oid = whole ? CeFindNextDatabase(databases) : 0) {
        CEOIDINFO info = {};
        whole = CeOidGetInfo(oid, &info) && engine->WriteDatabase(info.infDatabase.szDbaseName);
    }
    CloseHandle(databases);
    return engine->Finish() && whole;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4 || !UseDevice(argv[1])) {
        std::fputs("usage: bench-backup DIR ARCHIVE plain|compressed\n", stderr);
        return 2;
    }
    static char module;
    App().instance = reinterpret_cast<HINSTANCE>(&module);
    const auto settings = std::make_unique<Settings>();
    settings->interactive = 0;
    settings->unattended = 1;
    settings->noProgress = 1;
    App().settings = settings.get();
    const std::string archive = argv[2];
    const std::u16string path(archive.begin(), archive.end());
    const bool whole = BackUp(path.c_str(), std::string_view(argv[3]) == "compressed");
    App().settings = nullptr;
    return whole ? 0 : 1;
}
