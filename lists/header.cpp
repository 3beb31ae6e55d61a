#include "lists/header.h"

#include <algorithm>

#include "app/application.h"
#include "lists/listsort.h"
#include "platform/gdi.h"
#include "platform/text.h"

namespace {

enum ArrowImage { kNoArrow = 0, kArrowDown = 1, kArrowUp = 2 };

constexpr int kImageLeft = 2;    // pixels from the item's left edge
constexpr int kImageHeight = 10; // Quirk: the larger image is centred as if it were as low as the small one
constexpr int kPressedRight = 1;
constexpr int kPressedDown = 2;
constexpr int kEllipsisLength = 3;

ArrowImage ArrowOf(UINT column) {
    const Settings& settings = *App().settings;
    // Quirk: the second key for names sorts without an arrow, as it always has.
    if (settings.sortKey == kSortByNameToo || settings.sortKey > kSortByInteger ||
        static_cast<int>(column) != ColumnOfSortKey(settings.sortKey))
        return kNoArrow;
    return settings.sortAscending ? kArrowUp : kArrowDown;
}

LONG TextWidth(HDC dc, const WCHAR* text, int length) {
    SIZE size = {};
    GetTextExtentPoint32W(dc, text, length, &size);
    return size.cx;
}

// Takes characters off the end until the rest and "..." fit; one always stays.
void ShortenText(HDC dc, WCHAR (&text)[MAX_PATH + kEllipsisLength], LONG width) {
    int length = lstrlenW(text);
    if (length == 0 || TextWidth(dc, text, length) <= width)
        return;
    do {
        length = std::max(length - 1, 1);
        CopyText(text + length, kEllipsisLength + 1, u"...");
    } while (length > 1 && TextWidth(dc, text, length + kEllipsisLength) > width);
}

UINT AlignmentOf(int headerFormat) {
    if (headerFormat & HDF_CENTER)
        return DT_CENTER;
    return headerFormat & HDF_RIGHT ? DT_RIGHT : DT_LEFT;
}

// Returns the pixels that the image takes, its left margin included.
int DrawArrow(const DRAWITEMSTRUCT& item, ArrowImage image) {
    int width = 0;
    int height = 0;
    if (!ImageList_GetIconSize(App().headerImages, &width, &height))
        return 0;
    const int y = (item.rcItem.bottom - item.rcItem.top - kImageHeight) / 2;
    ImageList_Draw(App().headerImages, image, item.hDC, item.rcItem.left + kImageLeft,
                   item.rcItem.top + (y < 1 ? 1 : y), ILD_NORMAL);
    return kImageLeft + width;
}

void DrawLabel(const DRAWITEMSTRUCT& item, RECT rect) {
    WCHAR text[MAX_PATH + kEllipsisLength] = {};
    HDITEMW header = {};
    header.mask = HDI_TEXT | HDI_FORMAT;
    header.pszText = text;
    header.cchTextMax = MAX_PATH;
    Header_GetItem(item.hwndItem, static_cast<int>(item.itemID), &header);

    if (item.itemState & ODS_SELECTED) {
        rect.left += kPressedRight;
        rect.right += kPressedRight;
        rect.top += kPressedDown;
    }
    const LONG margin = TextWidth(item.hDC, u" ", 1);
    rect.left += margin;
    rect.right -= 2 * margin;
    if (rect.left >= rect.right)
        return;
    ShortenText(item.hDC, text, rect.right - rect.left);
    DrawTextW(item.hDC, text, -1, &rect, AlignmentOf(header.fmt) | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
}

} // namespace

void MakeHeaderOwnerDrawn(HWND list) {
    const HWND header = ListView_GetHeader(list);
    const int count = Header_GetItemCount(header);
    for (int column = 0; column < count; ++column) {
        HDITEMW item = {};
        item.mask = HDI_FORMAT;
        Header_GetItem(header, column, &item);
        item.fmt |= HDF_OWNERDRAW;
        Header_SetItem(header, column, item);
    }
}

void ShowSortOrder(HWND list) {
    const HWND header = ListView_GetHeader(list);
    const int count = Header_GetItemCount(header);
    for (int column = 0; column < count; ++column) {
        const ArrowImage arrow = ArrowOf(static_cast<UINT>(column));
        HDITEMW item = {};
        item.mask = HDI_FORMAT;
        Header_GetItem(header, column, &item);
        item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
        if (arrow != kNoArrow)
            item.fmt |= arrow == kArrowUp ? HDF_SORTUP : HDF_SORTDOWN;
        Header_SetItem(header, column, item);
    }
    InvalidateRect(header, nullptr, TRUE);
}

void DrawHeaderItem(const DRAWITEMSTRUCT& item) {
    const int saved = SaveDC(item.hDC);
    const HBRUSH background = CreateSolidBrush(GetBkColor(item.hDC));
    FillRect(item.hDC, &item.rcItem, background);
    DeleteObject(background);
    SetBkMode(item.hDC, TRANSPARENT);

    RECT rect = item.rcItem;
    rect.left += DrawArrow(item, ArrowOf(item.itemID));
    DrawLabel(item, rect);
    RestoreDC(item.hDC, saved);
}
