// Device paths and the host's paths behind them (platform/files.h has the rule).
#pragma once

#include <string>

#include "platform/types.h"

// The host path of a device path. Names are matched to what is there; from the first name that is missing on,
// they are taken as they stand. False for a path that leads nowhere: empty, above the device's root, to
// another machine, or not well-formed text.
bool HostPath(const WCHAR* devicePath, std::string& host);

// The device path of an absolute host path: `\...` below the device's root, else `\Storage Card\...`.
std::u16string DevicePath(const std::string& host);

// A path of the host without links in it; empty when it leads nowhere.
std::string RealPath(const std::string& path);
