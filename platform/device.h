// Which folder of the host is the device: objectstore.db and root/ lie in it. Paths here are the host's, in
// UTF-8.
#pragma once

#include <string>

// Chooses the device; an empty name stands for the usual one: $STRANDVIEW_DEVICE, else
// pocket-strandview/device in $XDG_DATA_HOME, else in ~/.local/share. To be called before the store, the
// registry or a device file is used.
//
// With `make` the folder and its root/ are made when they are missing; without it, a device must be there. A
// device is its owner's alone: nobody else gets into what is made, and a device of this user that lets others
// in is closed to them.
//
// False when the device cannot be used, with last error ERROR_PATH_NOT_FOUND (no such folder),
// ERROR_FILE_NOT_FOUND (no store in it, or an empty file), ERROR_ACCESS_DENIED, ERROR_DISK_FULL, or
// ERROR_INVALID_PARAMETER when the usual one is asked for and $HOME, on which it depends, names no folder
// from the root on.
bool UseDevice(const std::string& folder, bool make = true);

// The chosen device, without a slash at the end. When none was chosen yet the usual one is.
const std::string& DeviceFolder();
std::string DeviceStorePath();
std::string DeviceRootFolder();

// Opens the store of the chosen device, and makes it when it is missing. False with one of the object store's
// last errors when it cannot be used. A store that can only be read can be used.
bool OpenDeviceStore();
