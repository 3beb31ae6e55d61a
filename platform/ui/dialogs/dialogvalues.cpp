// Numbers in a dialog's controls.
#include <limits>
#include <string>

#include "platform/dialog.h"
#include "platform/text.h"

namespace ui {

namespace {

std::u16string TextOfItem(HWND dialog, int id) {
    const HWND control = GetDlgItem(dialog, id);
    std::u16string text(static_cast<std::size_t>(GetWindowTextLengthW(control)) + 1, u'\0');
    const int length = GetWindowTextW(control, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

bool ParseNumber(const std::u16string& text, bool isSigned, UINT* number) {
    std::size_t index = 0;
    while (index < text.size() && IsSpaceCharacter(text[index]))
        ++index;
    const bool negative = isSigned && index < text.size() && text[index] == u'-';
    if (negative)
        ++index;
    if (index == text.size())
        return false;
    constexpr std::uint64_t kLargestSigned = std::numeric_limits<LONG>::max();
    const std::uint64_t limit =
        isSigned ? kLargestSigned + (negative ? 1 : 0) : std::numeric_limits<UINT>::max();
    std::uint64_t magnitude = 0;
    for (; index < text.size(); ++index) {
        if (text[index] < u'0' || text[index] > u'9')
            return false;
        magnitude = magnitude * 10 + (text[index] - u'0');
        if (magnitude > limit)
            return false;
    }
    *number = static_cast<UINT>(negative ? 0 - magnitude : magnitude);
    return true;
}

} // namespace

} // namespace ui

using namespace ui;

UINT GetDlgItemInt(HWND dialog, int id, BOOL* translated, BOOL isSigned) {
    UINT number = 0;
    const bool parsed = ParseNumber(TextOfItem(dialog, id), isSigned, &number);
    if (translated)
        *translated = parsed;
    return number;
}

BOOL SetDlgItemInt(HWND dialog, int id, UINT value, BOOL isSigned) {
    WCHAR text[12]; // sign, ten digits, terminator
    wsprintfW(text, isSigned ? u"%d" : u"%u", value);
    return SetDlgItemTextW(dialog, id, text);
}
