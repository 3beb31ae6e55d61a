// What the tests of registry backups share: keys and values in short forms, and a file written down by hand.
#pragma once

#include <string>

#include "platform/registry.h"
#include "tests/support/filebytes.h"

// One key, "Ab" below HKEY_CURRENT_USER with the class "c", with its default value "x" and a number "n";
// docs/formats.md explains the bytes.
extern const char* const kSampleFile;
constexpr std::size_t kHeaderEnd = 84;

void SetText(HKEY mainKey, const std::u16string& path, const std::u16string& name,
             const std::u16string& text);
void SetBytes(HKEY mainKey, const std::u16string& path, const std::u16string& name, DWORD type,
              const std::string& bytes);
void DeleteValue(HKEY mainKey, const std::u16string& path, const std::u16string& name);
void MakeSampleKey();

// Every key below a main key with its class and its values, as a text to compare.
std::string Listing(HKEY mainKey);
std::string WholeRegistry();
