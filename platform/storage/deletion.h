// How a database leaves the store, on a full disk too.
#pragma once

#include "platform/storage/store.h"

namespace storage {

// Deletes a database with everything that it holds. It is gone when its row is; what it leaves is deleted in
// small steps, for each takes room of the log, and on a later opening when that cannot be done now. False
// with the last error set.
bool DeleteDatabase(Store& store, CEOID database);
// Within a write transaction.
bool DeleteSortKeys(Store& store, CEOID database);
// Within a write transaction: the database is deleted by TidyUp, once nobody has it open, unless it was
// finished before.
bool MarkUnfinished(Store& store, CEOID database);
bool FinishDatabase(Store& store, CEOID database);
// Deletes what earlier deletions left and what was never finished, unless nothing is known to be left, and
// sets room aside for later ones. To be called with the setup lock.
void TidyUp(Store& store);

} // namespace storage
