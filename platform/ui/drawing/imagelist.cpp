// Bitmaps and image lists from the program's resources.
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QtEndian>
#include <limits>

#include "platform/resources.h"
#include "platform/ui/core/windowsystem.h"
#include "platform/ui/drawing/devicecontext.h"
#include "platform/ui/drawing/gdiobjects.h"

namespace ui {

namespace {

// A bitmap resource is a bitmap file without the file's own 14-byte header.
constexpr qsizetype kFileHeaderSize = 14;
constexpr qsizetype kInfoHeaderSize = 40;
constexpr quint32 kMostColours = 256;

// Dots to the inch: what the two sets of pictures are drawn for, and up to where the coarse set is used.
constexpr int kCoarse = 96;
constexpr int kFine = 192;
constexpr qreal kCoarseUpTo = 110;

// Where the pixels begin: after the info header and its colour table.
quint32 PixelOffset(const uchar* info) {
    const quint32 headerSize = qFromLittleEndian<quint32>(info);
    const quint16 bits = qFromLittleEndian<quint16>(info + 14);
    quint32 colours = qFromLittleEndian<quint32>(info + 32);
    if (colours == 0 && bits <= 8)
        colours = 1u << bits;
    return kFileHeaderSize + headerSize + std::min(colours, kMostColours) * 4;
}

// Of the most dense display, since a window may be moved there.
qreal DotsPerInch() {
    qreal most = kCoarse;
    for (const QScreen* screen : QGuiApplication::screens())
        most = std::max(most, screen->logicalDotsPerInchX() * screen->devicePixelRatio());
    return most;
}

// A picture's pixels to one of the window system's units.
qreal PicturePixelRatio() {
    if (PictureDensity() == kCoarse)
        return std::max(1.0, QGuiApplication::primaryScreen()->devicePixelRatio());
    return kFine / QGuiApplication::primaryScreen()->logicalDotsPerInchX();
}

// Both sides at least one pixel, and no more pixels than the bytes can hold at one bit each.
bool PlausibleSize(const uchar* info, qsizetype size) {
    const qint64 width = qFromLittleEndian<qint32>(info + 4);
    const qint64 height = std::abs(qint64{qFromLittleEndian<qint32>(info + 8)});
    return width > 0 && height > 0 && width <= size * 8 && height <= size * 8 && width * height <= size * 8;
}

} // namespace

int PictureDensity() {
    static const int density = (EnsureWindowSystem(), DotsPerInch() > kCoarseUpTo) ? kFine : kCoarse;
    return density;
}

QSize PictureSize(const QImage& picture) {
    return picture.deviceIndependentSize().toSize();
}

void DrawPicture(QPainter& painter, const QPoint& place, const QImage& picture) {
    const bool smooth = painter.testRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, picture);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
}

QImage LoadBitmapImage(const WCHAR* bitmap) {
    const HRSRC resource = FindResourceW(nullptr, bitmap, RT_BITMAP);
    const auto size = static_cast<qsizetype>(SizeofResource(nullptr, resource));
    if (size < kInfoHeaderSize)
        return {};
    const auto* const info = static_cast<const uchar*>(LoadResource(nullptr, resource));
    if (!PlausibleSize(info, size))
        return {};
    QByteArray file(kFileHeaderSize, '\0');
    file[0] = 'B';
    file[1] = 'M';
    qToLittleEndian<quint32>(static_cast<quint32>(kFileHeaderSize + size), file.data() + 2);
    qToLittleEndian<quint32>(PixelOffset(info), file.data() + 10);
    file.append(reinterpret_cast<const char*>(info), size);
    QImage image = QImage::fromData(file, "BMP").convertToFormat(QImage::Format_ARGB32);
    image.setDevicePixelRatio(PicturePixelRatio());
    return image;
}

std::vector<QImage> LoadImageStrip(const WCHAR* bitmap, int width, COLORREF mask) {
    QImage strip = LoadBitmapImage(bitmap);
    if (strip.isNull() || width <= 0)
        return {};
    const QRgb transparent = ColourOf(mask).rgb();
    for (int y = 0; y < strip.height(); y++) {
        auto* const line = reinterpret_cast<QRgb*>(strip.scanLine(y));
        std::replace(line, line + strip.width(), transparent, QRgb{0});
    }
    std::vector<QImage> images;
    for (int x = 0; x + width <= strip.width(); x += width)
        images.push_back(strip.copy(x, 0, width, strip.height()));
    return images;
}

QImage ImageListImage(HIMAGELIST list, int index) {
    const auto* const object = LiveGdiObjectAs<ImageListObject>(list);
    if (!object || index < 0 || static_cast<std::size_t>(index) >= object->images.size())
        return {};
    return object->images[static_cast<std::size_t>(index)];
}

QSize ImageListSize(HIMAGELIST list) {
    const auto* const object = LiveGdiObjectAs<ImageListObject>(list);
    return object ? object->size : QSize();
}

} // namespace ui

using namespace ui;

HBITMAP LoadBitmapW(HINSTANCE, const WCHAR* name) {
    QImage image = LoadBitmapImage(name);
    if (image.isNull())
        return nullptr;
    auto* const object = new BitmapObject;
    object->image = std::move(image);
    return AddGdiObject(object);
}

HIMAGELIST ImageList_LoadImageW(HINSTANCE, const WCHAR* bitmap, int width, int, COLORREF mask, UINT type,
                                UINT) {
    if (type != IMAGE_BITMAP)
        return nullptr;
    std::vector<QImage> images = LoadImageStrip(bitmap, width, mask);
    if (images.empty())
        return nullptr;
    auto* const list = new ImageListObject;
    list->size = PictureSize(images.front());
    list->images = std::move(images);
    return AddGdiObject(list);
}

BOOL ImageList_GetIconSize(HIMAGELIST list, int* width, int* height) {
    const QSize size = ImageListSize(list);
    if (!size.isValid() || !width || !height)
        return FALSE;
    *width = size.width();
    *height = size.height();
    return TRUE;
}

BOOL ImageList_Draw(HIMAGELIST list, int index, HDC dc, int x, int y, UINT) {
    const QImage image = ImageListImage(list, index);
    DeviceContext* const context = LiveContext(dc);
    if (image.isNull() || !context)
        return FALSE;
    if (DrawingSurface surface(*context); surface)
        DrawPicture(*surface.operator->(), QPoint(x, y), image);
    return TRUE;
}
