// The progress bar: a flat bar without text.
#include <QPainter>
#include <QProgressBar>
#include <algorithm>
#include <utility>

#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/drawing/look.h"

namespace ui {

namespace {

class ProgressBar : public QProgressBar {
public:
    ProgressBar(const WindowObject& window, QWidget* parent) : QProgressBar(parent) {
        setRange(0, 100);
        setValue(0);
        setTextVisible(false);
        setFocusPolicy(Qt::NoFocus);
        NameAfterLabel(window, this);
    }

    int step = 10;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), look::Trough());
        // In 64 bits: the range may be that of a 32-bit number.
        qint64 span = static_cast<qint64>(maximum()) - minimum();
        qint64 done = static_cast<qint64>(value()) - minimum();
        const int filled = span > 0 ? static_cast<int>(width() * done / span) : 0;
        painter.fillRect(0, 0, filled, height(), look::Selection());
        painter.setPen(look::Line());
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
};

QWidget* MakeProgress(WindowObject& window, QWidget* parent) {
    return new ProgressBar(window, parent);
}

LRESULT SetRange(ProgressBar& bar, int low, int high) {
    LRESULT previous =
        static_cast<LRESULT>(MAKELONG(static_cast<WORD>(bar.minimum()), static_cast<WORD>(bar.maximum())));
    const int position = std::clamp(bar.value(), low, std::max(low, high));
    bar.setRange(low, std::max(low, high)); // forgets a position outside the new range
    bar.setValue(position);
    return previous;
}

LRESULT MoveTo(ProgressBar& bar, qint64 position) {
    const LRESULT previous = bar.value();
    bar.setValue(static_cast<int>(std::clamp<qint64>(position, bar.minimum(), bar.maximum())));
    return previous;
}

// Quirk: a step past the end starts again from the low end, as on the handheld.
LRESULT StepIt(ProgressBar& bar) {
    qint64 next = static_cast<qint64>(bar.value()) + bar.step;
    return MoveTo(bar, next > bar.maximum() ? bar.minimum() : next);
}

LRESULT ProgressProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    ProgressBar* bar = WidgetOf<ProgressBar>(window);
    if (!bar)
        return DefaultControlProcedure(window, message, wParam, lParam);
    switch (message) {
    case PBM_SETRANGE32:
        return SetRange(*bar, static_cast<int>(wParam), static_cast<int>(lParam));
    case PBM_SETPOS:
        return MoveTo(*bar, static_cast<int>(wParam));
    case PBM_SETSTEP:
        return std::exchange(bar->step, static_cast<int>(wParam));
    case PBM_STEPIT:
        return StepIt(*bar);
    case WM_GETDLGCODE:
        return DLGC_STATIC;
    }
    return DefaultControlProcedure(window, message, wParam, lParam);
}

} // namespace

void RegisterProgressClass() {
    RegisterBuiltInClass(u"msctls_progress32", ProgressProcedure, MakeProgress);
}

} // namespace ui
