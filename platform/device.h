// Which folder of the host is the device: objectstore.db and root/ lie in it. Paths here are the host's, in
// UTF-8.
#pragma once

#include <string>

// Chooses the device; an empty name stands for the usual one: $STRANDVIEW_DEVICE, else
// pocket-strandview/device in $XDG_DATA_HOME, else in ~/.local/share. The folder and its root/ are made when
// they are missing. To be called before the store, the registry or a device file is used. False when the
// folder cannot be made and is not there, with last error ERROR_ACCESS_DENIED, ERROR_DISK_FULL or
// ERROR_PATH_NOT_FOUND.
bool UseDevice(const std::string& folder);

// The chosen device, without a slash at the end. When none was chosen yet the usual one is.
const std::string& DeviceFolder();
std::string DeviceStorePath();
std::string DeviceRootFolder();

// Opens the store of the chosen device, and makes it when it is missing. False with one of the object store's
// last errors when it cannot be used. A store that can only be read can be used.
bool OpenDeviceStore();
