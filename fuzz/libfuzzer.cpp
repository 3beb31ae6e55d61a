// What libFuzzer, which has the main function, asks of a program: here the target that $FUZZ_TARGET names.
#include <cstdlib>

#include "fuzz/targets.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    const char* const name = std::getenv("FUZZ_TARGET");
    const Target* const target = FindTarget(name ? name : "");
    Require(target, "$FUZZ_TARGET names a target");
    ChooseTarget(target);
    return 0;
}
