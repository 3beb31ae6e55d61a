// Drawing objects, and drawing with them on a lent painter or a selected bitmap.
#include <QApplication>
#include <QImage>
#include <QPalette>
#include <gtest/gtest.h>

#include "platform/ui/core/windowobject.h"
#include "platform/ui/core/windowsystem.h"
#include "platform/ui/drawing/devicecontext.h"
#include "resources/resource.h"

namespace {

constexpr COLORREF kRed = RGB(255, 0, 0);

struct Canvas {
    explicit Canvas(int width = 100, int height = 40) : image(width, height, QImage::Format_RGB32) {
        ui::EnsureWindowSystem();
        image.fill(Qt::white);
        painter.begin(&image);
        context.emplace(painter);
    }
    HDC Handle() const { return context->Handle(); }
    // Where anything but white is; empty when nothing was drawn.
    QRect Ink() const {
        QRect ink;
        for (int y = 0; y < image.height(); y++)
            for (int x = 0; x < image.width(); x++)
                if (image.pixelColor(x, y) != QColor(Qt::white))
                    ink |= QRect(x, y, 1, 1);
        return ink;
    }
    QImage image;
    QPainter painter;
    std::optional<ui::PainterContext> context;
};

} // namespace

TEST(Gdi, FontsAreDescriptionsUntilTheyAreUsed) {
    LOGFONTW description{};
    ASSERT_EQ(GetObjectW(GetStockObject(SYSTEM_FONT), sizeof description, &description),
              static_cast<int>(sizeof description));
    EXPECT_EQ(description.lfWeight, FW_NORMAL);
    description.lfWeight = FW_BOLD;
    description.lfHeight = -20;
    const HFONT font = CreateFontIndirectW(&description);
    ui::EnsureWindowSystem();
    EXPECT_TRUE(ui::FontOf(font).bold());
    EXPECT_EQ(ui::FontOf(font).pixelSize(), 20);
    EXPECT_TRUE(DeleteObject(font));
    EXPECT_FALSE(DeleteObject(font));
    EXPECT_FALSE(ui::FontOf(font).bold());
    EXPECT_TRUE(DeleteObject(GetStockObject(SYSTEM_FONT)));
    EXPECT_NE(GetObjectW(GetStockObject(SYSTEM_FONT), sizeof description, &description), 0);
}

TEST(Gdi, ImageListsAreDrawnUntilTheirDeletion) {
    const HIMAGELIST list = ImageList_LoadImageW(nullptr, MAKEINTRESOURCEW(IDB_LIST_ICONS_32), 32, 0,
                                                 RGB(0xC0, 0xC0, 0xC0), IMAGE_BITMAP, 0);
    EXPECT_FALSE(ui::ImageListImage(list, 4).isNull());
    EXPECT_TRUE(ui::ImageListImage(list, 5).isNull());
    EXPECT_TRUE(ui::ImageListImage(list, -1).isNull());
    EXPECT_EQ(qAlpha(ui::ImageListImage(list, 0).pixel(0, 0)), 0);

    Canvas canvas;
    EXPECT_TRUE(ImageList_Draw(list, 0, canvas.Handle(), 10, 4, ILD_NORMAL));
    EXPECT_FALSE(canvas.Ink().isEmpty());
    EXPECT_TRUE(QRect(10, 4, 32, 32).contains(canvas.Ink()));
    EXPECT_TRUE(DeleteObject(list));
    EXPECT_FALSE(ImageList_Draw(list, 0, canvas.Handle(), 0, 0, ILD_NORMAL));
}

TEST(Gdi, BitmapsAreReadAndCopiedThroughMemoryContexts) {
    Canvas canvas;
    const HBITMAP bitmap = LoadBitmapW(nullptr, MAKEINTRESOURCEW(IDB_FRAME_HELP));
    BITMAP size{};
    ASSERT_EQ(GetObjectW(bitmap, sizeof size, &size), static_cast<int>(sizeof size));
    const HDC memory = CreateCompatibleDC(canvas.Handle());
    EXPECT_EQ(GetPixel(memory, 0, 0), CLR_INVALID); // nothing is selected yet
    EXPECT_FALSE(BitBlt(canvas.Handle(), 0, 0, 1, 1, memory, 0, 0, SRCCOPY));
    EXPECT_EQ(SelectObject(memory, bitmap), nullptr);
    EXPECT_NE(GetPixel(memory, 0, 0), CLR_INVALID);
    EXPECT_EQ(GetPixel(memory, size.bmWidth, 0), CLR_INVALID);
    EXPECT_EQ(GetPixel(memory, 0, -1), CLR_INVALID);

    EXPECT_TRUE(BitBlt(canvas.Handle(), 30, 10, size.bmWidth, size.bmHeight, memory, 0, 0, SRCCOPY));
    const QRgb copied = canvas.image.pixel(30, 10);
    EXPECT_EQ(RGB(static_cast<BYTE>(qRed(copied)), static_cast<BYTE>(qGreen(copied)),
                  static_cast<BYTE>(qBlue(copied))),
              GetPixel(memory, 0, 0));
    EXPECT_TRUE(QRect(30, 10, size.bmWidth, size.bmHeight).contains(canvas.Ink()));

    DeleteObject(bitmap); // while it is selected
    EXPECT_EQ(GetPixel(memory, 0, 0), CLR_INVALID);
    EXPECT_TRUE(DeleteDC(memory));
    EXPECT_EQ(GetPixel(memory, 0, 0), CLR_INVALID);
}

TEST(Gdi, TextIsPlacedMeasuredAndKeptWithinItsRectangle) {
    SIZE size{};
    {
        Canvas canvas;
        ASSERT_TRUE(GetTextExtentPoint32W(canvas.Handle(), u"Name", 4, &size));
        SIZE part{};
        ASSERT_TRUE(GetTextExtentPoint32W(canvas.Handle(), u"Name", 2, &part));
        EXPECT_GT(size.cx, part.cx);
        EXPECT_GT(part.cx, 0);
    }
    const auto inkOf = [](UINT format, const WCHAR* text) {
        Canvas canvas;
        SetBkMode(canvas.Handle(), TRANSPARENT);
        RECT rect = {10, 5, 90, 35};
        DrawTextW(canvas.Handle(), text, -1, &rect, format | DT_SINGLELINE | DT_VCENTER);
        return canvas.Ink();
    };
    EXPECT_LT(inkOf(DT_LEFT, u"Name").left(), 14);
    EXPECT_GT(inkOf(DT_RIGHT, u"Name").right(), 85);
    EXPECT_NEAR(inkOf(DT_CENTER, u"Name").center().x(), 50, 2);
    EXPECT_NEAR(inkOf(DT_LEFT, u"Name").center().y(), 20, 3);
    EXPECT_TRUE(QRect(10, 5, 80, 30).contains(inkOf(DT_LEFT, u"A text that is wider than its rectangle")));
    EXPECT_GT(inkOf(DT_LEFT | DT_NOPREFIX, u"&&i").width(), inkOf(DT_LEFT, u"&&i").width());
}

TEST(Gdi, FillsAndLinesEndBeforeTheirFarEdge) {
    Canvas canvas;
    const HBRUSH brush = CreateSolidBrush(kRed);
    const RECT rect = {10, 5, 20, 9};
    FillRect(canvas.Handle(), &rect, brush);
    EXPECT_EQ(canvas.Ink(), QRect(10, 5, 10, 4));
    EXPECT_EQ(canvas.image.pixelColor(10, 5), QColor(Qt::red));
    DeleteObject(brush);
    EXPECT_EQ(FillRect(canvas.Handle(), &rect, brush), 0);

    Canvas lines;
    MoveToEx(lines.Handle(), 0, 20, nullptr);
    LineTo(lines.Handle(), 100, 20);
    EXPECT_EQ(lines.Ink(), QRect(0, 20, 100, 1));
}

TEST(Gdi, BlackAndWhiteAreTheDesktopsOnTheDisplayOnly) {
    const QPalette before = QApplication::palette();
    QApplication::setPalette(QPalette(QColor(60, 60, 64), QColor(35, 35, 38))); // dark
    const RECT rect = {0, 0, 5, 5};
    const HBRUSH white = GetStockObject(WHITE_BRUSH);
    Canvas canvas;
    FillRect(canvas.Handle(), &rect, white);
    EXPECT_LT(canvas.image.pixelColor(2, 2).lightness(), 100);
    LineTo(canvas.Handle(), 5, 0);
    EXPECT_GT(canvas.image.pixelColor(2, 0).lightness(), 155);
    const HBITMAP bitmap = LoadBitmapW(nullptr, MAKEINTRESOURCEW(IDB_FRAME_HELP));
    const HDC memory = CreateCompatibleDC(nullptr);
    SelectObject(memory, bitmap);
    FillRect(memory, &rect, white);
    EXPECT_EQ(GetPixel(memory, 2, 2), RGB(255, 255, 255));
    DeleteDC(memory);
    DeleteObject(bitmap);
    QApplication::setPalette(before);
}

TEST(Gdi, ASavedContextComesBack) {
    Canvas canvas;
    const HDC dc = canvas.Handle();
    const int saved = SaveDC(dc);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, kRed);
    SaveDC(dc);
    EXPECT_TRUE(RestoreDC(dc, saved)); // and forgets what was saved after it
    EXPECT_EQ(SetBkMode(dc, OPAQUE), OPAQUE);
    EXPECT_EQ(SetTextColor(dc, 0), RGB(0, 0, 0));
    EXPECT_FALSE(RestoreDC(dc, -1));

    const HDC screen = CreateDCW(u"DISPLAY", nullptr, nullptr, nullptr);
    EXPECT_EQ(GetDeviceCaps(screen, LOGPIXELSX), 96);
    const RECT rect = {0, 0, 5, 5};
    EXPECT_EQ(FillRect(screen, &rect, GetStockObject(WHITE_BRUSH)), 1); // measures only
    EXPECT_TRUE(DeleteDC(screen));
    EXPECT_EQ(SaveDC(screen), 0);
}
