// The colours of everything that the platform draws itself.
#pragma once

#include <QColor>

namespace ui::look {

inline const QColor kSelection(0x2f, 0x6f, 0xb5);
inline const QColor kSelectionText(Qt::white);
inline const QColor kIdleSelection(0xd3, 0xe0, 0xee); // selected while the focus is elsewhere
inline const QColor kAlternateRow(0xf5, 0xf8, 0xfc);
inline const QColor kLine(0xc3, 0xcb, 0xd5);
inline const QColor kHeader(0xe9, 0xee, 0xf4);
inline const QColor kHeaderPressed(0xd5, 0xde, 0xe9);
inline const QColor kTrough(0xe6, 0xea, 0xef);

} // namespace ui::look
