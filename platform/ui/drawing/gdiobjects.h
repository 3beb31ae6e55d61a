// Logical drawing objects and what the host draws with for them. Handles are looked up among the live
// objects, so a deleted or foreign one yields the default instead of a crash.
#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPoint>
#include <QSize>
#include <vector>

#include "platform/gdi.h"

class QPainter;

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
    QImage image; // its size on the display goes by its device pixel ratio
};
struct ImageListObject : GdiObject {
    QSize size; // of one image, on the display
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

// Colours that only the platform gives out; what they look like is the desktop's to say.
constexpr COLORREF kHeaderFace = 0x01000000;
constexpr COLORREF kHeaderPressedFace = 0x01000001;

QColor ColourOf(COLORREF colour);
// The same as it is drawn on the display: black and white are the desktop's text and paper.
QColor DisplayColour(COLORREF colour);
// Null, deleted or no font: SYSTEM_FONT, the application's font at its ordinary size.
QFont FontOf(HFONT font);
// CLR_INVALID for null and deleted brushes.
COLORREF BrushColour(HBRUSH brush);
// Null image outside the list, or for a deleted one.
QImage ImageListImage(HIMAGELIST list, int index);
QSize ImageListSize(HIMAGELIST list);

// Pictures are drawn for displays of 96 and of 192 dots to the inch. This is the one of the two that the
// display calls for: above a little more than 96 those of 192 are made smaller, before those of 96 would be
// made larger.
int PictureDensity();
// What a picture takes on the display, and painting it there.
QSize PictureSize(const QImage& picture);
void DrawPicture(QPainter& painter, const QPoint& place, const QImage& picture);

// The resource as a picture of that density; null when it is absent or not a bitmap.
QImage LoadBitmapImage(const WCHAR* bitmap);
// The strip cut into images `width` of its pixels wide, with the mask colour transparent; empty when it is
// absent.
std::vector<QImage> LoadImageStrip(const WCHAR* bitmap, int width, COLORREF mask);

} // namespace ui
