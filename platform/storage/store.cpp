#include "platform/storage/store.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <memory>

#include "platform/device.h"
#include "platform/storage/opendatabase.h"
#include "platform/storage/storefile.h"

namespace storage {

namespace {

constexpr std::uint64_t kLargestBlock = 64;
constexpr std::uint64_t kIdentifiersEnd = 0xFFFFFFFF; // the greatest of all is never given out

std::unique_ptr<Store>& Slot() {
    // Never destroyed as an object: it is closed at exit, while everything that it uses is still there.
    static auto* slot = new std::unique_ptr<Store>;
    return *slot;
}

} // namespace

void Store::Refresh() {
    const std::uint64_t word = locks.Word().load();
    if (word != knownWord || word % 2 != 0) {
        ForgetCached();
        knownWord = word;
    }
}

void Store::ForgetCached() {
    ++epoch;
    catalogue.Clear();
    // Others may have taken identifiers beyond this block, and later ones must be greater.
    nextIdentifier = endIdentifier = 0;
    blockSize = 1;
}

CEOID Store::NewIdentifier() {
    if (nextIdentifier == endIdentifier) {
        Statement select(connection, "SELECT next FROM identifiers");
        if (!select.Row()) {
            if (!select.Failed())
                SetLastError(ERROR_FILE_CORRUPT);
            return 0;
        }
        // Identifiers are set aside in blocks, so that the counter is not written with each record. The block
        // grows while this process is alone.
        const std::uint64_t next = static_cast<std::uint64_t>(std::max<std::int64_t>(select.Number(0), 1));
        const std::uint64_t end = std::min(next + blockSize, kIdentifiersEnd);
        if (next >= end) {
            SetLastError(ERROR_DISK_FULL);
            return 0;
        }
        Statement update(connection, "UPDATE identifiers SET next = ?1");
        if (!update.Bind(static_cast<std::int64_t>(end)).Run())
            return 0;
        nextIdentifier = next;
        endIdentifier = end;
        blockSize = std::min(2 * blockSize, kLargestBlock);
    }
    return static_cast<CEOID>(nextIdentifier++);
}

WriteTransaction::WriteTransaction(Store& store) : store(store) {
    if (store.readOnlyError != ERROR_SUCCESS) {
        SetLastError(store.readOnlyError);
        return;
    }
    if (!Statement(store.connection, "BEGIN IMMEDIATE").Run())
        return;
    begun = true;
    // Nobody else can write now: a word that is odd was left by a process that died.
    store.Refresh();
    word = (store.locks.Word().load() + 1) | 1;
    store.locks.Word().store(word);
}

WriteTransaction::~WriteTransaction() {
    if (begun) {
        const DWORD cause = GetLastError();
        Statement(store.connection, "ROLLBACK").Run(); // fails when SQLite did so by itself
        SetLastError(cause);
        store.nextIdentifier = store.endIdentifier = 0;
        End();
    }
}

bool WriteTransaction::Commit() {
    if (!Statement(store.connection, "COMMIT").Run())
        return false;
    begun = false;
    End();
    return true;
}

void WriteTransaction::End() {
    // Only if no other process has begun meanwhile: then the word is that one's to make even.
    std::uint64_t expected = word;
    store.locks.Word().compare_exchange_strong(expected, word + 1);
    // The own change leaves the own caches good. If the word is another's already, this one will not match
    // it.
    store.knownWord = word + 1;
}

Store* TheStore() {
    std::unique_ptr<Store>& slot = Slot();
    if (slot && slot->readOnlyError == ERROR_DISK_FULL && OpenDatabases().empty())
        slot.reset(); // there may be room by now
    if (!slot) {
        auto store = std::make_unique<Store>();
        if (!OpenStoreFile(*store, DeviceStorePath()))
            return nullptr;
        slot = std::move(store);
        [[maybe_unused]] static const int registered = std::atexit(CloseStore);
    }
    slot->Refresh();
    return slot.get();
}

void CloseStore() {
    Slot().reset();
}

Store* StoreIfOpen() {
    return Slot().get();
}

FILETIME Now() {
    constexpr std::uint64_t kSecondsFrom1601To1970 = 11'644'473'600;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const std::uint64_t ticks =
        (static_cast<std::uint64_t>(now.tv_sec) + kSecondsFrom1601To1970) * 10'000'000 +
        static_cast<std::uint64_t>(now.tv_nsec) / 100;
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

} // namespace storage
