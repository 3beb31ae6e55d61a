// Dialog templates put together word by word.
#pragma once

#include <string>
#include <vector>

#include "platform/dialog.h"

class TemplateBuilder {
public:
    explicit TemplateBuilder(const std::u16string& caption, WORD pointSize = 9) {
        Double(kStyle);
        Double(0);
        countAt = words.size();
        for (const WORD word : {0, 0, 0, 228, 160, 0, 0}) // count, place, size, menu, class
            Word(word);
        Text(caption);
        Word(pointSize);
        Text(u"System");
    }

    TemplateBuilder& Add(const std::u16string& className, const std::u16string& text, DWORD style, WORD id,
                         WORD x = 7, WORD y = 7, WORD width = 60, WORD height = 12) {
        if (words.size() % 2)
            Word(0);
        Double(style | WS_CHILD | WS_VISIBLE);
        Double(0);
        for (const WORD word : {x, y, width, height, id})
            Word(word);
        if (className == u"BUTTON") { // as the resource compiler writes it
            Word(0xFFFF);
            Word(0x80);
        } else {
            Text(className);
        }
        Text(text);
        Word(0);
        ++words[countAt];
        return *this;
    }

    const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(words.data()); }

private:
    static constexpr DWORD kStyle = WS_POPUP | 0x40; // with a font

    void Word(WORD word) { words.push_back(word); }
    void Double(DWORD value) {
        Word(LOWORD(value));
        Word(HIWORD(value));
    }
    void Text(const std::u16string& text) {
        for (const WCHAR unit : text)
            Word(unit);
        Word(0);
    }

    std::size_t countAt = 0;
    std::vector<WORD> words;
};
