#include "platform/ui/screen/titlebar.h"

#include <QFontInfo>
#include <QLinearGradient>
#include <QPainter>

#include "platform/ui/core/accessible.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/core/windowsystem.h"
#include "platform/ui/drawing/look.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

// Pixels at 96 to the inch.
constexpr int kTitleMargin = 6;
constexpr int kTitleIconSize = 16;
constexpr int kButtonInset = 3;
constexpr int kOkWidth = 34;
constexpr int kLargestOk = 16; // a font's height, whatever the desktop's is

QColor Translucent(QColor colour, int alpha) {
    colour.setAlpha(alpha);
    return colour;
}

} // namespace

TitleBarButton::TitleBarButton(QWidget* parent) : QAbstractButton(parent) {
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_Hover);
    hide();
}

void TitleBarButton::SetKind(TitleButton kind) {
    shown = kind;
    setAccessibleName(kind == TitleButton::Ok ? QStringLiteral("OK") : QStringLiteral("Close"));
    setVisible(kind != TitleButton::None);
    update();
}

void TitleBarButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF outline = QRectF(rect()).adjusted(1, 1, -1, -1);
    const int fill = isDown() ? 120 : underMouse() ? 80 : 40;
    painter.setPen(QPen(Translucent(look::SelectionText(), 200), 1.4));
    painter.setBrush(Translucent(look::SelectionText(), fill));
    painter.drawRoundedRect(outline, outline.height() / 2, outline.height() / 2);
    painter.setPen(QPen(look::SelectionText(), 1.8, Qt::SolidLine, Qt::RoundCap));
    if (shown == TitleButton::Ok) {
        QFont bold = font();
        bold.setBold(true);
        if (QFontInfo(bold).pixelSize() > Scaled(kLargestOk))
            bold.setPixelSize(Scaled(kLargestOk));
        painter.setFont(bold);
        painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("ok"));
    } else {
        const qreal arm = outline.height() / 5;
        const QPointF centre = outline.center();
        painter.drawLine(centre + QPointF(-arm, -arm), centre + QPointF(arm, arm));
        painter.drawLine(centre + QPointF(-arm, arm), centre + QPointF(arm, -arm));
    }
}

TitleBar::TitleBar(QWidget* parent) : QWidget(parent), button(new TitleBarButton(this)) {
    GiveRole(this, QAccessible::Pane);
    connect(button, &QAbstractButton::clicked, this, [this] { Tapped(); });
}

void TitleBar::Show(const QString& title, TitleButton kind) {
    text = title;
    setAccessibleName(title);
    if (button->Kind() != kind)
        button->SetKind(kind);
    resizeEvent(nullptr);
    update();
}

void TitleBar::SetIcon(const QIcon& icon) {
    picture = icon;
    update();
}

void TitleBar::resizeEvent(QResizeEvent*) {
    const int side = height() - 2 * Scaled(kButtonInset);
    const int wide = button->Kind() == TitleButton::Ok ? std::max(side, Scaled(kOkWidth)) : side;
    button->setGeometry(width() - wide - Scaled(kTitleMargin), Scaled(kButtonInset), wide, side);
}

void TitleBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QLinearGradient shade(0, 0, 0, height());
    const bool lightText = look::SelectionText().lightness() > look::Selection().lightness();
    shade.setColorAt(0, look::Selection().darker(lightText ? 130 : 100));
    shade.setColorAt(1, look::Selection().darker(lightText ? 210 : 100));
    painter.fillRect(rect(), shade);
    QRect textRect = rect().adjusted(Scaled(kTitleMargin), 0, -Scaled(kTitleMargin), 0);
    if (!picture.isNull()) {
        const int side = Scaled(kTitleIconSize);
        picture.paint(&painter, QRect(textRect.left(), (height() - side) / 2, side, side));
        textRect.setLeft(textRect.left() + side + Scaled(kTitleMargin));
    }
    if (button->Kind() != TitleButton::None)
        textRect.setRight(button->x() - Scaled(kTitleMargin));
    QFont bold = font();
    bold.setBold(true);
    painter.setFont(bold);
    painter.setPen(look::SelectionText());
    painter.drawText(textRect, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text, Qt::ElideRight, textRect.width()));
}

void TitleBar::Tapped() {
    kHigherFloors.endLabelEdit();
    const HWND active = ActiveTopLevel();
    if (button->Kind() == TitleButton::Ok)
        PostMessageW(active, WM_COMMAND, IDOK, 0);
    else
        PostMessageW(active, WM_CLOSE, 0, 0);
}

} // namespace ui
