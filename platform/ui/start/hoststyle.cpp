#include "platform/ui/start/hoststyle.h"

#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

#include "platform/ui/drawing/look.h"

namespace ui {

namespace {

constexpr int kCorner = 2; // pixels

} // namespace

HostStyle::HostStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void HostStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (look::Dark() && !(option->state & State_HasFocus))
        DrawEdge(element, *option, *painter);
}

// The host's edges are darker than the window, which nobody sees on a dark one.
void HostStyle::DrawEdge(PrimitiveElement element, const QStyleOption& option, QPainter& painter) {
    const QRectF edge = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(option.state & State_Enabled ? look::Edge() : look::Line());
    switch (element) {
    case PE_IndicatorRadioButton:
        painter.drawEllipse(edge);
        break;
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
    case PE_PanelButtonCommand:
    case PE_PanelLineEdit:
    case PE_Frame:
    case PE_FrameMenu:
        painter.drawRoundedRect(edge, kCorner, kCorner);
        break;
    default:
        break;
    }
    painter.restore();
}

// Lists drop down below their line, as on the handheld, and not over it.
int HostStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* result) const {
    return hint == SH_ComboBox_Popup ? 0 : QProxyStyle::styleHint(hint, option, widget, result);
}

} // namespace ui
