#include "platform/text.h"

#include <QChar>
#include <QStringView>
#include <algorithm>
#include <string>

namespace {

// Fills a buffer up to its room.
struct Output {
    WCHAR* text;
    std::size_t room; // terminator not counted
    std::size_t length = 0;

    void Put(WCHAR character) {
        if (length < room)
            text[length++] = character;
    }
};

struct Field {
    int width = 0;
    WCHAR fill = u' ';
    WCHAR kind = 0;
};

// Reads what follows a %, up to its letter. A width beyond any buffer is cut, so that it cannot run over.
const WCHAR* ReadField(const WCHAR* format, Field& field) {
    if (*format == u'0') {
        field.fill = u'0';
        ++format;
    }
    for (; *format >= u'0' && *format <= u'9'; ++format)
        field.width = std::min(field.width * 10 + (*format - u'0'), 0xFFFF);
    if (*format == u'l')
        ++format;
    field.kind = *format;
    return *format ? format + 1 : format;
}

void PutFilled(Output& out, const Field& field, const WCHAR* text, int length) {
    for (int i = length; i < field.width; ++i)
        out.Put(u' ');
    for (int i = 0; i < length; ++i)
        out.Put(text[i]);
}

void PutNumber(Output& out, const Field& field, DWORD magnitude, bool negative) {
    const DWORD base = field.kind == u'x' || field.kind == u'X' ? 16 : 10;
    const WCHAR* digitSet = field.kind == u'X' ? u"0123456789ABCDEF" : u"0123456789abcdef";
    WCHAR digits[10];
    int count = 0;
    do {
        digits[count++] = digitSet[magnitude % base];
        magnitude /= base;
    } while (magnitude);
    // Zeros go between the sign and the digits, blanks before the sign.
    if (negative && field.fill == u'0')
        out.Put(u'-');
    for (int i = count + negative; i < field.width; ++i)
        out.Put(field.fill);
    if (negative && field.fill != u'0')
        out.Put(u'-');
    while (count)
        out.Put(digits[--count]);
}

int Sign(int value) {
    return (value > 0) - (value < 0);
}

QStringView View(const WCHAR* text) {
    return QStringView(text ? text : u"");
}

} // namespace

int CopyText(WCHAR* out, std::size_t capacity, const WCHAR* text) {
    if (capacity == 0)
        return 0;
    Output copy{out, capacity - 1};
    for (; text && *text && copy.length < copy.room; ++text)
        copy.Put(*text);
    out[copy.length] = 0;
    return static_cast<int>(copy.length);
}

int FormatText(WCHAR* out, std::size_t capacity, const WCHAR* format, va_list arguments) {
    if (capacity == 0)
        return 0;
    Output result{out, capacity - 1};
    while (*format) {
        if (*format != u'%') {
            result.Put(*format++);
            continue;
        }
        const WCHAR* start = format;
        Field field;
        format = ReadField(format + 1, field);
        if (field.kind == u's') {
            const WCHAR* text = va_arg(arguments, const WCHAR*);
            text = text ? text : u"(null)";
            PutFilled(result, field, text, lstrlenW(text));
        } else if (field.kind == u'c') {
            const WCHAR character = static_cast<WCHAR>(va_arg(arguments, int));
            PutFilled(result, field, &character, 1);
        } else if (field.kind == u'd') {
            const int value = va_arg(arguments, int);
            PutNumber(result, field, value < 0 ? 0U - static_cast<DWORD>(value) : static_cast<DWORD>(value),
                      value < 0);
        } else if (field.kind == u'u' || field.kind == u'x' || field.kind == u'X') {
            PutNumber(result, field, va_arg(arguments, unsigned), false);
        } else if (field.kind == u'%') {
            result.Put(u'%');
        } else {
            for (; start < format; ++start)
                result.Put(*start);
        }
    }
    out[result.length] = 0;
    return static_cast<int>(result.length);
}

int lstrlenW(const WCHAR* text) {
    return text ? static_cast<int>(std::char_traits<WCHAR>::length(text)) : 0;
}

int lstrcmpW(const WCHAR* left, const WCHAR* right) {
    return Sign(View(left).compare(View(right)));
}

int lstrcmpiW(const WCHAR* left, const WCHAR* right) {
    return Sign(View(left).compare(View(right), Qt::CaseInsensitive));
}

WCHAR* CharLowerW(WCHAR* text) {
    // Unit by unit: a text must not grow. Most are plain letters, which a search lowers by the million.
    constexpr WCHAR kFirstBeyondAscii = 0x80;
    constexpr WCHAR kToSmall = u'a' - u'A';
    for (WCHAR* unit = text; *unit; ++unit)
        if (*unit >= kFirstBeyondAscii)
            *unit = QChar(*unit).toLower().unicode();
        else if (*unit >= u'A' && *unit <= u'Z')
            *unit += kToSmall;
    return text;
}

bool IsSpaceCharacter(WCHAR character) {
    return QChar(character).isSpace();
}
