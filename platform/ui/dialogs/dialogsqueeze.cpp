#include "platform/ui/dialogs/dialogsqueeze.h"

#include <algorithm>
#include <map>

#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/screen/screen.h"

namespace ui {

namespace {

constexpr int kSmallGap = 6; // pixels at 96 to the inch

// From the template's edges of controls to where these are now, in one direction.
using Edges = std::map<int, int>;

struct Span {
    int from;
    int to;
    int least; // from the one edge to the other
};

// As far to the left or top as the spans allow.
Edges Pack(const std::vector<Span>& spans) {
    Edges edges;
    for (const Span& span : spans) {
        edges[span.from] = 0;
        edges[span.to] = 0;
    }
    for (auto& [home, place] : edges)
        for (const Span& span : spans)
            if (span.to == home && span.from < span.to)
                place = std::max(place, edges[span.from] + span.least);
    return edges;
}

bool TakesRoom(const ControlHome& home) {
    return LiveWindow(home.control) && home.control->widget && !home.rect.isEmpty();
}

int RightOf(const QRect& rect) {
    return rect.x() + rect.width();
}

Span GapBetween(int from, int to) {
    return {from, to, std::min(to - from, Scaled(kSmallGap))};
}

// What two controls in one row ask for: one is behind the other, or within it.
void AddGaps(const QRect& one, const QRect& other, std::vector<Span>& spans) {
    const bool sameRow = one.y() < other.y() + other.height() && other.y() < one.y() + one.height();
    if (sameRow && RightOf(one) <= other.x()) {
        spans.push_back(GapBetween(RightOf(one), other.x()));
    } else if (sameRow && one.x() <= other.x() && RightOf(other) <= RightOf(one)) {
        spans.push_back(GapBetween(one.x(), other.x()));
        spans.push_back(GapBetween(RightOf(other), RightOf(one)));
    }
}

std::vector<Span> SpansAcross(const std::vector<ControlHome>& homes, int natural) {
    std::vector<Span> spans{{0, natural, 0}};
    for (const ControlHome& home : homes) {
        if (!TakesRoom(home))
            continue;
        const int left = home.rect.x();
        const int right = RightOf(home.rect);
        spans.push_back(GapBetween(0, left));
        spans.push_back({left, right, std::min(right - left, LeastWidth(*home.control))});
        spans.push_back(GapBetween(right, natural));
        for (const ControlHome& other : homes)
            if (&other != &home && TakesRoom(other))
                AddGaps(home.rect, other.rect, spans);
    }
    return spans;
}

// Between the packed places and the template's, both of which keep every distance that matters.
Edges AcrossIn(const std::vector<ControlHome>& homes, int natural, int width) {
    Edges edges = Pack(SpansAcross(homes, natural));
    const int least = edges[natural];
    const double share =
        least < natural ? std::clamp((width - least) / double(natural - least), 0.0, 1.0) : 1.0;
    for (auto& [home, place] : edges)
        place += qRound((home - place) * share);
    return edges;
}

// Every distance of the template, and what texts need beyond it.
Edges Down(std::vector<Span> spans, int natural) {
    spans.push_back({0, natural, 0});
    const Edges places = Pack(spans);
    for (auto edge = places.begin(); std::next(edge) != places.end(); ++edge)
        spans.push_back({edge->first, std::next(edge)->first, std::next(edge)->first - edge->first});
    return Pack(spans);
}

} // namespace

SqueezedLayout Squeeze(const std::vector<ControlHome>& homes, const QSize& natural, int width) {
    Edges across = AcrossIn(homes, natural.width(), width);
    SqueezedLayout squeezed{homes, natural};
    std::vector<Span> spans;
    for (ControlHome& home : squeezed.homes) {
        if (!TakesRoom(home))
            continue;
        const int left = across[home.rect.x()];
        const int right = across[home.rect.x() + home.rect.width()];
        const int needed = HeightAt(*home.control, right - left);
        spans.push_back({home.rect.y(), home.rect.y() + home.rect.height(), needed});
        home.rect = QRect(left, home.rect.y(), right - left, home.rect.height());
    }
    Edges down = Down(std::move(spans), natural.height());
    for (ControlHome& home : squeezed.homes) {
        if (!TakesRoom(home))
            continue;
        const int top = down[home.rect.y()];
        const int bottom = down[home.rect.y() + home.rect.height()];
        home.rect = QRect(home.rect.x(), top, home.rect.width(), bottom - top);
    }
    squeezed.size = QSize(across[natural.width()], down[natural.height()]);
    return squeezed;
}

} // namespace ui
