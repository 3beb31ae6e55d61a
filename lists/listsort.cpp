#include "lists/listsort.h"

#include <new>

#include "app/application.h"
#include "lists/header.h"
#include "platform/controls.h"
#include "platform/datetime.h"
#include "platform/objectstore.h"
#include "platform/text.h"
#include "store/dbhandle.h"

namespace {

constexpr int kNameColumn = 0;
constexpr int kHundredths = 100; // in one kilobyte's text
constexpr WCHAR kDot = u'.';

int RowOfParameter(HWND list, LPARAM parameter) {
    LVFINDINFOW find = {};
    find.flags = LVFI_PARAM;
    find.lParam = parameter;
    return ListView_FindItem(list, find);
}

// Null when there is no dot.
WCHAR* LastDot(WCHAR* text) {
    WCHAR* dot = nullptr;
    for (; *text; ++text)
        if (*text == kDot)
            dot = text;
    return dot;
}

// The number at the start of a text, which may have a minus sign; 0 when there is none.
std::int64_t ReadNumber(const WCHAR* text) {
    const bool negative = *text == u'-';
    if (negative)
        ++text;
    std::int64_t number = 0;
    for (int digits = 0; *text >= u'0' && *text <= u'9' && digits < 18; ++text, ++digits)
        number = number * 10 + (*text - u'0');
    return negative ? -number : number;
}

template <typename T>
int Compare(T first, T second) {
    return first < second ? -1 : first > second;
}

// Quirk: what follows a name's last dot does not count, as if it were the extension of a file.
int CompareNames(WCHAR* first, WCHAR* second) {
    for (WCHAR* text : {first, second})
        if (WCHAR* dot = LastDot(text))
            *dot = 0;
    return lstrcmpiW(first, second);
}

std::int64_t SizeOfText(WCHAR* text) {
    WCHAR* dot = LastDot(text);
    return ReadNumber(text) * kHundredths + (dot ? ReadNumber(dot + 1) : 0);
}

std::optional<FILETIME> ReadModified(HWND list, int row) {
    WCHAR name[MAX_PATH];
    ListView_GetItemText(list, row, kNameColumn, name);
    DbHandle database(nullptr);
    const QuietReports quiet(database);
    CEDBASEINFO info;
    if (database.Open(name, 0, 0) == INVALID_HANDLE_VALUE || !database.GetInfo(&info))
        return std::nullopt;
    return info.ftLastModified;
}

std::optional<FILETIME> ModifiedOfRow(ListSort& sort, LPARAM parameter, int row) {
    if (!sort.modified || parameter >= sort.modifiedCount)
        return ReadModified(sort.list, row);
    ListSort::Modified& entry = sort.modified[parameter];
    if (!entry.known)
        entry = {true, ReadModified(sort.list, row)};
    return entry.time;
}

int CompareDates(ListSort& sort, LPARAM firstParameter, int first, LPARAM secondParameter, int second) {
    const std::optional<FILETIME> firstTime = ModifiedOfRow(sort, firstParameter, first);
    const std::optional<FILETIME> secondTime = ModifiedOfRow(sort, secondParameter, second);
    return firstTime && secondTime ? CompareFileTime(&*firstTime, &*secondTime) : 0;
}

int CompareTexts(const ListSort& sort, int first, int second) {
    WCHAR firstText[MAX_PATH];
    WCHAR secondText[MAX_PATH];
    ListView_GetItemText(sort.list, first, sort.column, firstText);
    ListView_GetItemText(sort.list, second, sort.column, secondText);
    switch (sort.key) {
    case kSortByName:
    case kSortByNameToo:
        return CompareNames(firstText, secondText);
    case kSortBySize:
        return Compare(SizeOfText(firstText), SizeOfText(secondText));
    case kSortByInteger:
        return Compare(ReadNumber(firstText), ReadNumber(secondText));
    }
    return 0;
}

int CompareRows(LPARAM firstParameter, LPARAM secondParameter, LPARAM param) {
    if (firstParameter == secondParameter)
        return 0;
    if ((firstParameter < 0) != (secondParameter < 0))
        return firstParameter < 0 ? -1 : 1;
    ListSort& sort = *reinterpret_cast<ListSort*>(param);
    const int first = RowOfParameter(sort.list, firstParameter);
    const int second = RowOfParameter(sort.list, secondParameter);
    if (first == second)
        return 0;
    const int order = sort.key == kSortByDate && firstParameter >= 0
                          ? CompareDates(sort, firstParameter, first, secondParameter, second)
                          : CompareTexts(sort, first, second);
    return sort.ascending ? order : -order;
}

} // namespace

int ColumnOfSortKey(DWORD key) {
    for (int column = 0; column < kListColumns; ++column)
        if (key == kDatabaseColumnKeys[column] || key == kPropertyColumnKeys[column])
            return column;
    return 0;
}

void SortListView(ListSort& sort) {
    ListView_SortItems(sort.list, CompareRows, reinterpret_cast<LPARAM>(&sort));
    ShowSortOrder(sort.list);
}

ListSort SettingsSort(HWND list) {
    const Settings& settings = *App().settings;
    ListSort sort = {settings.sortAscending != 0, ColumnOfSortKey(settings.sortKey), settings.sortKey, list};
    if (sort.key == kSortByDate) {
        sort.modifiedCount = ListView_GetItemCount(list);
        sort.modified.reset(new (std::nothrow) ListSort::Modified[sort.modifiedCount]);
    }
    return sort;
}

void ChooseSortColumn(const ColumnKeys& keys, int column) {
    Settings& settings = *App().settings;
    const SortKey key = keys[column];
    if (key == settings.sortKey)
        settings.sortAscending = !settings.sortAscending;
    settings.sortKey = key;
}
