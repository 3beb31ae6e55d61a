#include "platform/ui/drawing/look.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace ui::look {

namespace {

// Ratios of luminance. Pure black on pure white has 21, which is a desktop of high contrast.
constexpr double kReadableContrast = 4.5;
constexpr double kHighContrast = 20;

constexpr double kDarkBelow = 0.18; // luminance of the grey that contrasts with black as with white

QColor Role(QPalette::ColorRole role) {
    return QApplication::palette().color(QPalette::Active, role);
}

double Luminance(const QColor& colour) {
    const auto linear = [](float part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

double Contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({Luminance(one), Luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

} // namespace

QColor Selection() {
    return Role(QPalette::Highlight);
}

QColor SelectionText() {
    return Role(QPalette::HighlightedText);
}

QColor IdleSelection() {
    return Blend(Role(QPalette::Highlight), Role(QPalette::Base), 0.21);
}

QColor AlternateRow() {
    return Role(QPalette::AlternateBase);
}

QColor Line() {
    const QColor text = Role(QPalette::WindowText);
    const QColor window = Role(QPalette::Window);
    return Blend(text, window, Contrast(text, window) > kHighContrast ? 0.6 : 0.22);
}

QColor Edge() {
    return Blend(Role(QPalette::WindowText), Window(), 0.45);
}

QColor Header() {
    return Role(QPalette::Button);
}

QColor HeaderPressed() {
    return Blend(Role(QPalette::Highlight), Role(QPalette::Button), 0.14);
}

QColor Trough() {
    return Blend(Role(QPalette::WindowText), Role(QPalette::Window), 0.06);
}

QColor Window() {
    return Role(QPalette::Window);
}

bool Dark() {
    return Luminance(Window()) < kDarkBelow;
}

QColor Warning() {
    return Readable(QColor(0xb0, 0x20, 0x20), Window());
}

QColor Blend(const QColor& over, const QColor& under, double share) {
    const auto mix = [share](int first, int second) { return qRound(first * share + second * (1 - share)); };
    return QColor(mix(over.red(), under.red()), mix(over.green(), under.green()),
                  mix(over.blue(), under.blue()));
}

QColor Readable(const QColor& wanted, const QColor& background) {
    const QColor end = Luminance(background) < kDarkBelow ? Qt::white : Qt::black;
    QColor colour = wanted;
    for (double share = 0.1; share < 1 && Contrast(colour, background) < kReadableContrast; share += 0.1)
        colour = Blend(end, wanted, share);
    return colour;
}

namespace {

class Recolouring : public QObject {
public:
    Recolouring(QWidget* widget, QPalette::ColorRole role, QColor (*colour)())
        : QObject(widget), role(role), colour(colour) {
        Apply();
        widget->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::ApplicationPaletteChange)
            Apply();
        return false;
    }

private:
    void Apply() {
        QPalette palette;
        palette.setColor(role, colour());
        static_cast<QWidget*>(parent())->setPalette(palette);
    }

    QPalette::ColorRole role;
    QColor (*colour)();
};

} // namespace

void Recolour(QWidget* widget, QPalette::ColorRole role, QColor (*colour)()) {
    new Recolouring(widget, role, colour); // the widget's child
}

} // namespace ui::look
