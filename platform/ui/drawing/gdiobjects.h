// Logical drawing objects and what the host draws with for them. Handles are looked up among the live
// objects, so a deleted or foreign one yields the default instead of a crash.
#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QSize>
#include <vector>

#include "platform/gdi.h"

struct GdiObject {
    virtual ~GdiObject() = default;
};
// A description only: the host's font is made when something is drawn or measured.
struct FontObject : GdiObject {
    LOGFONTW description{};
};
struct BrushObject : GdiObject {
    COLORREF colour = 0;
};
struct BitmapObject : GdiObject {
    QImage image;
};
struct ImageListObject : GdiObject {
    QSize size; // of one image
    std::vector<QImage> images;
};

namespace ui {

// Takes ownership; the handle lives until DeleteObject.
HGDIOBJ AddGdiObject(GdiObject* object);
// The live object if it is of that kind, else null.
GdiObject* LiveGdiObject(HGDIOBJ object);
template <typename Kind>
Kind* LiveGdiObjectAs(HGDIOBJ object) {
    return dynamic_cast<Kind*>(LiveGdiObject(object));
}

QColor ColourOf(COLORREF colour);
// Null, deleted or no font: SYSTEM_FONT, the application's font at its ordinary size.
QFont FontOf(HFONT font);
// Invalid for null and deleted brushes.
QColor BrushColour(HBRUSH brush);
// Null image outside the list, or for a deleted one.
QImage ImageListImage(HIMAGELIST list, int index);
QSize ImageListSize(HIMAGELIST list);

// The resource as an opaque picture; null when it is absent or not a bitmap.
QImage LoadBitmapImage(const WCHAR* bitmap);
// The strip cut into images `width` wide, with the mask colour transparent; empty when it is absent.
std::vector<QImage> LoadImageStrip(const WCHAR* bitmap, int width, COLORREF mask);

} // namespace ui
