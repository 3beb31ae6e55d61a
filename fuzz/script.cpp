// Any bytes as an Autobackup script, as far as its archive is one of the scratch device.
#include <algorithm>
#include <cstring>

#include "backup/autobackup.h"
#include "fuzz/targets.h"
#include "platform/text.h"

void FuzzScript(Input input) {
    Scratch& scratch = Scratch::Fresh();
    const std::string bytes(input.Rest());
    ScriptHeader header = {};
    std::memcpy(&header, bytes.data(), std::min(bytes.size(), sizeof(header)));
    const auto end = std::find(std::begin(header.archivePath), std::end(header.archivePath), WCHAR(0));
    if (!scratch.Holds({header.archivePath, end}))
        return;
    scratch.Write("s.abk", bytes);
    CopyText(scratch.settings.scriptName, u"\\s.abk");
    RunAutobackup(nullptr);
    ReadEverything();
}
