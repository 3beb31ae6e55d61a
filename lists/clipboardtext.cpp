#include "lists/clipboardtext.h"

#include <cstring>
#include <string>

#include "platform/controls.h"
#include "platform/heap.h"
#include "platform/shell.h"
#include "platform/text.h"

namespace {

void AppendRow(HWND list, int row, int columns, std::u16string* text) {
    WCHAR cell[MAX_PATH];
    for (int column = 0; column < columns; ++column) {
        ListView_GetItemText(list, row, column, cell);
        *text += column ? u"\t" : u"";
        *text += cell;
    }
    *text += u"\r\n";
}

} // namespace

bool OfferText(const WCHAR* text) {
    const std::size_t bytes = (static_cast<std::size_t>(lstrlenW(text)) + 1) * sizeof(WCHAR);
    void* const block = LocalAlloc(LMEM_FIXED, bytes);
    if (!block)
        return false;
    std::memcpy(block, text, bytes);
    if (SetClipboardData(CF_UNICODETEXT, block))
        return true;
    LocalFree(block);
    return false;
}

void CopyRowsAsText(HWND list, int columns) {
    std::u16string text;
    for (int row = -1; (row = ListView_GetNextItem(list, row, LVNI_SELECTED)) >= 0;)
        AppendRow(list, row, columns, &text);
    if (text.empty() || !OpenClipboard(list))
        return;
    EmptyClipboard();
    if (!OfferText(text.c_str()))
        SHShowOutOfMemory(list, 0);
    CloseClipboard();
}
