#include "platform/ui/drawing/cursors.h"

#include <QApplication>
#include <QImage>
#include <QtEndian>
#include <memory>
#include <vector>

#include "platform/resources.h"
#include "platform/ui/core/windowobject.h"
#include "platform/ui/core/windowsystem.h"

struct CursorObject {
    Qt::CursorShape shape;
};

struct IconObject {
    std::vector<QImage> pictures; // of all sizes
};

namespace ui {

namespace {

CursorObject waitCursor{Qt::WaitCursor};
HCURSOR currentCursor = nullptr;

// Resource types that only icons use: one picture, and the group that lists an icon's pictures.
const WCHAR* const kIconPicture = MAKEINTRESOURCEW(3);
const WCHAR* const kIconGroup = MAKEINTRESOURCEW(14);

constexpr int kGroupHeader = 6;
constexpr int kGroupEntry = 14;

struct PictureEntry {
    const uchar* bytes; // as in the group: width, height, colours, 0, planes, bits, size, id
    WORD Id() const { return qFromLittleEndian<quint16>(bytes + 12); }
};

// A file of the one picture, which is what the host's decoder reads.
QImage DecodePicture(const PictureEntry& entry, HRSRC picture) {
    const DWORD size = SizeofResource(nullptr, picture);
    QByteArray file;
    file.append("\0\0\1\0\1\0", kGroupHeader);
    file.append(reinterpret_cast<const char*>(entry.bytes), 8);
    uchar sizeAndOffset[8];
    qToLittleEndian<quint32>(size, sizeAndOffset);
    qToLittleEndian<quint32>(kGroupHeader + 16, sizeAndOffset + 4);
    file.append(reinterpret_cast<const char*>(sizeAndOffset), sizeof(sizeAndOffset));
    file.append(static_cast<const char*>(LoadResource(nullptr, picture)), static_cast<qsizetype>(size));
    return QImage::fromData(file, "ICO");
}

// The host takes the picture that fits a place, so the icon has all of them, whatever size was asked for.
HICON LoadIconWhole(const WCHAR* name) {
    const HRSRC group = FindResourceW(nullptr, name, kIconGroup);
    const DWORD size = group ? SizeofResource(nullptr, group) : 0;
    if (size < kGroupHeader + kGroupEntry)
        return nullptr;
    const auto* bytes = static_cast<const uchar*>(LoadResource(nullptr, group));
    const int count = std::min<int>(qFromLittleEndian<quint16>(bytes + 4),
                                    static_cast<int>(size - kGroupHeader) / kGroupEntry);
    auto icon = std::make_unique<IconObject>();
    for (int i = 0; i < count; ++i) {
        const PictureEntry entry{bytes + kGroupHeader + i * kGroupEntry};
        if (const HRSRC picture = FindResourceW(nullptr, MAKEINTRESOURCEW(entry.Id()), kIconPicture))
            icon->pictures.push_back(DecodePicture(entry, picture));
    }
    if (icon->pictures.empty())
        return nullptr;
    // Icons are a handful, and live as long as the program.
    static auto* icons = new std::vector<std::unique_ptr<IconObject>>;
    icons->push_back(std::move(icon));
    return icons->back().get();
}

} // namespace

void ShowCursorOnHost() {
    while (QApplication::overrideCursor())
        QApplication::restoreOverrideCursor();
    if (currentCursor)
        QApplication::setOverrideCursor(currentCursor->shape);
}

QIcon HostIcon(HICON icon) {
    QIcon shown;
    if (icon)
        for (const QImage& picture : icon->pictures)
            shown.addPixmap(QPixmap::fromImage(picture));
    return shown;
}

} // namespace ui

using namespace ui;

HCURSOR LoadCursorW(HINSTANCE instance, const WCHAR* name) {
    return !instance && name == IDC_WAIT ? &waitCursor : nullptr;
}

HCURSOR SetCursor(HCURSOR cursor) {
    const HCURSOR previous = currentCursor;
    currentCursor = cursor;
    if (previous != cursor && WindowSystemStarted())
        ShowCursorOnHost();
    return previous;
}

HICON LoadImageW(HINSTANCE, const WCHAR* name, UINT type, int, int, UINT) {
    return type == IMAGE_ICON ? LoadIconWhole(name) : nullptr;
}
