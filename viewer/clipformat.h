// The private clipboard format for one property: a FlatProperty block.
#pragma once

#include "platform/types.h"

UINT PropertyClipFormat();
