// A dialog's layout on a screen that is narrower than its template.
#pragma once

#include <QSize>
#include <vector>

#include "platform/ui/core/windowobject.h"

namespace ui {

struct SqueezedLayout {
    std::vector<ControlHome> homes;
    QSize size;
};

// The same controls in that width, or in the least that they can do with: small gaps stay as they are, wide
// controls give way first, and what wraps into more lines pushes down what is below it. In the template's
// width or more only texts that are longer than their place push.
SqueezedLayout Squeeze(const std::vector<ControlHome>& homes, const QSize& natural, int width);

} // namespace ui
