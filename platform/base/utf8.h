// Between the platform's text and the host's.
#pragma once

#include <string>
#include <string_view>

#include "platform/types.h"

// What is not well-formed becomes the replacement character.
std::string ToUtf8(std::u16string_view text);
std::u16string FromUtf8(std::string_view text);
