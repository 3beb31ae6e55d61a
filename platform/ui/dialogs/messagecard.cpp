#include "platform/ui/dialogs/messagecard.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QTextOption>
#include <algorithm>

#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/core/accessible.h"
#include "platform/ui/drawing/look.h"
#include "platform/ui/screen/screen.h"

namespace ui {

namespace {

constexpr int kIconSize = 32; // pixels at 96 to the inch
constexpr QColor kCaptionColour(0x17, 0x33, 0x62);

} // namespace

MessageCard::MessageCard(QWidget* parent, const QString& caption, const QString& text, const QIcon& icon)
    : QWidget(parent), caption(caption), icon(icon), bar(new QScrollBar(Qt::Vertical, this)) {
    QTextOption wrapping;
    // A path without blanks has to break somewhere, too.
    wrapping.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document.setDefaultTextOption(wrapping);
    document.setDefaultFont(font());
    document.setDocumentMargin(0);
    document.setPlainText(text);
    GiveRole(this, QAccessible::StaticText);
    setAccessibleName(text);
    bar->hide();
    TakeOwnInput(bar);
    connect(bar, &QScrollBar::valueChanged, this, qOverload<>(&QWidget::update));
}

void MessageCard::Fit(const QSize& most, const QSize& below) {
    const int beside = TextLeft() + Scaled(kMargin);
    Break(most.width() - beside);
    const int wanted = std::max(qCeil(document.idealWidth()) + beside, below.width() + 2 * Scaled(kMargin));
    const int width = std::min(most.width(), std::max(wanted, CaptionWidth()));
    Break(width - beside);
    const int around = TextTop() + Scaled(kGap) + below.height() + Scaled(kMargin);
    const int body = std::max(TextHeight(), icon.isNull() ? 0 : Scaled(kIconSize));
    resize(width, std::min(around + body, most.height()));
    shown = height() - around;
    ShowBar(width - beside);
}

void MessageCard::ShowBar(int textWidth) {
    const bool scrolls = TextHeight() > shown;
    if (scrolls)
        Break(textWidth - ScrollBarWidth());
    bar->setRange(0, std::max(0, TextHeight() - shown));
    bar->setPageStep(std::max(1, shown));
    bar->setSingleStep(QFontMetrics(font()).lineSpacing());
    bar->setGeometry(width() - ScrollBarWidth() - 1, CaptionHeight() + 1, ScrollBarWidth(),
                     TextTop() - CaptionHeight() + shown);
    bar->setVisible(scrolls);
}

void MessageCard::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QColor paper = palette().color(QPalette::Base);
    painter.fillRect(rect(), paper);
    painter.setPen(look::Readable(kCaptionColour, paper));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    painter.setFont(CaptionFont());
    const QRect captionRect(Scaled(kMargin), 0, width() - 2 * Scaled(kMargin), CaptionHeight());
    painter.drawText(captionRect, Qt::AlignVCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(caption, Qt::ElideRight, captionRect.width()));
    painter.drawLine(0, CaptionHeight(), width(), CaptionHeight());
    if (!icon.isNull())
        icon.paint(&painter, Scaled(kMargin), TextTop(), Scaled(kIconSize), Scaled(kIconSize));
    painter.setClipRect(0, TextTop(), width(), shown);
    painter.translate(TextLeft(), TextTop() - bar->value());
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette = palette();
    document.documentLayout()->draw(&painter, context);
}

void MessageCard::Break(int width) {
    document.setTextWidth(std::max(1, width));
}

int MessageCard::TextHeight() const {
    return qCeil(document.size().height());
}

QFont MessageCard::CaptionFont() const {
    QFont bold = font();
    bold.setBold(true);
    return bold;
}

int MessageCard::CaptionWidth() const {
    return QFontMetrics(CaptionFont()).horizontalAdvance(caption) + 2 * Scaled(kMargin);
}

int MessageCard::CaptionHeight() const {
    return QFontMetrics(CaptionFont()).height() + Scaled(kGap);
}

int MessageCard::TextTop() const {
    return CaptionHeight() + Scaled(kMargin);
}

int MessageCard::TextLeft() const {
    return Scaled(kMargin) + (icon.isNull() ? 0 : Scaled(kIconSize) + Scaled(kGap));
}

} // namespace ui
