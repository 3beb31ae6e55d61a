// Drawing and measuring on a device context.
#include <QApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QString>

#include "platform/ui/drawing/devicecontext.h"
#include "platform/ui/drawing/look.h"

namespace ui {

namespace {

QRect RectOf(const RECT& rect) {
    return QRect(QPoint(rect.left, rect.top), QPoint(rect.right - 1, rect.bottom - 1));
}

QString TextOf(const WCHAR* text, int length) {
    return text && length != 0 ? QString::fromUtf16(text, length) : QString();
}

int AlignmentOf(UINT format) {
    int flags = Qt::TextDontClip;
    flags |= format & DT_CENTER ? Qt::AlignHCenter : format & DT_RIGHT ? Qt::AlignRight : Qt::AlignLeft;
    flags |= format & DT_VCENTER && format & DT_SINGLELINE ? Qt::AlignVCenter : Qt::AlignTop;
    flags |= format & DT_SINGLELINE ? Qt::TextSingleLine : 0;
    flags |= format & DT_NOPREFIX ? 0 : Qt::TextShowMnemonic;
    return flags;
}

const QImage* SelectedImage(const DeviceContext& context) {
    const auto* const bitmap = LiveGdiObjectAs<BitmapObject>(context.state.bitmap);
    return bitmap ? &bitmap->image : nullptr;
}

} // namespace

} // namespace ui

using namespace ui;

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
    DeviceContext* const context = LiveContext(dc);
    if (!context)
        return nullptr;
    HGDIOBJ* selected = nullptr;
    if (LiveGdiObjectAs<FontObject>(object))
        selected = &context->state.font;
    else if (LiveGdiObjectAs<BrushObject>(object))
        selected = &context->state.brush;
    else if (LiveGdiObjectAs<BitmapObject>(object) && context->memory)
        selected = &context->state.bitmap;
    if (!selected)
        return nullptr;
    const HGDIOBJ previous = std::exchange(*selected, object);
    if (previous || selected == &context->state.bitmap)
        return previous;
    return GetStockObject(selected == &context->state.font ? SYSTEM_FONT : WHITE_BRUSH);
}

int SetBkMode(HDC dc, int mode) {
    DeviceContext* const context = LiveContext(dc);
    return context ? std::exchange(context->state.backMode, mode) : 0;
}

COLORREF SetTextColor(HDC dc, COLORREF colour) {
    DeviceContext* const context = LiveContext(dc);
    return context ? std::exchange(context->state.textColour, colour) : CLR_INVALID;
}

COLORREF GetBkColor(HDC dc) {
    const DeviceContext* const context = LiveContext(dc);
    return context ? context->state.backColour : CLR_INVALID;
}

COLORREF GetPixel(HDC dc, int x, int y) {
    const DeviceContext* const context = LiveContext(dc);
    const QImage* const image = context ? SelectedImage(*context) : nullptr;
    if (!image || !QRect(QPoint(0, 0), PictureSize(*image)).contains(x, y))
        return CLR_INVALID;
    const QRgb pixel = image->pixel(QPoint(x, y) * image->devicePixelRatio());
    return RGB(static_cast<BYTE>(qRed(pixel)), static_cast<BYTE>(qGreen(pixel)),
               static_cast<BYTE>(qBlue(pixel)));
}

int FillRect(HDC dc, const RECT* rect, HBRUSH brush) {
    DeviceContext* const context = LiveContext(dc);
    const COLORREF colour = BrushColour(brush);
    if (!context || !rect || colour == CLR_INVALID)
        return 0;
    if (DrawingSurface surface(*context); surface)
        surface->fillRect(RectOf(*rect), surface.Colour(colour));
    return 1;
}

BOOL MoveToEx(HDC dc, int x, int y, POINT* previous) {
    DeviceContext* const context = LiveContext(dc);
    if (!context)
        return FALSE;
    const QPoint before = std::exchange(context->state.position, QPoint(x, y));
    if (previous)
        *previous = {before.x(), before.y()};
    return TRUE;
}

BOOL LineTo(HDC dc, int x, int y) {
    DeviceContext* const context = LiveContext(dc);
    if (!context)
        return FALSE;
    const QPoint from = std::exchange(context->state.position, QPoint(x, y));
    if (DrawingSurface surface(*context); surface) {
        surface->setPen(surface.Colour(RGB(0, 0, 0)));
        surface->drawLine(from, context->state.position);
    }
    return TRUE;
}

BOOL BitBlt(HDC to, int x, int y, int width, int height, HDC from, int fromX, int fromY, DWORD operation) {
    DeviceContext* const target = LiveContext(to);
    const DeviceContext* const source = LiveContext(from);
    const QImage* const image = source ? SelectedImage(*source) : nullptr;
    if (!target || !image || operation != SRCCOPY)
        return FALSE;
    const qreal ratio = image->devicePixelRatio();
    const QRectF part(fromX * ratio, fromY * ratio, width * ratio, height * ratio);
    const QImage copy = image->copy(part.toRect()); // the target may be the same bitmap
    if (DrawingSurface surface(*target); surface)
        DrawPicture(*surface.operator->(), QPoint(x, y), copy);
    return TRUE;
}

BOOL GetTextExtentPoint32W(HDC dc, const WCHAR* text, int length, SIZE* size) {
    const DeviceContext* const context = LiveContext(dc);
    if (!context || !size || length < 0)
        return FALSE;
    const QFontMetrics metrics(FontOf(context->state.font));
    *size = {metrics.horizontalAdvance(TextOf(text, length)), metrics.height()};
    return TRUE;
}

int DrawTextW(HDC dc, const WCHAR* text, int length, RECT* rect, UINT format) {
    DeviceContext* const context = LiveContext(dc);
    if (!context || !rect || !text)
        return 0;
    const QString shown = TextOf(text, length);
    const QFont font = FontOf(context->state.font);
    const int flags = AlignmentOf(format);
    if (DrawingSurface surface(*context); surface) {
        const QRect bounds = RectOf(*rect);
        surface->save();
        surface->setClipRect(bounds, Qt::IntersectClip);
        surface->setFont(font);
        if (context->state.backMode == OPAQUE)
            surface->fillRect(surface->boundingRect(bounds, flags, shown) & bounds,
                              surface.Colour(context->state.backColour));
        const QColor paper = QApplication::palette().color(QPalette::Window);
        surface->setPen(look::Readable(surface.Colour(context->state.textColour), paper));
        // Cut visibly, where the handheld stopped in the middle of a letter.
        const bool cut =
            format & DT_SINGLELINE && QFontMetrics(font).horizontalAdvance(shown) > bounds.width();
        surface->drawText(bounds, flags,
                          cut ? QFontMetrics(font).elidedText(shown, Qt::ElideRight, bounds.width()) : shown);
        surface->restore();
    }
    return QFontMetrics(font).boundingRect(RectOf(*rect), flags, shown).height();
}
