// The host's style, with what it lacks here.
#pragma once

#include <QProxyStyle>

namespace ui {

class HostStyle : public QProxyStyle {
public:
    HostStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* result) const override;

private:
    static void DrawEdge(PrimitiveElement element, const QStyleOption& option, QPainter& painter);
};

} // namespace ui
