// Which rows are selected, focused and checked. The rows' own states count; the host's selection model
// follows them, or leads when it is the user who selects.
#include <QAbstractItemView>
#include <algorithm>
#include <utility>

#include "platform/ui/controls/listwidget.h"

namespace ui {

namespace {

constexpr UINT kViewStates = LVIS_SELECTED | LVIS_FOCUSED;

} // namespace

bool ListWidget::StoreState(int row, UINT state) {
    const UINT old = model->Row(row).state;
    if (old == state)
        return true;
    model->SetState(row, state);
    if (!model->Detached())
        MirrorRow(row);
    const unsigned generation = model->generation;
    NMLISTVIEW notification{};
    notification.iItem = row;
    notification.uNewState = state;
    notification.uOldState = old;
    notification.uChanged = LVIF_STATE;
    notification.lParam = model->Row(row).param;
    QPointer<ListWidget> alive(this);
    NotifyParent(handle, &notification.hdr, LVN_ITEMCHANGED);
    return alive && LiveWindow(handle) && model->generation == generation;
}

void ListWidget::SetRowState(int row, UINT state, UINT mask) {
    const UINT begins = state & mask;
    UINT elsewhere = begins & LVIS_FOCUSED; // what the other rows lose by it
    if (Style() & LVS_SINGLESEL)
        elsewhere |= begins & LVIS_SELECTED;
    for (int other = 0; elsewhere && other < model->RowCount(); ++other) {
        const UINT old = model->Row(other).state;
        if (other != row && (old & elsewhere) && !StoreState(other, old & ~elsewhere))
            return;
    }
    StoreState(row, (model->Row(row).state & ~mask) | begins);
}

void ListWidget::BeginAtSelection() {
    const int selected = model->FocusedRow() < 0 ? model->NextRow(-1, LVIS_SELECTED) : -1;
    if (selected >= 0)
        SetRowState(selected, LVIS_FOCUSED, LVIS_FOCUSED);
}

void ListWidget::TakeViewSelection() {
    takeQueued = false;
    if (model->Detached())
        return;
    std::vector<UINT> wanted(static_cast<std::size_t>(model->RowCount()), 0);
    for (const QItemSelectionRange& range : selection->selection())
        for (int row = range.top(); row <= range.bottom(); ++row)
            wanted[static_cast<std::size_t>(row)] |= LVIS_SELECTED;
    if (selection->currentIndex().isValid())
        wanted[static_cast<std::size_t>(selection->currentIndex().row())] |= LVIS_FOCUSED;
    // Rows that lose a state come first, so that a list for one selected row never shows two.
    std::vector<std::pair<int, UINT>> losses, gains;
    for (int row = 0; row < model->RowCount(); ++row) {
        const UINT old = model->Row(row).state;
        const UINT next = (old & ~kViewStates) | wanted[static_cast<std::size_t>(row)];
        if (next != old)
            (old & ~next ? losses : gains).emplace_back(row, next);
    }
    losses.insert(losses.end(), gains.begin(), gains.end());
    for (auto [row, state] : losses)
        if (!StoreState(row, state))
            return;
}

void ListWidget::MirrorRow(int row) {
    mirroring = true;
    QModelIndex index = model->index(row, 0);
    const UINT state = model->Row(row).state;
    const bool selected = state & LVIS_SELECTED;
    if (selected != selection->isSelected(index))
        selection->select(index, (selected ? QItemSelectionModel::Select : QItemSelectionModel::Deselect) |
                                     QItemSelectionModel::Rows);
    const bool current = selection->currentIndex().row() == row;
    if ((state & LVIS_FOCUSED) && !current)
        selection->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    else if (!(state & LVIS_FOCUSED) && current)
        selection->setCurrentIndex({}, QItemSelectionModel::NoUpdate);
    mirroring = false;
}

void ListWidget::MirrorAll() {
    mirroring = true;
    QItemSelection runs;
    const int lastColumn = model->columnCount() - 1;
    for (int row = model->NextRow(-1, LVIS_SELECTED); row >= 0;) {
        int end = row;
        while (model->HasRow(end + 1) && (model->Row(end + 1).state & LVIS_SELECTED))
            ++end;
        runs.select(model->index(row, 0), model->index(end, lastColumn));
        row = model->NextRow(end, LVIS_SELECTED);
    }
    selection->select(runs, QItemSelectionModel::ClearAndSelect);
    const int focused = model->FocusedRow();
    selection->setCurrentIndex(focused < 0 ? QModelIndex() : model->index(focused, 0),
                               QItemSelectionModel::NoUpdate);
    mirroring = false;
}

int ListWidget::RowAt(const QPoint& point) const {
    if (model->Detached())
        return -1;
    QAbstractItemView* view = CurrentView();
    const QPoint inside = view->viewport()->mapFrom(this, point);
    if (!view->viewport()->rect().contains(inside))
        return -1;
    return view->indexAt(inside).row();
}

QRect ListWidget::CellRect(int row) const {
    QAbstractItemView* view = CurrentView();
    QRect cell = view->visualRect(model->index(row, 0));
    return QRect(view->viewport()->mapTo(this, cell.topLeft()), cell.size());
}

bool ListWidget::ToggleCheckAt(const QPoint& point) {
    const int row = CheckBoxes() ? RowAt(point) : -1;
    if (row < 0)
        return false;
    // A stylus needs more than the box itself.
    QRect target = LayOutCell(*this, CellRect(row), row, 0).check.adjusted(-4, -4, 4, 4);
    if (!target.contains(point))
        return false;
    StoreState(row, model->Row(row).state ^ (kUnchecked | kChecked));
    return true;
}

bool ListWidget::ToggleFocusedCheck() {
    const int row = CheckBoxes() ? model->FocusedRow() : -1;
    if (row < 0)
        return false;
    StoreState(row, model->Row(row).state ^ (kUnchecked | kChecked));
    return true;
}

} // namespace ui
