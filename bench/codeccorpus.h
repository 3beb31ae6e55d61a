#pragma once

#include <string_view>
#include <vector>

#include "platform/types.h"

// `size` bytes of "text" or "binaries", from the files of the host's system folders in the order of their
// names, or of "records", made up: contacts as they are stored. Fewer bytes never; none when the host has no
// such files.
std::vector<BYTE> MakeCorpus(std::string_view kind, std::size_t size);
