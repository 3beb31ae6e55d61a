#include "platform/storage/waiting.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>

namespace storage {

namespace {

using std::chrono::seconds;

constexpr int kShortNaps = 100;
constexpr long kShortNap = 200'000; // nanoseconds
constexpr long kLongNap = 5'000'000;
constexpr seconds kSilence{1};
// A process that lives and says that it has the lock gets its time; a lock that nobody owns up to does not.
constexpr seconds kLongestWait{60};
constexpr seconds kLongestWaitForNobody{10};

bool Lives(int process) {
    return process > 0 && (kill(process, 0) == 0 || errno == EPERM);
}

} // namespace

bool Waiting::Nap(int holder) {
    const auto now = std::chrono::steady_clock::now();
    if (naps == 0)
        start = now;
    const timespec nap{0, naps < kShortNaps ? kShortNap : kLongNap};
    ++naps;
    nanosleep(&nap, nullptr);
    const bool known = Lives(holder);
    if (now - start > kSilence && !told) {
        told = true;
        if (known) {
            std::fprintf(stderr, "pocket-strandview: waiting for process %d, which is changing the device\n",
                         holder);
        } else {
            std::fputs("pocket-strandview: waiting for another program, which has locked the device\n",
                       stderr);
        }
    }
    return now - start < (known ? kLongestWait : kLongestWaitForNobody);
}

} // namespace storage
