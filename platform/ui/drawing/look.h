// The colours of everything that the platform draws itself, out of the desktop's palette as it is now.
#pragma once

#include <QColor>
#include <QPalette>

class QWidget;

namespace ui::look {

QColor Selection();
QColor SelectionText();
QColor IdleSelection(); // selected while the focus is elsewhere
QColor AlternateRow();
QColor Line();
QColor Edge(); // of a control on a dark window
QColor Header();
QColor HeaderPressed();
QColor Trough();
QColor Window();
bool Dark();
QColor Warning(); // on a window

// `share` of the one over the other.
QColor Blend(const QColor& over, const QColor& under, double share);
// The colour itself when it can be read on that background, else one of its hue that can.
QColor Readable(const QColor& wanted, const QColor& background);

// Gives the widget, and what is inside, another colour in that role, also when the desktop's colours change.
void Recolour(QWidget* widget, QPalette::ColorRole role, QColor (*colour)());

} // namespace ui::look
