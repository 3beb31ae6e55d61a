#include "platform/ui/drawing/devicecontext.h"

#include <memory>
#include <unordered_map>

#include "platform/ui/core/windowobject.h"
#include "platform/ui/core/windowsystem.h"

namespace ui {

namespace {

struct PaintTarget {
    QPainter* painter;
    QRect dirty;
};

std::unordered_map<HDC, std::unique_ptr<DeviceContext>>& LiveContexts() {
    static auto* const contexts = new std::unordered_map<HDC, std::unique_ptr<DeviceContext>>;
    return *contexts;
}

std::unordered_map<HWND, PaintTarget>& PaintTargets() {
    static auto* const targets = new std::unordered_map<HWND, PaintTarget>;
    return *targets;
}

DeviceContext* NewContext(QPainter* painter, bool memory = false) {
    auto context = std::make_unique<DeviceContext>();
    context->painter = painter;
    context->memory = memory;
    DeviceContext* const handle = context.get();
    LiveContexts().emplace(handle, std::move(context));
    return handle;
}

RECT RectOf(const QRect& rect) {
    return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}

} // namespace

DeviceContext* LiveContext(HDC dc) {
    const auto found = LiveContexts().find(dc);
    return found == LiveContexts().end() ? nullptr : found->second.get();
}

DrawingSurface::DrawingSurface(DeviceContext& context) : painter(context.painter) {
    if (painter)
        return;
    if (auto* const bitmap = LiveGdiObjectAs<BitmapObject>(context.state.bitmap)) {
        own.emplace(&bitmap->image);
        painter = &*own;
    }
}

PainterContext::PainterContext(QPainter& lent, HFONT font, COLORREF backColour)
    : painter(lent), handle(NewContext(&lent)) {
    painter.save();
    handle->state.font = font;
    handle->state.backColour = backColour;
}

PainterContext::~PainterContext() {
    DeleteDC(handle);
    painter.restore();
}

void SetPaintTarget(HWND window, QPainter* painter, const QRect& dirty) {
    if (painter)
        PaintTargets()[window] = {painter, dirty};
    else
        PaintTargets().erase(window);
}

} // namespace ui

using namespace ui;

HDC BeginPaint(HWND window, PAINTSTRUCT* paint) {
    const WindowObject* const object = LiveWindow(window);
    if (!object || !paint)
        return nullptr;
    const auto target = PaintTargets().find(window);
    QPainter* const painter = target == PaintTargets().end() ? nullptr : target->second.painter;
    if (painter)
        painter->save();
    *paint = {NewContext(painter), FALSE, {}};
    if (painter && target->second.dirty.isValid())
        paint->rcPaint = RectOf(target->second.dirty);
    else
        GetClientRect(window, &paint->rcPaint);
    return paint->hdc;
}

BOOL EndPaint(HWND, const PAINTSTRUCT* paint) {
    DeviceContext* const context = paint ? LiveContext(paint->hdc) : nullptr;
    if (!context)
        return FALSE;
    if (context->painter)
        context->painter->restore();
    return DeleteDC(context);
}

HDC CreateDCW(const WCHAR*, const WCHAR*, const WCHAR*, const void*) {
    EnsureWindowSystem();
    return NewContext(nullptr);
}

HDC CreateCompatibleDC(HDC) {
    EnsureWindowSystem();
    return NewContext(nullptr, true);
}

BOOL DeleteDC(HDC dc) {
    return LiveContexts().erase(dc) != 0;
}

int GetDeviceCaps(HDC dc, int index) {
    return LiveContext(dc) && index == LOGPIXELSX ? PictureDensity() : 0;
}

int SaveDC(HDC dc) {
    DeviceContext* const context = LiveContext(dc);
    if (!context)
        return 0;
    context->saved.push_back(context->state);
    return static_cast<int>(context->saved.size());
}

BOOL RestoreDC(HDC dc, int saved) {
    DeviceContext* const context = LiveContext(dc);
    if (!context)
        return FALSE;
    const auto depth = static_cast<int>(context->saved.size());
    const int wanted = saved < 0 ? depth + saved + 1 : saved;
    if (wanted < 1 || wanted > depth)
        return FALSE;
    context->state = context->saved[static_cast<std::size_t>(wanted) - 1];
    context->saved.resize(static_cast<std::size_t>(wanted) - 1);
    return TRUE;
}
