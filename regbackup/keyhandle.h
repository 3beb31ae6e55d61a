// An open key of the registry.
#pragma once

#include "platform/errors.h"
#include "platform/registry.h"

// Closes the key at its end.
class KeyHandle {
public:
    KeyHandle() = default;
    ~KeyHandle() { Close(); }
    KeyHandle(const KeyHandle&) = delete;
    KeyHandle& operator=(const KeyHandle&) = delete;

    bool Open(HKEY parent, const WCHAR* path) {
        return RegOpenKeyExW(parent, path, 0, KEY_ALL_ACCESS, &key) == ERROR_SUCCESS;
    }
    bool Create(HKEY parent, const WCHAR* path, const WCHAR* keyClass) {
        return RegCreateKeyExW(parent, path, 0, keyClass, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                               &key, nullptr) == ERROR_SUCCESS;
    }
    // False when what was changed through it could not be written.
    bool Close() {
        const HKEY closing = key;
        key = 0;
        return !closing || RegCloseKey(closing) == ERROR_SUCCESS;
    }

    HKEY key = 0;
};
