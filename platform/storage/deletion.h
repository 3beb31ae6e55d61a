// How a database leaves the store, on a full disk too.
#pragma once

#include "platform/storage/store.h"

namespace storage {

// Deletes a database with everything that it holds. On a full disk the room set aside is given up for it.
// False with the last error set.
bool DeleteDatabase(Store& store, CEOID database);
// Within a write transaction.
bool DeleteSortKeys(Store& store, CEOID database);
// Deletes what databases left behind that were deleted on a full disk, and sets room aside again. To be
// called when no room is set aside; does what it can.
void TidyUp(Store& store);

} // namespace storage
