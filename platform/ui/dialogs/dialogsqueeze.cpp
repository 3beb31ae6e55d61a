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

// As far to the left or top as the spans and the gaps between neighbouring edges allow.
template <typename LeastGap>
Edges Pack(const std::vector<Span>& spans, int natural, LeastGap leastGap) {
    Edges edges{{0, 0}, {natural, 0}};
    for (const Span& span : spans) {
        edges[span.from] = 0;
        edges[span.to] = 0;
    }
    const std::pair<const int, int>* before = nullptr;
    for (auto& edge : edges) {
        if (before)
            edge.second = before->second + leastGap(edge.first - before->first);
        for (const Span& span : spans)
            if (span.to == edge.first && span.from < span.to)
                edge.second = std::max(edge.second, edges[span.from] + span.least);
        before = &edge;
    }
    return edges;
}

bool TakesRoom(const ControlHome& home) {
    return LiveWindow(home.control) && home.control->widget && !home.rect.isEmpty();
}

// Between the packed places and the template's, both of which keep every distance that matters.
Edges AcrossIn(const std::vector<ControlHome>& homes, int natural, int width) {
    std::vector<Span> spans;
    for (const ControlHome& home : homes)
        if (TakesRoom(home))
            spans.push_back({home.rect.x(), home.rect.x() + home.rect.width(),
                             std::min(home.rect.width(), LeastWidth(*home.control))});
    Edges edges = Pack(spans, natural, [](int gap) { return std::min(gap, Scaled(kSmallGap)); });
    const int least = edges[natural];
    const double share =
        least < natural ? std::clamp((width - least) / double(natural - least), 0.0, 1.0) : 1.0;
    for (auto& [home, place] : edges)
        place += qRound((home - place) * share);
    return edges;
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
    Edges down = Pack(spans, natural.height(), [](int gap) { return gap; });
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
