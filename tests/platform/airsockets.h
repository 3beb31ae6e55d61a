// The host's side of the air. The host's calls have the names of those in platform/irda.h, so they stay
// apart.
#pragma once

#include <string>

#include "platform/base/descriptor.h"

// A socket at that path, as another device puts it there. Closing it leaves a dead one.
Descriptor PutSocket(const std::string& path);
// Gives the folder to another user; false when the caller may not.
bool GiveAway(const std::string& folder);
