// How a cell of the list view looks, and where its parts are.
#include <QHeaderView>
#include <QPainter>
#include <QStyleOption>
#include <QTextLayout>
#include <algorithm>

#include "platform/ui/controls/header.h"
#include "platform/ui/controls/listviews.h"
#include "platform/ui/drawing/gdiobjects.h"
#include "platform/ui/drawing/look.h"

namespace ui {

namespace {

constexpr int kMargin = 4;
constexpr int kCheckSize = 16;
constexpr int kMostLines = 3; // of a name below or beside its icon

CellLayout LayOutLargeIcon(const ListWidget& list, const QRect& cell, const QString& text) {
    CellLayout layout;
    QFontMetrics metrics(list.CurrentView()->font());
    QSize image = ImageListSize(list.Images());
    layout.image = QRect(QPoint(cell.center().x() - image.width() / 2, cell.y() + kMargin), image);
    if (list.CheckBoxes())
        layout.check = QRect(cell.x() + 2, layout.image.bottom() - kCheckSize, kCheckSize, kCheckSize);
    const int room = cell.width() - 2 * kMargin;
    const int wanted = metrics.horizontalAdvance(text);
    const int width = std::min(wanted, room) + 2 * kMargin;
    const auto lines = static_cast<int>(LabelLines(list.CurrentView()->font(), text, room).size());
    layout.label = QRect(cell.x() + (cell.width() - width) / 2, layout.image.bottom() + kMargin, width,
                         lines * metrics.lineSpacing() + 2);
    return layout;
}

void PaintCheck(QPainter& painter, const ListWidget& list, const QRect& rect, bool checked) {
    QStyleOptionViewItem option;
    option.rect = rect;
    option.palette = list.palette();
    option.state = (list.isEnabled() ? QStyle::State_Enabled : QStyle::State_None) |
                   (checked ? QStyle::State_On : QStyle::State_Off);
    list.style()->drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &option, &painter, &list);
}

QString Shortened(const QFontMetrics& metrics, const QString& text, int room) {
    return metrics.horizontalAdvance(text) <= room ? text : metrics.elidedText(text, Qt::ElideRight, room);
}

} // namespace

QStringList LabelLines(const QFont& font, const QString& text, int room) {
    const QFontMetrics metrics(font);
    if (metrics.horizontalAdvance(text) <= room)
        return {text};
    QTextLayout layout(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QStringList lines;
    qsizetype shown = 0;
    while (shown < text.size() && lines.size() < kMostLines - 1) {
        QTextLine line = layout.createLine();
        line.setLineWidth(room);
        lines += text.mid(shown, line.textLength()).trimmed();
        shown += line.textLength();
    }
    layout.endLayout();
    if (shown < text.size())
        lines += Shortened(metrics, text.mid(shown), room);
    return lines;
}

namespace {

void PaintIconLabel(QPainter& painter, const QFont& font, const QRect& rect, const QString& text,
                    Qt::Alignment alignment) {
    QRect line(rect.x(), rect.y(), rect.width(), QFontMetrics(font).lineSpacing());
    for (const QString& part : LabelLines(font, text, rect.width())) {
        painter.drawText(line, static_cast<int>(alignment) | Qt::AlignTop | Qt::TextSingleLine, part);
        line.translate(0, line.height());
    }
}

void PaintLabel(QPainter& painter, const ListWidget& list, const QRect& rect, const QString& text,
                int alignment) {
    QFont font = list.CurrentView()->font();
    if (list.View() == LVS_ICON)
        PaintIconLabel(painter, font, rect, text, Qt::AlignHCenter);
    else if (list.View() == LVS_SMALLICON && QFontMetrics(font).horizontalAdvance(text) > rect.width())
        PaintIconLabel(painter, font, rect, text, Qt::AlignLeft);
    else
        painter.drawText(rect, alignment | Qt::AlignVCenter | Qt::TextSingleLine,
                         Shortened(QFontMetrics(font), text, rect.width()));
}

// The highlight of a name beside its small icon is as high as its lines.
void ShrinkToLines(const ListWidget& list, const QString& text, QRect& label) {
    const QFont font = list.CurrentView()->font();
    const auto lines = static_cast<int>(LabelLines(font, text, label.width() - 2 * kMargin).size());
    const int height = std::min(label.height(), lines * QFontMetrics(font).lineSpacing() + 2);
    label = QRect(label.x(), label.y() + (label.height() - height) / 2, label.width(), height);
}

// Headings begin behind the room of their arrow; their values stand below them.
int HeadingIndent(const ListWidget& list) {
    const HeaderView* header = WidgetOf<HeaderView>(list.header);
    if (!header || !header->images)
        return 0;
    const int blank = QFontMetrics(list.details->font()).horizontalAdvance(QLatin1Char(' '));
    return std::max(0, ImageListSize(header->images).width() + blank + 2 - 2 * kMargin);
}

} // namespace

CellLayout LayOutCell(const ListWidget& list, const QRect& cell, int row, int column) {
    const QString text = list.model->Text(row, column);
    if (list.View() == LVS_ICON)
        return LayOutLargeIcon(list, cell, text);
    CellLayout layout;
    int x = cell.x() + kMargin;
    if (column == 0 && list.CheckBoxes()) {
        layout.check = QRect(x, cell.center().y() - kCheckSize / 2 + 1, kCheckSize, kCheckSize);
        x += kCheckSize + kMargin;
    }
    if (column == 0 && list.Images()) {
        QSize image = ImageListSize(list.Images());
        layout.image = QRect(QPoint(x, cell.y() + (cell.height() - image.height()) / 2), image);
        x += image.width() + kMargin / 2;
    }
    const int wanted = QFontMetrics(list.CurrentView()->font()).horizontalAdvance(text) + 2 * kMargin;
    if (column > 0 && x + HeadingIndent(list) + wanted + kMargin / 2 <= cell.right())
        x += HeadingIndent(list);
    const int room = std::max(0, cell.right() - x - kMargin / 2);
    layout.label = QRect(x, cell.y(), std::min(wanted, room), cell.height());
    if (list.View() == LVS_SMALLICON)
        ShrinkToLines(list, text, layout.label);
    if (column > 0) // free to be aligned
        layout.label.setWidth(room);
    return layout;
}

int ContentsWidth(const ListWidget& list, int column) {
    const QFontMetrics metrics(list.CurrentView()->font());
    const int rows = list.model->RowCount();
    int widest = 0;
    for (int row = 0; row < rows; ++row)
        widest = std::max(widest, metrics.horizontalAdvance(list.model->Text(row, column)));
    int left = kMargin + HeadingIndent(list);
    if (column == 0)
        left = rows ? LayOutCell(list, QRect(), 0, column).label.x() : 0;
    const int wanted = left + widest + 2 * kMargin + kMargin / 2 + 1; // what LayOutCell leaves free
    return std::max(wanted, list.details->header()->sectionSizeHint(column));
}

namespace {

bool ShownSelected(const ListWidget& list, int row) {
    return (list.model->Row(row).state & LVIS_SELECTED) &&
           (list.HasKeyboard() || (list.Style() & LVS_SHOWSELALWAYS));
}

QColor SelectionColour(const ListWidget& list) {
    return list.HasKeyboard() ? look::Selection() : look::IdleSelection();
}

bool WholeRows(const ListWidget& list) {
    return list.View() == LVS_REPORT && list.FullRow();
}

} // namespace

namespace {

// A selected picture lies on a patch of its own, for it may have the colours of the highlight.
void PaintPlate(QPainter& painter, const ListWidget& list, const QRect& image) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(list.palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(image).adjusted(-1, -1, 1, 1), kMargin, kMargin);
    painter.restore();
}

} // namespace

void PaintRowBackground(const ListWidget& list, QPainter& painter, const QRect& rect, int row) {
    if (list.model->HasRow(row) && WholeRows(list) && ShownSelected(list, row))
        painter.fillRect(rect, SelectionColour(list));
    else if (row % 2)
        painter.fillRect(rect, look::AlternateRow());
}

void PaintCell(const ListWidget& list, QPainter& painter, const QRect& cell, int row, int column) {
    if (!list.model->HasRow(row))
        return;
    const UINT state = list.model->Row(row).state;
    CellLayout layout = LayOutCell(list, cell, row, column);
    const bool highlighted = ShownSelected(list, row) && (WholeRows(list) || column == 0);
    if (highlighted && !WholeRows(list))
        painter.fillRect(layout.label, SelectionColour(list));
    // Where several rows are selected, a frame shows at which of them the keyboard is.
    const bool alone = highlighted && list.model->SelectedCount() == 1;
    if ((state & LVIS_FOCUSED) && list.HasKeyboard() && !alone && column == 0) {
        painter.setPen(highlighted ? look::SelectionText() : look::Selection());
        painter.drawRect(layout.label.adjusted(0, 0, -1, -1));
    }
    if (!layout.check.isEmpty())
        PaintCheck(painter, list, layout.check, (state & LVIS_STATEIMAGEMASK) == 2u << 12);
    if (!layout.image.isEmpty() && highlighted && WholeRows(list))
        PaintPlate(painter, list, layout.image);
    if (!layout.image.isEmpty())
        DrawPicture(painter, layout.image.topLeft(),
                    ImageListImage(list.Images(), list.model->Row(row).image));
    QPalette::ColorGroup group = list.isEnabled() ? QPalette::Active : QPalette::Disabled;
    painter.setPen(highlighted && list.HasKeyboard() ? look::SelectionText()
                                                     : list.palette().color(group, QPalette::Text));
    const bool right = column > 0 && list.model->HasColumn(column) &&
                       list.model->Columns()[static_cast<std::size_t>(column)].alignment == LVCFMT_RIGHT;
    PaintLabel(painter, list, layout.label.adjusted(kMargin, 0, -kMargin, 0), list.model->Text(row, column),
               right ? Qt::AlignRight : Qt::AlignLeft);
}

} // namespace ui
