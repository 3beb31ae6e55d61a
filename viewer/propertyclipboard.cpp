#include "viewer/propertyclipboard.h"

#include "lists/clipboardtext.h"
#include "platform/shell.h"
#include "store/propertyvalues.h"

UINT PropertyClipFormat() {
    static const UINT format = RegisterClipboardFormatW(u"NV_DatabasePropFmt");
    return format;
}

namespace {

// For other programs; binary data has no text that anybody could use.
void OfferValueText(const CEPROPVAL& property) {
    WCHAR buffer[kValueTextCapacity];
    if (TypeFromPropID(property.propid) != CEVT_BLOB)
        OfferText(FormatPropertyText(property, buffer));
}

} // namespace

bool PutPropertyOnClipboard(HWND owner, const CEPROPVAL& property) {
    if (!OpenClipboard(owner))
        return true;
    if (!IsKnownType(TypeFromPropID(property.propid)))
        return false;
    FlatProperty* block = Flatten(property);
    if (!block) {
        SHShowOutOfMemory(owner, 0);
        return false;
    }
    EmptyClipboard();
    if (SetClipboardData(PropertyClipFormat(), block)) {
        OfferValueText(property);
        return true;
    }
    LocalFree(block);
    return false;
}

FlatProperty* CopyPropertyFromClipboard() {
    const UINT format = PropertyClipFormat();
    void* block = IsClipboardFormatAvailable(format) ? GetClipboardData(format) : nullptr;
    CEPROPVAL property;
    const bool fits = block && Unflatten(static_cast<FlatProperty*>(block),
                                         static_cast<DWORD>(LocalSize(block)), &property);
    return fits ? Flatten(property) : nullptr;
}
