// The store's file: how it is opened and laid out.
#pragma once

#include "platform/storage/store.h"

namespace storage {

// Opens a store, makes it when the file is missing or empty, and never touches a file that is no store. False
// with the last error set.
bool OpenStoreFile(Store& store, const std::string& path);

} // namespace storage
