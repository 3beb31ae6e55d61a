#include "platform/ui/controls/listviews.h"

#include <QEvent>
#include <QHeaderView>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <algorithm>

#include "platform/ui/core/accessible.h"
#include "platform/ui/drawing/gdiobjects.h"

namespace ui {

namespace {

constexpr int kAroundLabel = 8; // pixels beside a name below its icon

class CellDelegate : public QStyledItemDelegate {
public:
    CellDelegate(ListWidget& list, QObject* parent) : QStyledItemDelegate(parent), list(list) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        PaintCell(list, *painter, option.rect, index.row(), index.column());
    }
    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        return list.View() == LVS_REPORT ? QSize(1, list.RowHeight()) : list.icons->gridSize();
    }

private:
    ListWidget& list;
};

void Prepare(QAbstractItemView& view, ListWidget& list) {
    view.setItemDelegate(new CellDelegate(list, &view));
    view.setModel(list.model);
    view.setSelectionBehavior(QAbstractItemView::SelectRows);
    view.setEditTriggers(QAbstractItemView::NoEditTriggers);
    view.setDragDropMode(QAbstractItemView::NoDragDrop);
    view.setFrameShape(QFrame::NoFrame);
    TakeOwnInput(view.verticalScrollBar());
    TakeOwnInput(view.horizontalScrollBar());
}

} // namespace

DetailsView::DetailsView(ListWidget& list) : QTreeView(&list), list(list) {
    Prepare(*this, list);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setExpandsOnDoubleClick(false);
    setIndentation(0);
    setUniformRowHeights(true);
    setVerticalScrollMode(ScrollPerItem);
    setHorizontalScrollMode(ScrollPerPixel);
}

// Without full-row selection a row is hit by its first column only.
QModelIndex DetailsView::indexAt(const QPoint& point) const {
    QModelIndex index = QTreeView::indexAt(point);
    return list.FullRow() || index.column() == 0 ? index : QModelIndex();
}

void DetailsView::doItemsLayout() {
    list.ShareRoom();
    QTreeView::doItemsLayout();
}

int DetailsView::sizeHintForColumn(int column) const {
    return ContentsWidth(list, column);
}

void DetailsView::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
    QRect row(0, option.rect.y(), viewport()->width(), option.rect.height());
    PaintRowBackground(list, *painter, row, index.row());
    for (int column = 0; column < header()->count(); ++column) {
        QRect cell(columnViewportPosition(column), option.rect.y(), columnWidth(column),
                   option.rect.height());
        PaintCell(list, *painter, cell, index.row(), column);
    }
}

void DetailsView::changeEvent(QEvent* event) {
    QTreeView::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        scheduleDelayedItemsLayout(); // the row height is kept until then
}

void DetailsView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    if (isVisible())
        QTreeView::currentChanged(current, previous);
    else
        QAbstractItemView::currentChanged(current, previous); // NOLINT(bugprone-parent-virtual-call)
}

void DetailsView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    if (isVisible())
        QTreeView::selectionChanged(selected, deselected);
    else
        QAbstractItemView::selectionChanged(selected, deselected); // NOLINT(bugprone-parent-virtual-call)
}

IconsView::IconsView(ListWidget& list) : QListView(&list), list(list) {
    Prepare(*this, list);
    setSelectionRectVisible(true);
    setUniformItemSizes(true);
    setResizeMode(Adjust);
}

void IconsView::Arrange(DWORD view) {
    setViewMode(view == LVS_ICON ? IconMode : ListMode); // sets the others to what is usual in that mode
    setFlow(view == LVS_LIST ? TopToBottom : LeftToRight);
    setWrapping(true);
    setMovement(Static);
    setDragEnabled(false);
    setAcceptDrops(false);
    scheduleDelayedItemsLayout();
}

int IconsView::MostLines(int room) const {
    qsizetype most = 1;
    for (int row = 0; row < list.model->RowCount(); ++row)
        most = std::max(most, LabelLines(font(), list.model->Text(row, 0), room).size());
    return static_cast<int>(most);
}

QSize IconsView::ItemSize() const {
    QFontMetrics metrics(font());
    QSize image = ImageListSize(list.Images());
    if (list.View() == LVS_ICON) {
        const int cell = std::max(image.width() + 24, metrics.averageCharWidth() * 17);
        const int lines = std::max(2, MostLines(cell - kAroundLabel));
        return QSize(cell, image.height() + lines * metrics.lineSpacing() + 14);
    }
    int width = metrics.averageCharWidth() * 8;
    for (int row = 0; row < list.model->RowCount(); ++row)
        width = std::max(width, metrics.horizontalAdvance(list.model->Text(row, 0)));
    const int before = image.width() + 24 + (list.CheckBoxes() ? 20 : 0);
    width += before;
    // A row wider than what the host lays out in would leave an empty line above the first item. It keeps
    // room for a scroll bar that is not there yet.
    const QScrollBar& bar = *verticalScrollBar();
    const int room = viewport()->width() - (bar.isVisible() ? 0 : bar.sizeHint().width()) - 1;
    if (list.View() == LVS_LIST)
        return QSize(std::min(width, std::max(room, 80)), list.RowHeight());
    // Small icons stand beside each other, a long name in several lines, where a list has one line for each.
    width = std::min(width, std::max(room / 2, 80));
    return QSize(width, std::max(list.RowHeight(), MostLines(width - before) * metrics.lineSpacing() + 4));
}

// The host tells assistive programs a wrong item here: it does not count the columns that are not shown.
void IconsView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QAbstractItemView::currentChanged(current, previous); // NOLINT(bugprone-parent-virtual-call)
    if (isVisible() && current.isValid())
        TellFocus(this, current.row() * model()->columnCount());
}

void IconsView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    QAbstractItemView::selectionChanged(selected, deselected); // NOLINT(bugprone-parent-virtual-call)
}

// The grid follows the longest name.
void IconsView::doItemsLayout() {
    if (list.View() != LVS_REPORT) {
        const QSize grid = ItemSize();
        if (grid != gridSize())
            setGridSize(grid);
    }
    QListView::doItemsLayout();
}

} // namespace ui
