// Moving the focus through a window's controls with Ctrl+Tab and Shift+Tab.
#pragma once

#include "platform/window.h"

// True when the message was such a key for a control of the dialog; it is not to be passed on then.
bool CycleFocus(HWND dialog, const MSG& message);
