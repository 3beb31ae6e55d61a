// The bytes of a link between two devices.
#pragma once

#include "platform/base/descriptor.h"

// `link` does not block. Both return the bytes, or -1 with the last error set.
int SendOverLink(const Descriptor& link, const char* buffer, int length);
int ReceiveFromLink(const Descriptor& link, char* buffer, int length);
// Whether a call of ReceiveFromLink would not wait.
bool LinkHasNews(const Descriptor& link);

// As SetBlockingHook has it; public because the calls of platform/irda.h cannot see the host's.
void SetLinkHook(bool (*hook)(void* context), void* context);
// For tests: after how much silence a link has broken, 40 seconds unless changed.
void SetLinkPatience(int milliseconds);
