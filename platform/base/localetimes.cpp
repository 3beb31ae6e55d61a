#include "platform/base/localetimes.h"

#include <QDate>
#include <QLocale>
#include <QString>
#include <QTime>
#include <array>
#include <string>
#include <vector>

#include "platform/base/localepatterns.h"

namespace {

struct KeptDay {
    int number = -1;
    std::u16string text;
};

// A part of a time: the hour, minute, second or half of the day by its value, or a text between them.
struct TimePart {
    enum Kind { kHour, kHourOfHalf, kMinute, kSecond, kHalf, kFixed };
    Kind kind;
    std::vector<std::u16string> texts;
};

// Texts of the values from 0 on, as the locale writes `letters`.
std::vector<std::u16string> PartTexts(const QLocale& locale, TimePart::Kind kind, const QString& letters) {
    std::vector<std::u16string> texts;
    const int count = kind == TimePart::kHalf ? 2 : kind <= TimePart::kHourOfHalf ? 24 : 60;
    for (int i = 0; i < count; ++i) {
        const int hour = kind == TimePart::kHalf ? 12 * i : kind <= TimePart::kHourOfHalf ? i : 0;
        const int minute = kind == TimePart::kMinute ? i : 0;
        const int second = kind == TimePart::kSecond ? i : 0;
        texts.push_back(locale.toString(QTime(hour, minute, second), letters).toStdU16String());
    }
    return texts;
}

// A time pattern taken apart; not `simple` when it has something that is left to the library.
struct TimeForm {
    TimeForm(const QLocale& locale, const QString& wanted) : pattern(wanted) {
        const bool halves = pattern.contains(u'A', Qt::CaseInsensitive);
        for (qsizetype at = 0; at < pattern.size() && simple;) {
            const QString letters = LettersAt(at);
            Add(locale, letters, halves);
            at += letters.size();
        }
    }

    QString pattern;
    std::vector<TimePart> parts;
    bool simple = true;

private:
    QString LettersAt(qsizetype at) const {
        const QString two = pattern.mid(at, 2);
        const bool pair = two == u"AP" || two == u"ap" || (two.size() == 2 && two[0] == two[1]);
        return pair ? two : two.left(1);
    }
    void Add(const QLocale& locale, const QString& letters, bool halves) {
        static constexpr QStringView known = u"HhmsAa";
        const qsizetype place = known.indexOf(letters[0]);
        if (place < 0) {
            simple = simple && !letters[0].isLetter() && letters[0] != u'\'';
            parts.push_back({TimePart::kFixed, {letters.toStdU16String()}});
            return;
        }
        TimePart::Kind kind = std::array{TimePart::kHour,   TimePart::kHour, TimePart::kMinute,
                                         TimePart::kSecond, TimePart::kHalf, TimePart::kHalf}[place];
        if (letters[0] == u'h' && halves)
            kind = TimePart::kHourOfHalf;
        // Runs longer than two, and half an AP.
        simple = simple && (parts.empty() || parts.back().kind != kind) &&
                 (kind != TimePart::kHalf || letters.size() == 2);
        parts.push_back({kind, PartTexts(locale, kind, letters)});
    }
};

int ValueOf(TimePart::Kind kind, const SYSTEMTIME& time) {
    switch (kind) {
    case TimePart::kHour:
        return time.wHour;
    case TimePart::kHourOfHalf:
        return (time.wHour + 11) % 12 + 1;
    case TimePart::kMinute:
        return time.wMinute;
    case TimePart::kSecond:
        return time.wSecond;
    case TimePart::kHalf:
        return time.wHour / 12;
    case TimePart::kFixed:
        break;
    }
    return 0;
}

} // namespace

std::u16string_view ShortDateText(const SYSTEMTIME& date) {
    static std::array<KeptDay, 1024> days; // about three years in a row
    const int number = (date.wYear * 12 + date.wMonth - 1) * 31 + date.wDay - 1;
    KeptDay& day = days[static_cast<std::size_t>(number) % days.size()];
    if (day.number != number) {
        const QDate fields(date.wYear, date.wMonth, date.wDay);
        day.text = QLocale::system().toString(fields, QLocale::ShortFormat).toStdU16String();
        day.number = number;
    }
    return day.text;
}

std::u16string_view ShortTimeText(const SYSTEMTIME& time, bool withSeconds) {
    static const QLocale locale = QLocale::system();
    static const std::array forms{TimeForm(locale, TimePattern(locale, false)),
                                  TimeForm(locale, TimePattern(locale, true))};
    static std::u16string text;
    const TimeForm& form = forms[withSeconds];
    text.clear();
    if (form.simple)
        for (const TimePart& part : form.parts)
            text += part.texts[static_cast<std::size_t>(ValueOf(part.kind, time))];
    else
        text = locale.toString(QTime(time.wHour, time.wMinute, time.wSecond), form.pattern).toStdU16String();
    return text;
}
