#include "platform/storage/fold.h"

#include <QChar>

namespace storage {

std::u16string Fold(std::u16string_view text) {
    std::u16string folded(text);
    for (std::size_t at = 0; at < folded.size(); ++at) {
        const char16_t unit = folded[at];
        if (unit < 0x80) {
            folded[at] = unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
        } else if (QChar::isHighSurrogate(unit) && at + 1 < folded.size() &&
                   QChar::isLowSurrogate(folded[at + 1])) {
            const char32_t character = QChar::toCaseFolded(QChar::surrogateToUcs4(unit, folded[at + 1]));
            folded[at] = QChar::highSurrogate(character);
            folded[++at] = QChar::lowSurrogate(character);
        } else {
            folded[at] = static_cast<char16_t>(QChar::toCaseFolded(char32_t{unit}));
        }
    }
    return folded;
}

} // namespace storage
