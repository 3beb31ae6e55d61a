// Which files of the host belong to a device itself, and are none of the program's.
#pragma once

#include <string>

// The real path of a file; links are followed, also one that leads to a file yet to be made. Empty when a
// folder on the way is missing, or links go round in a circle.
std::string RealFilePath(const std::string& host);

// Whether the file lies in the folder of a device, the chosen one or another, but not below its root/, or is
// a file of the chosen device's store by another name. Looks at identities, so that links do not hide it.
bool BelongsToDevice(const std::string& host);
