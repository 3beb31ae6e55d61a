#include "platform/ui/core/display.h"

namespace {

// Tests work with windows that nobody sees.
[[maybe_unused]] const bool shown = (ui::SetNoDisplay(false), true);

} // namespace
