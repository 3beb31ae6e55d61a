// What a device context is: a painter lent by the host during WM_PAINT or WM_DRAWITEM, a bitmap selected into
// a memory context, or nothing at all, which measures text only.
#pragma once

#include <QPainter>
#include <QPoint>
#include <QRect>
#include <optional>
#include <vector>

#include "platform/gdi.h"
#include "platform/ui/drawing/gdiobjects.h"

namespace ui {

// What SaveDC keeps.
struct DrawingState {
    HFONT font = nullptr; // null: SYSTEM_FONT
    HBRUSH brush = nullptr;
    HBITMAP bitmap = nullptr; // memory contexts only
    COLORREF textColour = RGB(0, 0, 0);
    COLORREF backColour = RGB(255, 255, 255);
    int backMode = OPAQUE;
    QPoint position;
};

} // namespace ui

struct DeviceContext {
    QPainter* painter = nullptr; // lent
    bool memory = false;
    ui::DrawingState state;
    std::vector<ui::DrawingState> saved;
};

namespace ui {

// The live context, or null.
DeviceContext* LiveContext(HDC dc);

// The painter to draw with for one operation: the lent one, or one on the selected bitmap. False when the
// context only measures; drawing then does nothing.
class DrawingSurface {
public:
    explicit DrawingSurface(DeviceContext& context);
    explicit operator bool() const { return painter != nullptr; }
    // A bitmap keeps the very colours that are drawn on it.
    QColor Colour(COLORREF colour) const { return own ? ColourOf(colour) : DisplayColour(colour); }
    QPainter* operator->() const { return painter; }

private:
    std::optional<QPainter> own;
    QPainter* painter = nullptr;
};

// A context over a painter, for as long as this object lives: what a control puts into DRAWITEMSTRUCT.hDC.
// The painter's state is put back at the end.
class PainterContext {
public:
    explicit PainterContext(QPainter& lent, HFONT font = nullptr, COLORREF backColour = RGB(255, 255, 255));
    ~PainterContext();
    PainterContext(const PainterContext&) = delete;
    PainterContext& operator=(const PainterContext&) = delete;
    HDC Handle() const { return handle; }

private:
    QPainter& painter;
    HDC handle;
};

// BeginPaint on the window draws through this painter, in the window's client coordinates: set around the
// WM_PAINT that a paint event sends, null afterwards. `dirty` becomes rcPaint. Without a target BeginPaint
// gives a context that only measures.
void SetPaintTarget(HWND window, QPainter* painter, const QRect& dirty = QRect());

} // namespace ui
