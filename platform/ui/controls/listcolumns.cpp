// How a list's columns share its width. What the program has set is a wish: a column that needs less gives
// way to those that need more, the names before all others, and the last one takes the room that is left.
// Where that is too little to read anything in, it is scrolled to. Columns that the user has sized stay so.
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>
#include <numeric>

#include "platform/ui/controls/listviews.h"

namespace ui {

namespace {

constexpr int kLeastCharacters = 7;

int SumOf(const std::vector<int>& widths) {
    return std::accumulate(widths.begin(), widths.end(), 0);
}

// In the order in which what is spare is given out: the names if that makes them whole, then whoever lacks
// least.
std::vector<std::size_t> ByWant(const std::vector<int>& widths, const std::vector<int>& needed, int spare) {
    std::vector<std::size_t> order(widths.size());
    std::iota(order.begin(), order.end(), 0);
    const auto want = [&](std::size_t column) {
        const int lacks = needed[column] - widths[column];
        return column == 0 && lacks <= spare ? -1 : lacks;
    };
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t one, std::size_t other) { return want(one) < want(other); });
    return order;
}

// What the list allows: where it is narrower than all wishes together, these shrink in proportion, though not
// below `least`. Texts in the last column give way somewhat before anything else, numbers do not.
struct Limits {
    int room;
    int least;
    bool lastYields;
};

std::vector<int> Shared(std::vector<int> wishes, const std::vector<int>& needed, const Limits& limits) {
    if (const int all = SumOf(wishes); all > limits.room)
        for (int& wish : wishes)
            wish = std::max(wish * limits.room / all, std::min(wish, limits.least));
    std::vector<int> widths(wishes.size());
    std::transform(wishes.begin(), wishes.end(), needed.begin(), widths.begin(),
                   [](int wish, int need) { return std::min(wish, need); });
    if (limits.lastYields && widths.size() > 1)
        widths.back() = std::min(widths.back(), wishes.back() * 2 / 3);
    int spare = std::max(0, limits.room - SumOf(widths));
    const auto give = [&](std::size_t column, int upTo) {
        const int given = std::clamp(upTo - widths[column], 0, spare);
        widths[column] += given;
        spare -= given;
    };
    for (const std::size_t column : ByWant(widths, needed, spare))
        give(column, needed[column]);
    for (std::size_t column = 0; column < widths.size(); ++column)
        give(column, wishes[column]);
    return widths;
}

// The last column keeps its width, out of sight, where sharing would leave less than most of its texts.
std::vector<int> SharedOrScrolled(const std::vector<int>& wishes, const std::vector<int>& needed,
                                  const Limits& limits) {
    std::vector<int> widths = Shared(wishes, needed, limits);
    if (limits.lastYields && widths.size() > 1 && widths.back() * 4 < needed.back() * 3) {
        widths = Shared({wishes.begin(), wishes.end() - 1}, {needed.begin(), needed.end() - 1},
                        {limits.room, limits.least, false});
        widths.push_back(needed.back());
    }
    return widths;
}

} // namespace

const std::vector<int>& ListWidget::NeededWidths() {
    const std::size_t count = model->Columns().size();
    if (neededFor != model->contents || needed.size() != count) {
        neededFor = model->contents;
        needed.resize(count);
        for (std::size_t column = 0; column < count; ++column)
            needed[column] = ContentsWidth(*this, static_cast<int>(column));
    }
    return needed;
}

void ListWidget::ShareRoom() {
    if (View() != LVS_REPORT || sharing || model->Columns().empty())
        return;
    const QScopedValueRollback guard(sharing, true);
    std::vector<int> widths;
    for (const ListColumn& column : model->Columns())
        widths.push_back(std::max(1, column.width));
    // The scroll bar may be about to come.
    const bool scrolls = !model->Detached() && model->RowCount() > RowsPerPage();
    const int room =
        contentsRect().width() - (scrolls ? details->verticalScrollBar()->sizeHint().width() : 0);
    if (!widthsChosen)
        widths = SharedOrScrolled(widths, NeededWidths(),
                                  {room, kLeastCharacters * fontMetrics().averageCharWidth(),
                                   model->Columns().back().alignment != LVCFMT_RIGHT});
    widths.back() += std::max(0, room - SumOf(widths));
    // Neither bar may come only because the other one is there.
    details->setHorizontalScrollBarPolicy(SumOf(widths) > room ? Qt::ScrollBarAsNeeded
                                                               : Qt::ScrollBarAlwaysOff);
    for (std::size_t column = 0; column < widths.size(); ++column)
        details->header()->resizeSection(static_cast<int>(column), widths[column]);
}

void ListWidget::ApplyColumnWidths() {
    widthsChosen = false;
    ShareRoom();
}

void ListWidget::TakeColumnWidth(int column, int width) {
    if (sharing || !model->HasColumn(column))
        return;
    if (!widthsChosen) {
        int last = 0;
        for (int each = 0; model->HasColumn(each); last = each++)
            model->Column(each).width = details->header()->sectionSize(each);
        model->Column(last).width = std::min(model->Column(last).width, NeededWidths().back());
    }
    widthsChosen = true;
    model->Column(column).width = width;
    ShareRoom();
}

} // namespace ui
