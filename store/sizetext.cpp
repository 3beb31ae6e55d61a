#include "store/sizetext.h"

#include "platform/text.h"

void FormatSizeText(DWORD bytes, WCHAR (&text)[kSizeTextCapacity]) {
    const bool shown = static_cast<LONG>(bytes) > 0;
    const SizeInKilobytes size(shown ? bytes : 0);
    wsprintfW(text, u"%d.%02dKB", size.whole, size.hundredths);
}
