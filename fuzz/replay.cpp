// Runs inputs once: those in the given folders as FOLDER/TARGET/INPUT. A folder may be missing.
#include <cstdio>
#include <filesystem>

#include "fuzz/targets.h"
#include "tests/platform/hostsupport.h"

namespace {

namespace fs = std::filesystem;

int RunFolder(const fs::path& folder) {
    const Target* const target = FindTarget(folder.filename().string());
    Require(target, "each folder is named after a target");
    ChooseTarget(target);
    int inputs = 0;
    for (const fs::directory_entry& input : fs::directory_iterator(folder)) {
        std::printf("%s\n", input.path().c_str());
        std::fflush(stdout);
        const std::string bytes = HostFile(input.path().string());
        LLVMFuzzerTestOneInput(reinterpret_cast<const BYTE*>(bytes.data()), bytes.size());
        ++inputs;
    }
    return inputs;
}

} // namespace

int main(int argc, char** argv) {
    int inputs = 0;
    for (int place = 1; place < argc; ++place)
        if (const fs::path folder = fs::absolute(argv[place]); fs::exists(folder))
            for (const fs::directory_entry& target : fs::directory_iterator(folder))
                inputs += RunFolder(target.path());
    Require(inputs > 0, "there are inputs");
    return 0;
}
