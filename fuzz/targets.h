// The targets: what each makes of one input. Whatever the input, it returns.
#pragma once

#include "fuzz/support.h"

struct Target {
    const char* name;
    void (*run)(Input input);
};

// Null when there is none of that name.
const Target* FindTarget(const std::string& name);
// Has LLVMFuzzerTestOneInput run it from now on.
void ChooseTarget(const Target* target);

void FuzzArchive(Input input);
void FuzzClipboard(Input input);
void FuzzCodeStream(Input input);
void FuzzCommandLine(Input input);
void FuzzReceive(Input input);
void FuzzRegistryFile(Input input);
void FuzzScript(Input input);
void FuzzSend(Input input);
void FuzzSettings(Input input);
void FuzzStore(Input input);

extern "C" int LLVMFuzzerTestOneInput(const BYTE* data, std::size_t size);
