#include "platform/ui/controls/listwidget.h"

#include <QHeaderView>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "platform/ui/controls/listviews.h"
#include "platform/ui/core/accessible.h"
#include "platform/ui/core/keyboard.h"
#include "platform/ui/drawing/gdiobjects.h"
#include "platform/ui/drawing/look.h"

namespace ui {

ListWidget::ListWidget(WindowObject& window, QWidget* parent)
    : QWidget(parent), handle(&window), model(new ListModel(this)),
      selection(new QItemSelectionModel(model, this)), details(new DetailsView(*this)),
      icons(new IconsView(*this)) {
    setFocusPolicy(Qt::StrongFocus);
    GiveRole(this, QAccessible::Pane);
    if (window.style & WS_BORDER)
        setContentsMargins(1, 1, 1, 1);
    for (QAbstractItemView* view :
         {static_cast<QAbstractItemView*>(details), static_cast<QAbstractItemView*>(icons)}) {
        QItemSelectionModel* own = view->selectionModel();
        view->setSelectionModel(selection);
        delete own;
        view->installEventFilter(this);
    }
    SetName(window.text.isEmpty() ? NameAfterLabel(window, this) : window.text);
    const auto take = [this] {
        if (mirroring || takeQueued)
            return;
        takeQueued = true;
        QMetaObject::invokeMethod(this, &ListWidget::TakeViewSelection, Qt::QueuedConnection);
    };
    connect(selection, &QItemSelectionModel::selectionChanged, this, take);
    connect(selection, &QItemSelectionModel::currentChanged, this, take);
    // The view itself would repaint the columns only, and a row's colour reaches beyond them.
    connect(selection, &QItemSelectionModel::selectionChanged, details->viewport(),
            qOverload<>(&QWidget::update));
    ApplyStyle();
}

void ListWidget::SetName(const QString& name) {
    for (QWidget* widget : std::initializer_list<QWidget*>{this, details, icons})
        widget->setAccessibleName(name);
}

DWORD ListWidget::Style() const {
    WindowObject* window = LiveWindow(handle);
    return window ? window->style : LVS_REPORT;
}

QAbstractItemView* ListWidget::CurrentView() const {
    if (View() == LVS_REPORT)
        return details;
    return icons;
}

bool ListWidget::HasKeyboard() const {
    return GetFocus() == handle && !Keyboard().atBar;
}

void ListWidget::ApplyStyle() {
    QAbstractItemView* shown = CurrentView();
    QAbstractItemView* hidden = details;
    if (shown == details)
        hidden = icons;
    FinishLabelEdit(false);
    needed.clear();
    auto mode =
        Style() & LVS_SINGLESEL ? QAbstractItemView::SingleSelection : QAbstractItemView::ExtendedSelection;
    for (QAbstractItemView* view : {shown, hidden}) {
        view->setSelectionMode(mode);
        view->setFont(font());
    }
    details->header()->setFont(font());
    if (shown == icons)
        icons->Arrange(View());
    shown->show();
    setFocusProxy(shown);
    if (hidden->hasFocus())
        shown->setFocus();
    if (shown == icons && header && GetFocus() == header)
        SetFocus(handle);
    hidden->hide();
    PlaceViews();
    shown->doItemsLayout();
    if (int row = model->FocusedRow(); row >= 0 && !model->Detached())
        shown->scrollTo(model->index(row, 0));
    shown->viewport()->update();
}

void ListWidget::ShowRows(int top) {
    MirrorAll();
    QAbstractItemView* view = CurrentView();
    view->doItemsLayout();
    if (view == details)
        details->verticalScrollBar()->setValue(top);
    else if (model->HasRow(pendingRow))
        view->scrollTo(model->index(pendingRow, 0));
    pendingRow = -1;
}

void ListWidget::SetRedraw(bool on) {
    if (on != model->Quiet())
        return;
    if (!on) {
        pendingTop = TopRow();
        setUpdatesEnabled(false);
        model->SetQuiet(true);
        return;
    }
    const bool detached = model->Detached();
    model->SetQuiet(false);
    if (detached) {
        ShareRoom();
        ShowRows(pendingTop);
    }
    setUpdatesEnabled(true);
}

int ListWidget::RowHeight() const {
    const int text = QFontMetrics(details->font()).height();
    return std::max({text * 3 / 2 + 2, ImageListSize(smallImages).height() + 4, CheckBoxes() ? 20 : 0});
}

int ListWidget::TopRow() const {
    if (model->Detached())
        return pendingTop;
    if (View() == LVS_REPORT)
        return details->verticalScrollBar()->value(); // it counts rows
    if (View() == LVS_LIST)
        return std::max(0, icons->indexAt(QPoint(2, 2)).row());
    return 0; // as the platform has it for the icon views
}

int ListWidget::RowsPerPage() const {
    QRect room = contentsRect();
    const int rowHeight = RowHeight();
    if (View() == LVS_REPORT)
        return std::max(0, room.height() - details->header()->sizeHint().height()) / rowHeight;
    if (View() == LVS_LIST)
        return room.height() / rowHeight * std::max(1, room.width() / std::max(1, icons->gridSize().width()));
    return model->RowCount();
}

void ListWidget::EnsureVisible(int row) {
    if (!model->Detached()) {
        CurrentView()->scrollTo(model->index(row, 0));
        return;
    }
    pendingRow = row;
    if (row < pendingTop)
        pendingTop = row;
    else if (int page = std::max(1, RowsPerPage()); row >= pendingTop + page)
        pendingTop = row - page + 1;
}

void ListWidget::DeleteAllRows() {
    FinishLabelEdit(false);
    model->DeleteAllRows();
    pendingTop = 0;
    pendingRow = -1;
}

void ListWidget::PlaceViews() {
    details->setGeometry(contentsRect());
    icons->setGeometry(contentsRect());
}

void ListWidget::resizeEvent(QResizeEvent*) {
    FinishLabelEdit(false);
    PlaceViews();
    ShareRoom();
}

void ListWidget::paintEvent(QPaintEvent*) {
    if (contentsRect() == rect())
        return;
    QPainter painter(this);
    painter.setPen(look::Line());
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace ui
