// Any bytes as an archive: listed, then restored.
#include <algorithm>

#include "backup/restore.h"
#include "fuzz/targets.h"

namespace {

constexpr const WCHAR* kArchive = u"\\a.bkp";

// As the list of what is to be restored does it.
void ListArchive() {
    constexpr DWORD kMostRows = 100;
    RestoreEngine engine;
    DatabaseBlock block;
    if (!engine.Open(nullptr, kArchive))
        return;
    engine.entryOffset = engine.header.firstEntry;
    for (DWORD row = 0; row < std::min(engine.header.databaseCount, kMostRows); ++row) {
        engine.PeekDatabaseBlock(engine.entryOffset, &block);
        if (!engine.ReadDatabaseBlock(&block) || !engine.MoveToNextEntry(block))
            return;
    }
}

} // namespace

void FuzzArchive(Input input) {
    Scratch& scratch = Scratch::Fresh();
    scratch.settings.includeSystemDatabases = 1;
    scratch.Write("a.bkp", input.Rest());
    ListArchive();
    RestoreCommand(nullptr, kArchive);
    ReadEverything();
}
