// Any bytes as the block in which a property lies on the clipboard.
#include <algorithm>
#include <cstring>

#include "fuzz/targets.h"
#include "platform/heap.h"
#include "store/propertyvalues.h"
#include "viewer/flatproperty.h"

void FuzzClipboard(Input input) {
    const std::string_view bytes = input.Rest();
    auto* const block = static_cast<FlatProperty*>(LocalAlloc(LMEM_FIXED, bytes.size()));
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(block));
    CEPROPVAL property;
    if (Unflatten(block, static_cast<DWORD>(bytes.size()), &property)) {
        WCHAR text[kValueTextCapacity];
        FormatPropertyText(property, text);
        FlatProperty* const again = Flatten(property);
        Require(again && LocalSize(again) <= std::max(bytes.size(), sizeof(FlatProperty)),
                "what was read can be copied, and takes no more");
        LocalFree(again);
    }
    LocalFree(block);
}
