// What room controls can do with.
#include <QCheckBox>
#include <QDateTimeEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <algorithm>

#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/screen/screen.h"

namespace ui {

namespace {

// Pixels at 96 to the inch.
constexpr int kAroundText = 12;  // in a button
constexpr int kAroundValue = 30; // in a picker, with what it is opened by

// Average characters.
constexpr int kLeastEdit = 10;
constexpr int kLeastList = 16;

bool HasClass(const WindowObject& control, const char* name) {
    return control.windowClass->name.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
}

bool IsStatic(const WindowObject& control) {
    return HasClass(control, "STATIC");
}

int LongestWord(const QFontMetrics& metrics, const QString& text) {
    int widest = 0;
    for (const QString& word : text.simplified().split(QLatin1Char(' ')))
        widest = std::max(widest, metrics.horizontalAdvance(word));
    return widest;
}

bool HasIndicator(const QWidget* widget) {
    return qobject_cast<const QCheckBox*>(widget) || qobject_cast<const QRadioButton*>(widget);
}

int IndicatorWidth(const QWidget* widget) {
    const QStyle* style = widget->style();
    return style->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, widget) +
           style->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, widget) + 2;
}

} // namespace

QString BreakableIn(const QFontMetrics& metrics, const QString& text, int width) {
    QStringList words = text.split(QLatin1Char(' '));
    for (QString& word : words)
        if (metrics.horizontalAdvance(word) > width)
            for (qsizetype place = word.size() - 1; place > 0; --place)
                if (!word[place].isLowSurrogate())
                    word.insert(place, QChar(0x200B));
    return words.join(QLatin1Char(' '));
}

QString BrokenToFit(const QWidget* button, const QString& text, int width) {
    const QFontMetrics metrics(button->font());
    const int room = width - IndicatorWidth(button);
    QString broken;
    QString line;
    for (const QString& word : text.split(QLatin1Char(' '))) {
        const QString longer = line.isEmpty() ? word : line + QLatin1Char(' ') + word;
        if (!line.isEmpty() && metrics.horizontalAdvance(WithoutMnemonic(longer)) > room) {
            broken += line + QLatin1Char('\n');
            line = word;
        } else {
            line = longer;
        }
    }
    return broken + line;
}

int LeastWidth(const WindowObject& control) {
    const QWidget* widget = control.widget;
    const QFontMetrics metrics(widget->font());
    if (IsStatic(control))
        return LongestWord(metrics, WithoutMnemonic(control.text));
    if (HasIndicator(widget))
        return LongestWord(metrics, WithoutMnemonic(control.text)) + IndicatorWidth(widget);
    if (qobject_cast<const QPushButton*>(widget))
        return metrics.horizontalAdvance(WithoutMnemonic(control.text)) + Scaled(kAroundText);
    if (const auto* picker = qobject_cast<const QDateTimeEdit*>(widget)) {
        const QDateTime wide(QDate(2022, 12, 28), QTime(22, 58, 58));
        return metrics.horizontalAdvance(picker->locale().toString(wide, picker->displayFormat())) +
               Scaled(kAroundValue);
    }
    return metrics.averageCharWidth() * (HasClass(control, "SysListView32") ? kLeastList : kLeastEdit);
}

int HeightAt(const WindowObject& control, int width) {
    const QWidget* widget = control.widget;
    const QFontMetrics metrics(widget->font());
    if (IsStatic(control) && !control.text.isEmpty())
        return metrics
            .boundingRect(0, 0, width, 0, Qt::TextWordWrap,
                          BreakableIn(metrics, WithoutMnemonic(control.text), width))
            .height();
    if (HasIndicator(widget))
        return static_cast<int>(BrokenToFit(widget, control.text, width).count(QLatin1Char('\n')) + 1) *
                   metrics.lineSpacing() +
               2;
    return 0;
}

} // namespace ui
