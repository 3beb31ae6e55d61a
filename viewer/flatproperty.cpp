#include "viewer/flatproperty.h"

#include <cstring>

#include "platform/errors.h"
#include "platform/text.h"
#include "store/propertyvalues.h"

namespace {

constexpr DWORD kHeaderBytes = sizeof(FlatProperty);

struct Payload {
    const void* data;
    DWORD bytes;
};

// An empty text that is present keeps its terminator; an absent one has nothing.
Payload PayloadOf(const CEPROPVAL& property) {
    switch (TypeFromPropID(property.propid)) {
    case CEVT_LPWSTR: {
        const WCHAR* text = property.val.lpwstr;
        return {text, text ? static_cast<DWORD>((lstrlenW(text) + 1) * sizeof(WCHAR)) : 0};
    }
    case CEVT_BLOB:
        return {static_cast<const BYTE*>(property.val.blob.lpb), property.val.blob.dwCount};
    }
    return {nullptr, 0};
}

void PointAtPayload(CEPROPVAL* property, BYTE* payload) {
    switch (TypeFromPropID(property->propid)) {
    case CEVT_LPWSTR:
        property->val.lpwstr = reinterpret_cast<WCHAR*>(payload);
        break;
    case CEVT_BLOB:
        property->val.blob.lpb = payload;
        break;
    }
}

bool TextEnds(const WCHAR* text, DWORD characters) {
    for (DWORD index = 0; index < characters; ++index)
        if (text[index] == 0)
            return true;
    return false;
}

} // namespace

bool IsKnownType(WORD type) {
    return TypeListName(type) != nullptr;
}

FlatProperty* Flatten(const CEPROPVAL& property) {
    if (!IsKnownType(TypeFromPropID(property.propid))) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const Payload payload = PayloadOf(property);
    auto* block = static_cast<BYTE*>(LocalAlloc(LMEM_FIXED, kHeaderBytes + payload.bytes));
    if (!block)
        return nullptr;
    auto* flat = reinterpret_cast<FlatProperty*>(block);
    flat->property = property;
    if (payload.bytes != 0)
        std::memcpy(block + kHeaderBytes, payload.data, payload.bytes);
    PointAtPayload(&flat->property, payload.bytes != 0 ? block + kHeaderBytes : nullptr);
    return flat;
}

bool Unflatten(FlatProperty* block, DWORD bytes, CEPROPVAL* property) {
    if (bytes < kHeaderBytes || !IsKnownType(TypeFromPropID(block->property.propid)))
        return false;
    *property = block->property;
    const DWORD payloadBytes = bytes - kHeaderBytes;
    BYTE* payload = reinterpret_cast<BYTE*>(block) + kHeaderBytes;
    switch (TypeFromPropID(property->propid)) {
    case CEVT_LPWSTR:
        if (property->val.lpwstr.Address() == 0)
            return true;
        if (!TextEnds(reinterpret_cast<const WCHAR*>(payload), payloadBytes / sizeof(WCHAR)))
            return false;
        break;
    case CEVT_BLOB:
        if (property->val.blob.lpb.Address() == 0) {
            property->val.blob.dwCount = 0;
            return true;
        }
        if (property->val.blob.dwCount > payloadBytes)
            return false;
        break;
    }
    PointAtPayload(property, payload);
    return true;
}
