#include "platform/ui/dialogs/dialogtemplate.h"

#include <cstring>

namespace ui {

namespace {

constexpr WORD kNumberMark = 0xFFFF; // before a class or resource that is given by its number
constexpr DWORD kHasFont = 0x40;     // dialog style

// The built-in classes that templates give by number.
struct NumberedClass {
    WORD number;
    const WCHAR* name;
};
constexpr NumberedClass kNumberedClasses[] = {
    {0x80, u"BUTTON"},  {0x81, u"EDIT"},      {0x82, u"STATIC"},
    {0x83, u"LISTBOX"}, {0x84, u"SCROLLBAR"}, {0x85, u"COMBOBOX"},
};

class Reader {
public:
    explicit Reader(const void* bytes) : start(static_cast<const BYTE*>(bytes)), at(start) {}

    WORD Word() {
        WORD value;
        std::memcpy(&value, at, sizeof(value));
        at += sizeof(value);
        return value;
    }
    DWORD Double() {
        const DWORD low = Word();
        return low | static_cast<DWORD>(Word()) << 16;
    }
    int Short() { return static_cast<std::int16_t>(Word()); }
    // Text, or a number after its mark, which becomes `number`.
    std::u16string TextOrNumber(WORD& number) {
        number = 0;
        std::u16string text;
        WORD unit = Word();
        if (unit == kNumberMark) {
            number = Word();
            return text;
        }
        for (; unit; unit = Word())
            text += static_cast<WCHAR>(unit);
        return text;
    }
    void Align() { at += (4 - (at - start) % 4) % 4; }
    void Skip(std::size_t bytes) { at += bytes; }

private:
    const BYTE* start;
    const BYTE* at;
};

std::u16string ClassName(Reader& reader) {
    WORD number;
    std::u16string name = reader.TextOrNumber(number);
    for (const NumberedClass& known : kNumberedClasses)
        if (known.number == number)
            name = known.name;
    return name;
}

TemplateItem ReadItem(Reader& reader) {
    TemplateItem item;
    reader.Align();
    item.style = reader.Double();
    item.exStyle = reader.Double();
    item.x = reader.Short();
    item.y = reader.Short();
    item.width = reader.Short();
    item.height = reader.Short();
    item.id = reader.Word();
    item.className = ClassName(reader);
    WORD number;
    item.text = reader.TextOrNumber(number);
    const WORD creationData = reader.Word();
    reader.Skip(creationData);
    return item;
}

} // namespace

ParsedTemplate ParseDialogTemplate(const DLGTEMPLATE* dialogTemplate) {
    ParsedTemplate parsed;
    Reader reader(dialogTemplate);
    parsed.style = reader.Double();
    parsed.exStyle = reader.Double();
    const int count = reader.Word();
    reader.Skip(4); // the place on the screen is the shell's to choose
    parsed.width = reader.Short();
    parsed.height = reader.Short();
    WORD number;
    reader.TextOrNumber(number); // menu
    reader.TextOrNumber(number); // class
    parsed.caption = reader.TextOrNumber(number);
    if (parsed.style & kHasFont) {
        parsed.pointSize = reader.Word();
        reader.TextOrNumber(number);
    }
    for (int i = 0; i < count; ++i)
        parsed.items.push_back(ReadItem(reader));
    return parsed;
}

} // namespace ui
