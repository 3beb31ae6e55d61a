// Any bytes as a backup of the registry, which is restored; what the registry has then is saved again.
#include "fuzz/targets.h"
#include "regbackup/registrybackup.h"

namespace {

bool Restore(const WCHAR* file) {
    RegistryBackup backup(nullptr, file);
    return backup.Open() && backup.Restore();
}

} // namespace

void FuzzRegistryFile(Input input) {
    const Scratch& scratch = Scratch::Fresh();
    scratch.Write("in.rbk", input.Rest());
    const bool restored = Restore(u"\\in.rbk");
    RegistryBackup saved(nullptr, u"\\out.rbk");
    Require(saved.Save() && (!restored || saved.keyCount == 0 || Restore(u"\\out.rbk")),
            "what was restored can be saved and restored again");
}
