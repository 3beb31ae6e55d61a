// Device contexts, fonts, brushes, bitmaps and image lists.
//
// A logical object (font, brush, pen, bitmap, image list) is released by DeleteObject; stock objects need not
// be. Making a font or asking for a stock object touches no display, so a run without windows starts none.
#pragma once

#include "platform/types.h"

constexpr COLORREF RGB(BYTE red, BYTE green, BYTE blue) {
    return static_cast<COLORREF>(red) | static_cast<COLORREF>(green) << 8 | static_cast<COLORREF>(blue) << 16;
}
constexpr COLORREF CLR_INVALID = 0xFFFFFFFF;

constexpr int WHITE_BRUSH = 0;
constexpr int SYSTEM_FONT = 13;
constexpr int FW_NORMAL = 400;
constexpr int FW_BOLD = 700;

struct LOGFONTW {
    LONG lfHeight; // pixels
    LONG lfWidth;
    LONG lfEscapement;
    LONG lfOrientation;
    LONG lfWeight; // 400 normal, 700 bold
    BYTE lfItalic;
    BYTE lfUnderline;
    BYTE lfStrikeOut;
    BYTE lfCharSet;
    BYTE lfOutPrecision;
    BYTE lfClipPrecision;
    BYTE lfQuality;
    BYTE lfPitchAndFamily;
    WCHAR lfFaceName[32]; // empty: the platform's own
};

struct BITMAP {
    LONG bmType;
    LONG bmWidth; // as it is drawn on the display
    LONG bmHeight;
};

struct PAINTSTRUCT {
    HDC hdc;
    BOOL fErase;
    RECT rcPaint;
};

HGDIOBJ GetStockObject(int index);
// Fills a LOGFONTW from a font or a BITMAP from a bitmap; returns the bytes filled, 0 on failure.
int GetObjectW(HGDIOBJ object, int bytes, void* out);
HFONT CreateFontIndirectW(const LOGFONTW* font);
HBRUSH CreateSolidBrush(COLORREF colour);
HBITMAP LoadBitmapW(HINSTANCE instance, const WCHAR* name); // null when absent
BOOL DeleteObject(HGDIOBJ object);                          // null: false

// 96 or 192: the density of the pictures to be loaded, which are made to fit the display. Black
// and white are drawn there as the colours of the desktop's text and paper.
constexpr int LOGPIXELSX = 88;
HDC CreateDCW(const WCHAR* driver, const WCHAR* device, const WCHAR* output, const void* init); // u"DISPLAY"
HDC CreateCompatibleDC(HDC dc);
BOOL DeleteDC(HDC dc);
int GetDeviceCaps(HDC dc, int index);
HDC BeginPaint(HWND window, PAINTSTRUCT* paint); // within WM_PAINT
BOOL EndPaint(HWND window, const PAINTSTRUCT* paint);
int SaveDC(HDC dc);
BOOL RestoreDC(HDC dc, int saved); // -1: the last saved

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object); // returns the object of that kind that was selected
constexpr int TRANSPARENT = 1;
constexpr int OPAQUE = 2;
int SetBkMode(HDC dc, int mode);
COLORREF SetTextColor(HDC dc, COLORREF colour);
COLORREF GetBkColor(HDC dc);
COLORREF GetPixel(HDC dc, int x, int y); // CLR_INVALID outside
int FillRect(HDC dc, const RECT* rect, HBRUSH brush);
BOOL MoveToEx(HDC dc, int x, int y, POINT* previous);
BOOL LineTo(HDC dc, int x, int y);
constexpr DWORD SRCCOPY = 0x00CC0020;
BOOL BitBlt(HDC to, int x, int y, int width, int height, HDC from, int fromX, int fromY, DWORD operation);
BOOL GetTextExtentPoint32W(HDC dc, const WCHAR* text, int length, SIZE* size);
constexpr UINT DT_LEFT = 0x00;
constexpr UINT DT_CENTER = 0x01;
constexpr UINT DT_RIGHT = 0x02;
constexpr UINT DT_VCENTER = 0x04;
constexpr UINT DT_SINGLELINE = 0x20;
constexpr UINT DT_NOPREFIX = 0x800;
int DrawTextW(HDC dc, const WCHAR* text, int length, RECT* rect, UINT format); // length -1: to the terminator

// A strip bitmap cut into images `width` of its pixels wide; `mask` is the colour that is transparent. Null
// when absent.
HIMAGELIST ImageList_LoadImageW(HINSTANCE instance, const WCHAR* bitmap, int width, int grow, COLORREF mask,
                                UINT type, UINT flags);
constexpr UINT IMAGE_BITMAP = 0;
BOOL ImageList_GetIconSize(HIMAGELIST list, int* width, int* height);
constexpr UINT ILD_NORMAL = 0;
BOOL ImageList_Draw(HIMAGELIST list, int index, HDC dc, int x, int y, UINT style);
