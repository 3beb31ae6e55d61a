#include "platform/device.h"
#include "platform/storage/store.h"

bool OpenDeviceStore() {
    return storage::TheStore() != nullptr;
}
