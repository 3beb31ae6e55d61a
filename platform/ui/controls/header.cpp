#include "platform/ui/controls/header.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "platform/ui/controls/listviews.h"
#include "platform/ui/core/accessible.h"
#include "platform/ui/core/keyboard.h"
#include "platform/ui/drawing/devicecontext.h"
#include "platform/ui/drawing/gdiobjects.h"
#include "platform/ui/drawing/look.h"

namespace ui {

namespace {

constexpr int kTitleMargin = 8; // pixels on either side

void NotifyColumnClick(HWND list, int column) {
    NMLISTVIEW notification{};
    notification.iItem = -1;
    notification.iSubItem = column;
    NotifyParent(list, &notification.hdr, LVN_COLUMNCLICK);
}

} // namespace

HeaderView::HeaderView(WindowObject& window, ListWidget& list)
    : QHeaderView(Qt::Horizontal, list.details), list(list), handle(&window) {
    setSectionsMovable(false);
    setHighlightSections(false);
    setStretchLastSection(false);
    setMinimumSectionSize(1);
    setFocusPolicy(Qt::NoFocus);
    GiveRole(this, QAccessible::ColumnHeader);
    connect(
        this, &QHeaderView::sectionPressed, this,
        [this](int section) {
            pressed = section;
            viewport()->update();
        });
    connect(this, &QHeaderView::sectionResized, this,
            [this](int section, int, int width) { this->list.TakeColumnWidth(section, width); });
    connect(this, &QHeaderView::sectionClicked, this, [this](int section) {
        pressed = -1;
        if (this->list.model->HasColumn(section))
            NotifyColumnClick(this->list.handle, section);
    });
}

QSize HeaderView::sizeHint() const {
    QSize size = QHeaderView::sizeHint();
    size.setHeight(std::max(24, QFontMetrics(font()).height() * 8 / 5));
    return size;
}

// The title with its margins, and the image that the owner may draw before it.
QSize HeaderView::sectionSizeFromContents(int section) const {
    if (!list.model->HasColumn(section))
        return QSize();
    const QString& title = list.model->Column(section).title;
    const int image = images ? ImageListSize(images).width() + kTitleMargin : 0;
    return QSize(QFontMetrics(font()).horizontalAdvance(title) + 2 * kTitleMargin + image + 1,
                 sizeHint().height());
}

void HeaderView::mouseReleaseEvent(QMouseEvent* event) {
    pressed = -1;
    viewport()->update();
    QHeaderView::mouseReleaseEvent(event);
}

void HeaderView::paintEvent(QPaintEvent* event) {
    QHeaderView::paintEvent(event);
    QPainter painter(viewport());
    const int end = length() - offset();
    if (end < viewport()->width())
        painter.fillRect(end, 0, viewport()->width() - end, height(), look::Header());
    painter.setPen(look::Line());
    painter.drawLine(0, height() - 1, viewport()->width(), height() - 1);
}

void HeaderView::paintSection(QPainter* painter, const QRect& rect, int section) const {
    if (!list.model->HasColumn(section))
        return;
    const ListColumn& column = list.model->Columns()[static_cast<std::size_t>(section)];
    painter->save();
    painter->setClipRect(rect);
    painter->fillRect(rect, section == pressed ? look::HeaderPressed() : look::Header());
    painter->setPen(look::Line());
    painter->drawLine(rect.right(), rect.top() + 4, rect.right(), rect.bottom() - 5);
    QRect inside = rect.adjusted(0, 0, -1, -1); // leaves the lines alone
    if (column.headerFormat & HDF_OWNERDRAW) {
        painter->setClipRect(inside);
        DrawByOwner(*painter, inside, section);
    } else {
        const int alignment = column.headerFormat & HDF_CENTER  ? Qt::AlignHCenter
                              : column.headerFormat & HDF_RIGHT ? Qt::AlignRight
                                                                : Qt::AlignLeft;
        QRect titleRect = inside.adjusted(kTitleMargin, 0, -kTitleMargin, 0);
        painter->setPen(palette().color(QPalette::WindowText));
        painter->drawText(titleRect, alignment | Qt::AlignVCenter | Qt::TextSingleLine,
                          QFontMetrics(font()).elidedText(column.title, Qt::ElideRight, titleRect.width()));
    }
    if (section == marked && GetFocus() == handle && !Keyboard().atBar) {
        painter->setClipRect(inside);
        painter->setPen(QPen(look::Selection(), 2));
        painter->drawRect(inside.adjusted(1, 1, -1, -1));
    }
    painter->restore();
}

// The header's parent draws it, so that a procedure put before the list view's sees the message.
void HeaderView::DrawByOwner(QPainter& painter, const QRect& rect, int section) const {
    WindowObject* window = LiveWindow(handle);
    WindowObject* parent = LiveWindow(list.handle);
    if (!window || !parent)
        return;
    const bool down = section == pressed;
    PainterContext context(painter, parent->font, down ? kHeaderPressedFace : kHeaderFace);
    DRAWITEMSTRUCT item{};
    item.CtlType = ODT_HEADER;
    item.CtlID = window->id;
    item.itemID = static_cast<UINT>(section);
    item.itemState = down ? ODS_SELECTED : 0;
    item.hwndItem = handle;
    item.hDC = context.Handle();
    item.rcItem = {rect.left(), rect.top(), rect.right() + 1, rect.bottom() + 1};
    SendMessageW(list.handle, WM_DRAWITEM, window->id, reinterpret_cast<LPARAM>(&item));
}

// ---- keys ----

void HeaderView::Mark(int section) {
    marked = std::clamp(section, 0, std::max(0, count() - 1));
    QScrollBar& bar = *list.details->horizontalScrollBar();
    const int end = sectionPosition(marked) + sectionSize(marked);
    bar.setValue(std::clamp(bar.value(), std::min(end - viewport()->width(), sectionPosition(marked)),
                            sectionPosition(marked)));
    viewport()->update();
    // While it has the focus the header stands for the section.
    setAccessibleName(model()->headerData(marked, Qt::Horizontal, Qt::AccessibleTextRole).toString());
    setAccessibleDescription(
        model()->headerData(marked, Qt::Horizontal, Qt::AccessibleDescriptionRole).toString());
    TellFocus(this);
}

void HeaderView::FocusChanged() {
    if (GetFocus() == handle)
        Mark(marked);
    else
        viewport()->update();
}

bool HeaderView::TakeKey(WPARAM key) {
    switch (key) {
    case VK_LEFT:
        Mark(marked - 1);
        return true;
    case VK_RIGHT:
        Mark(marked + 1);
        return true;
    case VK_HOME:
        Mark(0);
        return true;
    case VK_END:
        Mark(count() - 1);
        return true;
    case VK_SPACE:
        Q_EMIT sectionClicked(marked);
        if (LiveWindow(handle)) // the program may have closed everything by then
            Mark(marked);
        return true;
    case VK_DOWN:
    case VK_TAB:
        SetFocus(list.handle);
        return true;
    }
    return false;
}

namespace {

QWidget* MakeHeader(WindowObject& window, QWidget*) {
    ListWidget* list = WidgetOf<ListWidget>(window.parent);
    if (!list)
        return nullptr;
    HeaderView* header = new HeaderView(window, *list);
    list->details->setHeader(header);
    header->setSectionsClickable(true); // the view has switched it off, as it does no sorting
    return header;
}

BOOL GetItem(const ListWidget& list, int item, HDITEMW& out) {
    if (!list.model->HasColumn(item))
        return FALSE;
    const ListColumn& column = list.model->Columns()[static_cast<std::size_t>(item)];
    if (out.mask & HDI_TEXT)
        CopyHostText(out.pszText, out.cchTextMax, column.title);
    if (out.mask & HDI_FORMAT)
        out.fmt = column.headerFormat;
    return TRUE;
}

BOOL SetItem(ListWidget& list, int item, const HDITEMW& in) {
    if (!list.model->HasColumn(item))
        return FALSE;
    ListColumn& column = list.model->Column(item);
    if (in.mask & HDI_TEXT)
        column.title = HostText(in.pszText);
    if (in.mask & HDI_FORMAT)
        column.headerFormat = in.fmt;
    list.model->ColumnChanged(item);
    return TRUE;
}

LRESULT HeaderProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    HeaderView* header = WidgetOf<HeaderView>(window);
    if (!header)
        return DefaultControlProcedure(window, message, wParam, lParam);
    switch (message) {
    case HDM_GETITEMCOUNT:
        return static_cast<LRESULT>(header->list.model->Columns().size());
    case HDM_SETIMAGELIST:
        return reinterpret_cast<LRESULT>(std::exchange(header->images, reinterpret_cast<HIMAGELIST>(lParam)));
    case HDM_GETITEMW:
        return lParam && GetItem(header->list, static_cast<int>(wParam), *reinterpret_cast<HDITEMW*>(lParam));
    case HDM_SETITEMW:
        return lParam && SetItem(header->list, static_cast<int>(wParam), *reinterpret_cast<HDITEMW*>(lParam));
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        header->FocusChanged();
        break;
    case WM_KEYDOWN:
        if (header->TakeKey(wParam))
            return 0;
        if (wParam == VK_F6) {
            const HWND list = header->list.handle;
            SetFocus(list);
            return GetKeyState(VK_SHIFT) < 0 ? 0 : DefaultControlProcedure(list, message, wParam, lParam);
        }
        break;
    }
    return DefaultControlProcedure(window, message, wParam, lParam);
}

} // namespace

void RegisterHeaderClass() {
    RegisterBuiltInClass(u"SysHeader32", HeaderProcedure, MakeHeader);
}

} // namespace ui
