// Waiting for a lock that another process has.
#pragma once

#include <chrono>

namespace storage {

class Waiting {
public:
    // Waits for a moment before the next try; after a second it tells on standard error for whom. `holder` is
    // the process that has the lock, 0 when that is not known. False when it is time to give up.
    bool Nap(int holder);

private:
    std::chrono::steady_clock::time_point start;
    int naps = 0;
    bool told = false;
};

} // namespace storage
