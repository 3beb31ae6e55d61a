#include "platform/ui/controls/listmessages.h"

#include <QHeaderView>
#include <algorithm>

#include "platform/ui/controls/listviews.h"

namespace ui {

namespace {

const LVITEMW* ItemIn(LPARAM lParam) {
    return reinterpret_cast<const LVITEMW*>(lParam);
}

bool HasTextAt(const ListModel& model, int row, int column) {
    return model.HasRow(row) && column >= 0 && column < model.columnCount();
}

LRESULT InsertItem(ListWidget& list, const LVITEMW& item) {
    ListRow row;
    if (item.mask & LVIF_TEXT)
        row.texts.push_back(HostText(item.pszText));
    if (item.mask & LVIF_IMAGE)
        row.image = item.iImage;
    if (item.mask & LVIF_PARAM)
        row.param = item.lParam;
    const UINT state = item.mask & LVIF_STATE ? item.state & item.stateMask : 0;
    row.state = state & LVIS_STATEIMAGEMASK;
    if (list.CheckBoxes() && !row.state)
        row.state = kUnchecked;
    const int inserted = list.model->InsertRow(item.iItem, std::move(row));
    if (UINT begins = state & (LVIS_SELECTED | LVIS_FOCUSED))
        list.SetRowState(inserted, begins, begins);
    return inserted;
}

BOOL SetItem(ListWidget& list, const LVITEMW& item) {
    if (!HasTextAt(*list.model, item.iItem, item.iSubItem))
        return FALSE;
    if (item.mask & LVIF_TEXT)
        list.model->SetText(item.iItem, item.iSubItem, HostText(item.pszText));
    if (item.mask & LVIF_IMAGE)
        list.model->SetImage(item.iItem, item.iImage);
    if (item.mask & LVIF_PARAM)
        list.model->SetParam(item.iItem, item.lParam);
    if (item.mask & LVIF_STATE)
        list.SetRowState(item.iItem, item.state, item.stateMask);
    return TRUE;
}

BOOL GetItem(const ListModel& model, LVITEMW& item) {
    if (!HasTextAt(model, item.iItem, item.iSubItem))
        return FALSE;
    const ListRow& row = model.Row(item.iItem);
    if (item.mask & LVIF_TEXT)
        CopyHostText(item.pszText, item.cchTextMax, model.Text(item.iItem, item.iSubItem));
    if (item.mask & LVIF_IMAGE)
        item.iImage = row.image;
    if (item.mask & LVIF_PARAM)
        item.lParam = row.param;
    if (item.mask & LVIF_STATE)
        item.state = row.state & item.stateMask;
    return TRUE;
}

BOOL GetLabelRect(const ListWidget& list, int row, RECT* out) {
    if (!list.model->HasRow(row) || !out || out->left != LVIR_LABEL)
        return FALSE;
    const QRect label = LayOutCell(list, list.CellRect(row), row, 0).label;
    *out = {label.left(), label.top(), label.right() + 1, label.bottom() + 1};
    return TRUE;
}

BOOL SetItemState(ListWidget& list, int row, const LVITEMW& item) {
    if (row >= 0) {
        if (list.model->HasRow(row))
            list.SetRowState(row, item.state, item.stateMask);
        return list.model->HasRow(row);
    }
    const unsigned generation = list.model->generation;
    for (row = 0; row < list.model->RowCount() && list.model->generation == generation; ++row)
        list.SetRowState(row, item.state, item.stateMask);
    return TRUE;
}

LRESULT InsertColumn(ListWidget& list, int index, const LVCOLUMNW& in) {
    ListColumn column;
    if (in.mask & LVCF_TEXT)
        column.title = HostText(in.pszText);
    if (in.mask & LVCF_WIDTH)
        column.width = in.cx;
    if (in.mask & LVCF_FMT)
        column.alignment = in.fmt & HDF_JUSTIFYMASK;
    column.headerFormat = column.alignment;
    const int top = list.TopRow();
    index = list.model->InsertColumn(index, std::move(column));
    list.ApplyColumnWidths();
    list.ShowRows(top);
    return index;
}

void SetExtendedStyle(ListWidget& list, DWORD mask, DWORD bits) {
    list.extendedStyle = mask ? (list.extendedStyle & ~mask) | (bits & mask) : bits;
    for (int row = 0; list.CheckBoxes() && row < list.model->RowCount(); ++row)
        if (UINT state = list.model->Row(row).state; !(state & LVIS_STATEIMAGEMASK))
            list.model->SetState(row, state | kUnchecked);
    list.ApplyStyle();
}

} // namespace

ListAnswer RowMessage(ListWidget& list, UINT message, WPARAM wParam, LPARAM lParam) {
    ListModel& model = *list.model;
    const int row = static_cast<int>(wParam);
    const LVITEMW* item = ItemIn(lParam);
    switch (message) {
    case LVM_GETITEMCOUNT:
        return model.RowCount();
    case LVM_INSERTITEMW:
        list.FinishLabelEdit(false);
        return item ? InsertItem(list, *item) : -1;
    case LVM_SETITEMW:
        return item && SetItem(list, *item);
    case LVM_GETITEMW:
        return lParam && GetItem(model, *reinterpret_cast<LVITEMW*>(lParam));
    case LVM_SETITEMTEXTW:
        if (!item || !HasTextAt(model, row, item->iSubItem))
            return FALSE;
        model.SetText(row, item->iSubItem, HostText(item->pszText));
        return TRUE;
    case LVM_GETITEMTEXTW:
        if (!item || !HasTextAt(model, row, item->iSubItem))
            return CopyHostText(item ? item->pszText : nullptr, item ? item->cchTextMax : 0, QString());
        return CopyHostText(item->pszText, item->cchTextMax, model.Text(row, item->iSubItem));
    case LVM_SETITEMSTATE:
        return item && SetItemState(list, row, *item);
    case LVM_GETITEMSTATE:
        return model.HasRow(row) ? model.Row(row).state & static_cast<UINT>(lParam) : 0;
    case LVM_DELETEALLITEMS:
        list.DeleteAllRows();
        return TRUE;
    }
    return std::nullopt;
}

ListAnswer ColumnMessage(ListWidget& list, UINT message, WPARAM wParam, LPARAM lParam) {
    const int column = static_cast<int>(wParam);
    switch (message) {
    case LVM_INSERTCOLUMNW:
        return lParam ? InsertColumn(list, column, *reinterpret_cast<const LVCOLUMNW*>(lParam)) : -1;
    case LVM_SETCOLUMNWIDTH:
        if (!list.model->HasColumn(column))
            return FALSE;
        list.model->Column(column).width = LOWORD(static_cast<std::uintptr_t>(lParam));
        list.ApplyColumnWidths();
        return TRUE;
    case LVM_GETHEADER:
        return reinterpret_cast<LRESULT>(list.header);
    }
    return std::nullopt;
}

ListAnswer ViewMessage(ListWidget& list, UINT message, WPARAM wParam, LPARAM lParam) {
    ListModel& model = *list.model;
    switch (message) {
    case LVM_SETIMAGELIST: {
        HIMAGELIST& images = wParam == LVSIL_NORMAL ? list.normalImages : list.smallImages;
        HIMAGELIST previous = std::exchange(images, reinterpret_cast<HIMAGELIST>(lParam));
        list.ApplyStyle();
        return reinterpret_cast<LRESULT>(previous);
    }
    case LVM_NAMEIMAGE:
        model.NameImage(static_cast<int>(wParam), HostText(reinterpret_cast<const WCHAR*>(lParam)));
        return TRUE;
    case LVM_SETEXTENDEDLISTVIEWSTYLE: {
        const DWORD previous = list.extendedStyle;
        SetExtendedStyle(list, static_cast<DWORD>(wParam), static_cast<DWORD>(lParam));
        return static_cast<LRESULT>(previous);
    }
    case LVM_GETNEXTITEM:
        return model.NextRow(static_cast<int>(wParam),
                             static_cast<UINT>(lParam) & (LVIS_FOCUSED | LVIS_SELECTED));
    case LVM_HITTEST: {
        auto* hit = reinterpret_cast<LVHITTESTINFO*>(lParam);
        return hit->iItem = list.RowAt(QPoint(hit->pt.x, hit->pt.y));
    }
    case LVM_FINDITEMW: {
        const auto* wanted = reinterpret_cast<const LVFINDINFOW*>(lParam);
        return wanted && (wanted->flags & LVFI_PARAM) ? model.RowOfParam(wanted->lParam) : -1;
    }
    case LVM_GETSELECTEDCOUNT:
        return model.SelectedCount();
    case LVM_GETTOPINDEX:
        return list.TopRow();
    case LVM_GETCOUNTPERPAGE:
        return list.RowsPerPage();
    case LVM_GETITEMRECT:
        return GetLabelRect(list, static_cast<int>(wParam), reinterpret_cast<RECT*>(lParam));
    case LVM_ENSUREVISIBLE:
        if (model.HasRow(static_cast<int>(wParam)))
            list.EnsureVisible(static_cast<int>(wParam));
        return model.HasRow(static_cast<int>(wParam));
    case LVM_SORTITEMS:
        list.FinishLabelEdit(false);
        return lParam && SortRows(list, reinterpret_cast<PFNLVCOMPARE>(lParam), static_cast<LPARAM>(wParam));
    }
    return std::nullopt;
}

} // namespace ui
