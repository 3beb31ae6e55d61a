#include <algorithm>

#include "platform/ui/controls/listmessages.h"

namespace ui {

namespace {

struct SortedRow {
    LPARAM param;
    int row;
};

} // namespace

// A merge of our own: the comparison is the program's and may contradict itself (rows that it cannot compare
// are equal to every other), which the library's sorts do not allow for.
bool SortRows(ListWidget& list, PFNLVCOMPARE compare, LPARAM compareParam) {
    ListModel& model = *list.model;
    const auto count = static_cast<std::size_t>(model.RowCount());
    std::vector<SortedRow> rows(count), merged(count);
    for (std::size_t i = 0; i < count; ++i)
        rows[i] = {model.Row(static_cast<int>(i)).param, static_cast<int>(i)};
    const unsigned generation = model.generation;
    for (std::size_t run = 1; run < count; run *= 2) {
        for (std::size_t start = 0; start < count; start += 2 * run) {
            std::size_t left = start, middle = std::min(start + run, count);
            std::size_t right = middle, end = std::min(start + 2 * run, count);
            for (std::size_t out = start; out < end; ++out) {
                bool takeRight =
                    left == middle ||
                    (right < end && compare(rows[left].param, rows[right].param, compareParam) > 0);
                merged[out] = takeRight ? rows[right++] : rows[left++];
            }
            if (model.generation != generation)
                return false;
        }
        rows.swap(merged);
    }
    std::vector<int> order(count);
    for (std::size_t i = 0; i < count; ++i)
        order[i] = rows[i].row;
    const int top = list.TopRow();
    model.Reorder(order);
    if (!model.Detached())
        list.ShowRows(top);
    return true;
}

} // namespace ui
