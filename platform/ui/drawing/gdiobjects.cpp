#include "platform/ui/drawing/gdiobjects.h"

#include <QApplication>
#include <QPalette>
#include <algorithm>
#include <cstring>
#include <memory>
#include <unordered_map>

#include "platform/ui/drawing/look.h"

namespace ui {

namespace {

// Never destroyed: objects may be asked for while the process ends.
std::unordered_map<HGDIOBJ, std::unique_ptr<GdiObject>>& LiveObjects() {
    static auto* const objects = new std::unordered_map<HGDIOBJ, std::unique_ptr<GdiObject>>;
    return *objects;
}

LOGFONTW SystemFontDescription() {
    LOGFONTW description{};
    description.lfWeight = FW_NORMAL;
    return description;
}

HGDIOBJ AddStockObject(int index) {
    if (index == SYSTEM_FONT) {
        auto* const font = new FontObject;
        font->description = SystemFontDescription();
        return AddGdiObject(font);
    }
    auto* const brush = new BrushObject;
    brush->colour = RGB(255, 255, 255);
    return AddGdiObject(brush);
}

} // namespace

HGDIOBJ AddGdiObject(GdiObject* object) {
    LiveObjects().emplace(object, object);
    return object;
}

GdiObject* LiveGdiObject(HGDIOBJ object) {
    const auto found = LiveObjects().find(object);
    return found == LiveObjects().end() ? nullptr : found->second.get();
}

QColor ColourOf(COLORREF colour) {
    return QColor(static_cast<int>(colour & 0xFF), static_cast<int>(colour >> 8 & 0xFF),
                  static_cast<int>(colour >> 16 & 0xFF));
}

QColor DisplayColour(COLORREF colour) {
    const QPalette palette = QApplication::palette();
    switch (colour) {
    case RGB(0, 0, 0):
        return palette.color(QPalette::WindowText);
    case RGB(255, 255, 255):
        return palette.color(QPalette::Base);
    case kHeaderFace:
        return look::Header();
    case kHeaderPressedFace:
        return look::HeaderPressed();
    }
    return ColourOf(colour);
}

QFont FontOf(HFONT font) {
    const auto* const object = LiveGdiObjectAs<FontObject>(font);
    const LOGFONTW description = object ? object->description : SystemFontDescription();
    QFont made = QApplication::font();
    const auto* const faceEnd =
        std::find(std::begin(description.lfFaceName), std::end(description.lfFaceName), u'\0');
    if (faceEnd != description.lfFaceName)
        made.setFamily(QString::fromUtf16(description.lfFaceName, faceEnd - description.lfFaceName));
    constexpr LONG kTallest = 1000;
    if (description.lfHeight != 0)
        made.setPixelSize(std::abs(std::clamp(description.lfHeight, -kTallest, kTallest)));
    if (description.lfWeight > 0)
        made.setWeight(static_cast<QFont::Weight>(std::min<LONG>(description.lfWeight, QFont::Black)));
    made.setItalic(description.lfItalic != 0);
    made.setUnderline(description.lfUnderline != 0);
    made.setStrikeOut(description.lfStrikeOut != 0);
    return made;
}

COLORREF BrushColour(HBRUSH brush) {
    const auto* const object = LiveGdiObjectAs<BrushObject>(brush);
    return object ? object->colour : CLR_INVALID;
}

} // namespace ui

using namespace ui;

HGDIOBJ GetStockObject(int index) {
    static const HGDIOBJ font = AddStockObject(SYSTEM_FONT);
    static const HGDIOBJ brush = AddStockObject(WHITE_BRUSH);
    return index == SYSTEM_FONT ? font : index == WHITE_BRUSH ? brush : nullptr;
}

BOOL DeleteObject(HGDIOBJ object) {
    if (object && (object == GetStockObject(SYSTEM_FONT) || object == GetStockObject(WHITE_BRUSH)))
        return TRUE;
    return LiveObjects().erase(object) != 0;
}

int GetObjectW(HGDIOBJ object, int bytes, void* out) {
    if (bytes <= 0 || !out)
        return 0;
    const auto give = [&](const auto& record) {
        const int given = std::min(bytes, static_cast<int>(sizeof record));
        std::memcpy(out, &record, static_cast<std::size_t>(given));
        return given;
    };
    if (const auto* const font = LiveGdiObjectAs<FontObject>(object))
        return give(font->description);
    if (const auto* const bitmap = LiveGdiObjectAs<BitmapObject>(object))
        return give(BITMAP{0, PictureSize(bitmap->image).width(), PictureSize(bitmap->image).height()});
    return 0;
}

HFONT CreateFontIndirectW(const LOGFONTW* font) {
    if (!font)
        return nullptr;
    auto* const object = new FontObject;
    object->description = *font;
    return AddGdiObject(object);
}

HBRUSH CreateSolidBrush(COLORREF colour) {
    auto* const object = new BrushObject;
    object->colour = colour;
    return AddGdiObject(object);
}
