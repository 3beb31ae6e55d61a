// Pictures on displays of several scales, for each of which ctest runs this once. They are compared by size.
#include <QGuiApplication>
#include <QImage>
#include <QScreen>
#include <gtest/gtest.h>

#include "platform/ui/core/windowsystem.h"
#include "platform/ui/drawing/devicecontext.h"
#include "resources/resource.h"

namespace {

constexpr int kSide = 16; // of a small picture, in the window system's units

// The device pixels that a picture covers, on a canvas of the display's scale.
QRect InkOf(const QImage& picture, qreal ratio) {
    QImage canvas(QSize(100, 100) * ratio, QImage::Format_RGB32);
    canvas.setDevicePixelRatio(ratio);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    ui::DrawPicture(painter, QPoint(0, 0), picture);
    QRect ink;
    for (int y = 0; y < canvas.height(); ++y)
        for (int x = 0; x < canvas.width(); ++x)
            if (canvas.pixel(x, y) != QColor(Qt::white).rgb())
                ink |= QRect(x, y, 1, 1);
    return ink;
}

} // namespace

TEST(Pictures, HaveTheDensityAndTheSizeOfTheDisplay) {
    ui::EnsureWindowSystem();
    const qreal ratio = QGuiApplication::primaryScreen()->devicePixelRatio();
    const bool fine = ratio > 1;
    const HDC display = CreateDCW(u"DISPLAY", nullptr, nullptr, nullptr);
    EXPECT_EQ(GetDeviceCaps(display, LOGPIXELSX), fine ? 192 : 96);
    DeleteDC(display);

    const int pixels = fine ? 2 * kSide : kSide;
    const HIMAGELIST list =
        ImageList_LoadImageW(nullptr, MAKEINTRESOURCEW(fine ? IDB_LIST_ICONS_32 : IDB_LIST_ICONS_16), pixels,
                             0, RGB(0xC0, 0xC0, 0xC0), IMAGE_BITMAP, 0);
    int width = 0;
    int height = 0;
    ASSERT_TRUE(ImageList_GetIconSize(list, &width, &height));
    EXPECT_EQ(QSize(width, height), QSize(kSide, kSide));
    const QImage picture = ui::ImageListImage(list, 0);
    EXPECT_EQ(picture.size(), QSize(pixels, pixels));
    const QRect ink = InkOf(picture, ratio);
    EXPECT_LE(ink.height(), kSide * ratio + 1);
    EXPECT_GE(ink.height(), 0.9 * kSide * ratio - 1);

    const HBITMAP button =
        LoadBitmapW(nullptr, MAKEINTRESOURCEW(fine ? IDB_FRAME_HELP_HIGH : IDB_FRAME_HELP));
    BITMAP size{};
    GetObjectW(button, sizeof size, &size);
    EXPECT_EQ(QSize(size.bmWidth, size.bmHeight), QSize(kSide, kSide));
    const HDC memory = CreateCompatibleDC(nullptr);
    SelectObject(memory, button);
    EXPECT_NE(GetPixel(memory, kSide - 1, kSide - 1), CLR_INVALID);
    EXPECT_EQ(GetPixel(memory, kSide, 0), CLR_INVALID);
    DeleteDC(memory);
    DeleteObject(button);
    DeleteObject(list);
}
