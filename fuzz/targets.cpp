#include "fuzz/targets.h"

#include <algorithm>

namespace {

constexpr Target kTargets[] = {
    {"archive", FuzzArchive},       {"clipboard", FuzzClipboard},
    {"codestream", FuzzCodeStream}, {"commandline", FuzzCommandLine},
    {"receive", FuzzReceive},       {"registryfile", FuzzRegistryFile},
    {"script", FuzzScript},         {"send", FuzzSend},
    {"settings", FuzzSettings},     {"store", FuzzStore},
};

const Target* chosen = nullptr;

} // namespace

const Target* FindTarget(const std::string& name) {
    const auto found = std::find_if(std::begin(kTargets), std::end(kTargets),
                                    [&](const Target& target) { return target.name == name; });
    return found != std::end(kTargets) ? found : nullptr;
}

void ChooseTarget(const Target* target) {
    chosen = target;
}

int LLVMFuzzerTestOneInput(const BYTE* data, std::size_t size) {
    chosen->run(Input(data, size));
    return 0;
}
