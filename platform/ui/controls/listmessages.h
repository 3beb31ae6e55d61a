// The list view's messages, by what they are about. Each answers only those of its own.
#pragma once

#include <optional>

#include "platform/ui/controls/listwidget.h"

namespace ui {

using ListAnswer = std::optional<LRESULT>;

ListAnswer RowMessage(ListWidget& list, UINT message, WPARAM wParam, LPARAM lParam);
ListAnswer ColumnMessage(ListWidget& list, UINT message, WPARAM wParam, LPARAM lParam);
ListAnswer ViewMessage(ListWidget& list, UINT message, WPARAM wParam, LPARAM lParam);

// Stable; false when the comparison itself changed the rows, which then stay as they are.
bool SortRows(ListWidget& list, PFNLVCOMPARE compare, LPARAM compareParam);

} // namespace ui
