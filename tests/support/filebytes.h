// Files as bytes, and bytes written down by hand.
#pragma once

#include <vector>

#include "platform/types.h"

using Bytes = std::vector<BYTE>;

Bytes FromHex(const char* text); // blanks and line ends are passed over
Bytes Slice(const Bytes& bytes, std::size_t from, std::size_t count);
void PutNumber(Bytes* bytes, std::size_t offset, DWORD value);
Bytes Changed(Bytes bytes, std::size_t offset, DWORD value);
DWORD NumberAt(const Bytes& bytes, std::size_t offset);

Bytes FileBytes(const WCHAR* path);
void WriteBytes(const WCHAR* path, const Bytes& bytes);
bool FileExists(const WCHAR* path);
