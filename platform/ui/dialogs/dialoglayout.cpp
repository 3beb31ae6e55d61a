// A full-screen dialog's controls follow the screen: what is wide or tall by nature takes the room there is,
// rows of buttons keep together, and what does not fit can be scrolled to.
#include <QScrollBar>
#include <algorithm>
#include <cmath>

#include "platform/controls.h"
#include "platform/ui/dialogs/dialogcore.h"
#include "platform/ui/dialogs/dialogsqueeze.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

// Shares of the template's width: edges beyond the first follow the right side, those nearer to the middle
// than the second follow the middle, and a row that begins before the third keeps to the left.
constexpr double kRightZone = 0.82;
constexpr double kMiddleZone = 0.09;
constexpr double kLeftZone = 0.05;
constexpr double kCentredWithin = 0.01;
// What may be taken of the height of lists and editors before the dialog is scrolled.
constexpr double kLeastTall = 0.35;

constexpr int kScrollStep = 24; // pixels at 96 to the inch
constexpr int kWheelNotch = 120;

bool IsOfClass(const WindowObject& window, const char* name) {
    return window.windowClass->name.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
}

bool IsButtonOfKind(const WindowObject& window, DWORD kind) {
    return IsOfClass(window, "BUTTON") && (window.style & BS_TYPEMASK) == kind;
}

bool IsPushButton(const WindowObject& window) {
    return IsButtonOfKind(window, BS_PUSHBUTTON) || IsButtonOfKind(window, BS_DEFPUSHBUTTON);
}

// Takes all the height that it gets.
bool IsTall(const WindowObject& window) {
    return IsOfClass(window, "SysListView32") || (IsOfClass(window, "EDIT") && window.style & ES_MULTILINE);
}

// Where an edge goes when the dialog is `extra` pixels wider than its template.
int EdgeShift(int edge, int width, int extra) {
    if (edge > kRightZone * width)
        return extra;
    return std::abs(edge - width / 2.0) < kMiddleZone * width ? extra / 2 : 0;
}

// How far a row of buttons moves; buttons side by side stay together.
int RowShift(const std::vector<ControlHome>& homes, const ControlHome& member, int width, int extra) {
    QRect row = member.rect;
    for (const ControlHome& other : homes)
        if (LiveWindow(other.control) && IsPushButton(*other.control) && other.rect.top() == row.top())
            row |= other.rect;
    const int rightGap = width - row.x() - row.width();
    if (std::abs(row.x() - rightGap) <= kCentredWithin * width)
        return extra / 2;
    return row.x() < kLeftZone * width ? 0 : EdgeShift(row.x() + row.width(), width, extra);
}

// A line across the dialog where it grows: whatever is tall and crosses it grows by the line's share.
struct GrowLine {
    int top;    // of what grows
    int bottom; // the line itself
    int tallest;
};

std::vector<GrowLine> GrowLinesOf(const std::vector<ControlHome>& homes) {
    std::vector<GrowLine> lines;
    for (const ControlHome& home : homes) {
        if (!LiveWindow(home.control) || !IsTall(*home.control))
            continue;
        const int top = home.rect.y();
        const int bottom = top + home.rect.height();
        const auto beside = std::find_if(lines.begin(), lines.end(), [&](const GrowLine& line) {
            return top < line.bottom && line.top < bottom;
        });
        if (beside == lines.end())
            lines.push_back({top, bottom, home.rect.height()});
        else
            *beside = {std::max(beside->top, top), std::min(beside->bottom, bottom),
                       std::min(beside->tallest, home.rect.height())};
    }
    return lines;
}

int ShiftDown(const std::vector<GrowLine>& lines, int edge, int extra) {
    const auto crossed = std::count_if(lines.begin(), lines.end(),
                                       [edge](const GrowLine& line) { return line.bottom <= edge; });
    return crossed ? extra * static_cast<int>(crossed) / static_cast<int>(lines.size()) : 0;
}

QRect RectOf(const std::vector<ControlHome>& homes, const ControlHome& home, const QSize& natural,
             const QSize& extra, const std::vector<GrowLine>& lines) {
    const WindowObject& control = *home.control;
    QRect rect = home.rect;
    const int right = rect.x() + rect.width();
    if (IsPushButton(control)) {
        rect.translate(RowShift(homes, home, natural.width(), extra.width()), 0);
    } else {
        rect.setLeft(rect.x() + EdgeShift(rect.x(), natural.width(), extra.width()));
        rect.setWidth(right + EdgeShift(right, natural.width(), extra.width()) - rect.x());
    }
    const bool grows = IsTall(control) || IsButtonOfKind(control, BS_GROUPBOX);
    const int down = ShiftDown(lines, rect.y(), extra.height());
    const int bottom = rect.y() + rect.height();
    rect.setHeight(rect.height() + (grows ? ShiftDown(lines, bottom, extra.height()) - down : 0));
    rect.translate(0, down);
    return rect;
}

// A control that the program adds was placed for the screen's width at that time: it keeps its distance to
// the right side.
void ArrangeAdded(HWND dialog, int visibleWidth) {
    std::vector<ControlHome>& added = dialog->dialog->added;
    const int screen = dialog->topLevel->frame->width();
    for (HWND child : dialog->children) {
        const auto isChild = [child](const ControlHome& home) { return home.control == child; };
        if (child->id != kMenuBarId && child->widget &&
            std::none_of(dialog->dialog->homes.begin(), dialog->dialog->homes.end(), isChild) &&
            std::none_of(added.begin(), added.end(), isChild))
            added.push_back({child, child->widget->geometry().translated(-screen, 0)});
    }
    for (const ControlHome& home : added) {
        const int left = std::min(screen + home.rect.x(), visibleWidth - home.rect.width());
        if (LiveWindow(home.control))
            PlaceWindow(home.control, QRect(QPoint(std::max(0, left), home.rect.y()), home.rect.size()));
    }
}

QSize LeastSize(const SqueezedLayout& layout) {
    int least = layout.size.height();
    for (const GrowLine& line : GrowLinesOf(layout.homes))
        least -= static_cast<int>(line.tallest * (1 - kLeastTall));
    return QSize(layout.size.width(), least);
}

QScrollBar* BarOf(HWND dialog, Qt::Orientation orientation) {
    QPointer<QScrollBar>& bar = dialog->dialog->scrollBars[orientation == Qt::Vertical];
    if (!bar) {
        bar = new QScrollBar(orientation, dialog->topLevel->frame);
        QObject::connect(bar, &QScrollBar::valueChanged, bar, [dialog] { LayOutTopLevel(dialog); });
    }
    return bar;
}

// Returns how far that bar has scrolled.
int ShowBar(HWND dialog, Qt::Orientation orientation, const QRect& rect, int shown, int wanted) {
    if (wanted <= shown && !dialog->dialog->scrollBars[orientation == Qt::Vertical])
        return 0;
    QScrollBar* bar = BarOf(dialog, orientation);
    const QSignalBlocker quiet(bar);
    bar->setRange(0, std::max(0, wanted - shown));
    bar->setPageStep(shown);
    bar->setSingleStep(Scaled(kScrollStep));
    bar->setGeometry(rect);
    bar->setVisible(wanted > shown);
    bar->raise();
    return bar->value();
}

} // namespace

void RememberLayout(HWND dialog) {
    dialog->dialog->natural = dialog->topLevel->cardSize;
    for (HWND child : dialog->children)
        if (child->widget)
            dialog->dialog->homes.push_back({child, child->widget->geometry()});
}

void LayOutDialog(HWND dialog, const QRect& client) {
    const std::shared_ptr<DialogData> data = dialog->dialog;
    SqueezedLayout layout = Squeeze(data->homes, data->natural, client.width());
    QSize least = LeastSize(layout);
    const int thickness = ScrollBarWidth();
    QSize shown = client.size();
    bool across = false;
    bool down = false;
    for (int pass = 0; pass < 2; ++pass) { // the one bar can make the other necessary
        across = shown.width() < least.width();
        down = shown.height() < least.height();
        shown = client.size() - QSize(down ? thickness : 0, across ? thickness : 0);
        layout = Squeeze(data->homes, data->natural, shown.width());
        least = LeastSize(layout);
    }
    const QSize wanted = shown.expandedTo(least);
    const QRect acrossRect(client.x(), client.y() + shown.height(), shown.width(), thickness);
    const QRect downRect(client.x() + shown.width(), client.y(), thickness, shown.height());
    const QPoint scrolled(ShowBar(dialog, Qt::Horizontal, acrossRect, shown.width(), wanted.width()),
                          ShowBar(dialog, Qt::Vertical, downRect, shown.height(), wanted.height()));
    data->shown = QRect(client.topLeft(), shown);
    PlaceWindow(dialog, QRect(client.topLeft() - scrolled, wanted));
    const QSize extra = wanted - layout.size;
    const std::vector<GrowLine> lines = GrowLinesOf(layout.homes);
    for (const ControlHome& home : layout.homes)
        if (LiveWindow(home.control))
            PlaceWindow(home.control, RectOf(layout.homes, home, layout.size, extra, lines));
    if (LiveWindow(dialog))
        ArrangeAdded(dialog, shown.width());
}

void ScrollIntoView(HWND control) {
    const HWND dialog = TopLevelOf(control);
    if (!LiveWindow(dialog) || dialog == control || !dialog->dialog || !control->widget)
        return;
    const QRect& shown = dialog->dialog->shown;
    if (shown.isEmpty()) // a box scrolls its text only
        return;
    const QRect rect(control->widget->mapTo(dialog->topLevel->frame.data(), QPoint(0, 0)),
                     control->widget->size());
    const auto scroll = [](QScrollBar* bar, int before, int after) {
        if (bar && (before < 0 || after > 0))
            bar->setValue(bar->value() + (before < 0 ? before : std::min(before, after)));
    };
    // What begins in sight stays where it is, with the label before it.
    if (rect.left() < shown.left() || rect.left() > shown.center().x())
        scroll(dialog->dialog->scrollBars[0], rect.left() - shown.left(), rect.right() - shown.right());
    scroll(dialog->dialog->scrollBars[1], rect.top() - shown.top(), rect.bottom() - shown.bottom());
}

void ScrollByWheel(HWND dialog, int delta) {
    if (QScrollBar* bar = dialog->dialog->scrollBars[1])
        bar->setValue(bar->value() - delta * Scaled(kScrollStep) / kWheelNotch);
}

bool ScrollByPage(HWND dialog, bool up) {
    QScrollBar* bar = dialog->dialog->scrollBars[1];
    if (!bar || bar->maximum() == 0)
        return false;
    bar->triggerAction(up ? QScrollBar::SliderPageStepSub : QScrollBar::SliderPageStepAdd);
    return true;
}

} // namespace ui
