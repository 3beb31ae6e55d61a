// Editing a row's label where it is shown.
#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QTimerEvent>
#include <algorithm>
#include <utility>

#include "platform/ui/controls/listwidget.h"

namespace ui {

namespace {

class LabelEditor : public QLineEdit {
public:
    LabelEditor(ListWidget& list, QWidget* parent, const QString& text)
        : QLineEdit(text, parent), list(list) {
        TakeOwnInput(this);
        setMaxLength(MAX_PATH - 1);
        setAccessibleName(text);
        selectAll();
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (enter || event->key() == Qt::Key_Escape)
            list.FinishLabelEdit(enter);
        else
            QLineEdit::keyPressEvent(event);
        event->accept(); // no key of the edit is one of the list or its dialog
    }

    void focusOutEvent(QFocusEvent* event) override {
        QLineEdit::focusOutEvent(event);
        // A press on the list ends the edit when its turn comes, so that the rows do not move under it.
        const QWidget* next = QApplication::focusWidget();
        const bool pressedList = event->reason() == Qt::MouseFocusReason && next && list.isAncestorOf(next);
        if (event->reason() != Qt::PopupFocusReason && !pressedList)
            list.FinishLabelEdit(true);
    }

private:
    ListWidget& list;
};

} // namespace

bool ListWidget::EditLabel(int row) {
    FinishLabelEdit(false);
    if (!(Style() & LVS_EDITLABELS) || !model->HasRow(row) || model->Detached())
        return false;
    QAbstractItemView* view = CurrentView();
    view->scrollTo(model->index(row, 0));
    QRect cell = view->visualRect(model->index(row, 0));
    QRect area = LayOutCell(*this, cell, row, 0).label;
    area.setWidth(std::max(area.width() + 40, 120));
    area.setRight(std::min(area.right(), std::max(cell.right(), view->viewport()->width() - 1)));
    editor = new LabelEditor(*this, view->viewport(), model->Text(row, 0));
    editedRow = row;
    area.setHeight(std::max(area.height(), editor->sizeHint().height()));
    editor->setGeometry(area);
    editor->show();
    editor->setFocus();
    return true;
}

void ListWidget::FinishLabelEdit(bool accept) {
    ForgetLabelTap();
    if (!editor)
        return;
    QLineEdit* ended = std::exchange(editor, nullptr);
    const int row = std::exchange(editedRow, -1);
    QString text = ended->text();
    // When the focus is moving to another window, the host must not give it to the next widget by itself.
    if (HasKeyboard())
        CurrentView()->setFocus();
    else
        ended->clearFocus();
    ended->hide();
    ended->deleteLater();
    if (!LiveWindow(handle) || handle->destroying || !model->HasRow(row))
        return;
    NMLVDISPINFOW notification{};
    std::u16string buffer = text.toStdU16String();
    notification.item.mask = LVIF_TEXT;
    notification.item.iItem = row;
    notification.item.lParam = model->Row(row).param;
    notification.item.pszText = accept ? buffer.data() : nullptr;
    notification.item.cchTextMax = accept ? static_cast<int>(buffer.size()) + 1 : 0;
    const unsigned generation = model->generation;
    QPointer<ListWidget> alive(this);
    bool taken = NotifyParent(handle, &notification.hdr, LVN_ENDLABELEDITW) != 0;
    if (alive && accept && taken && model->generation == generation)
        model->SetText(row, 0, text);
}

void ListWidget::LabelPressed(const QPoint& point) {
    ForgetLabelTap();
    const int row = std::exchange(focusedByTap, false) ? -1 : RowAt(point);
    bool chosen =
        row >= 0 && HasKeyboard() && model->SelectedCount() == 1 && (model->Row(row).state & LVIS_SELECTED);
    if (chosen && (Style() & LVS_EDITLABELS) && GetKeyState(VK_SHIFT) >= 0 && GetKeyState(VK_CONTROL) >= 0 &&
        LayOutCell(*this, CellRect(row), row, 0).label.contains(point))
        tappedRow = row;
}

void ListWidget::LabelReleased(const QPoint& point) {
    if (tappedRow >= 0 && RowAt(point) == tappedRow)
        tapTimer.start(QApplication::doubleClickInterval() + 50, this);
    else
        ForgetLabelTap();
}

void ListWidget::ForgetLabelTap() {
    tapTimer.stop();
    tappedRow = -1;
}

bool ListWidget::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn)
        focusedByTap = static_cast<QFocusEvent*>(event)->reason() == Qt::MouseFocusReason;
    return QWidget::eventFilter(watched, event);
}

void ListWidget::timerEvent(QTimerEvent* event) {
    if (event->timerId() != tapTimer.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    const int row = tappedRow;
    ForgetLabelTap();
    // What the tap brought up in the meantime (a menu, a window) keeps the label from being edited.
    const bool alone =
        HasKeyboard() && !QApplication::activePopupWidget() && IsWindowEnabled(TopLevelOf(handle));
    if (alone && model->HasRow(row) && (model->Row(row).state & LVIS_SELECTED))
        EditLabel(row);
}

} // namespace ui
