#include "platform/clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QStringList>
#include <QUrl>
#include <cstring>
#include <map>

#include "platform/errors.h"
#include "platform/heap.h"
#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/core/windowsystem.h"

namespace ui {

namespace {

constexpr UINT kFirstRegistered = 0xC000;
constexpr qsizetype kMostRegistered = 0x4000;
constexpr qsizetype kLargestBlock = 16 * 1024 * 1024; // bytes taken from another program

using Blocks = std::map<UINT, void*>; // by format

// The host's clipboard holds the data; this is what the window that has it open knows meanwhile.
struct Session {
    HWND window = nullptr; // null: not open
    bool emptied = false;
    Blocks offered; // set by the program
    Blocks fetched; // copies of what the host's clipboard holds
};

Session& TheSession() {
    static Session session;
    return session;
}

QStringList& FormatNames() {
    static auto* const names = new QStringList;
    return *names;
}

// What other programs know a registered format by.
QString MimeTypeOf(UINT format) {
    const QString name = FormatNames().value(static_cast<qsizetype>(format) - kFirstRegistered);
    return QStringLiteral("application/x-pocket-strandview.") +
           QString::fromLatin1(QUrl::toPercentEncoding(name));
}

bool IsRegistered(UINT format) {
    return format >= kFirstRegistered && format - kFirstRegistered < FormatNames().size();
}

void Release(Blocks& blocks) {
    for (const auto& [format, block] : blocks)
        LocalFree(block);
    blocks.clear();
}

void EndSession() {
    Session& session = TheSession();
    Release(session.offered);
    Release(session.fetched);
    session.emptied = false;
    session.window = nullptr;
}

bool IsOpen() {
    return LiveWindow(TheSession().window) != nullptr;
}

bool IsLiveBlock(const void* block) {
    SetLastError(ERROR_SUCCESS);
    return block && (LocalSize(block) != 0 || GetLastError() == ERROR_SUCCESS);
}

QByteArray BytesOf(const void* block) {
    return QByteArray(static_cast<const char*>(block), static_cast<qsizetype>(LocalSize(block)));
}

// Up to the terminator, or to the block's end when there is none.
QString TextIn(const void* block) {
    const auto* text = static_cast<const QChar*>(block);
    const auto room = static_cast<qsizetype>(LocalSize(block) / sizeof(WCHAR));
    return QString(text, std::find(text, text + room, QChar(0)) - text);
}

void HandToHost(const Blocks& blocks) {
    auto* data = new QMimeData;
    for (const auto& [format, block] : blocks)
        if (format == CF_UNICODETEXT)
            data->setText(TextIn(block));
        else
            data->setData(MimeTypeOf(format), BytesOf(block));
    QGuiApplication::clipboard()->setMimeData(data);
}

QByteArray BytesOnHost(UINT format) {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    if (!data)
        return QByteArray();
    if (format != CF_UNICODETEXT)
        return data->data(MimeTypeOf(format));
    const QString text = data->text();
    return QByteArray(reinterpret_cast<const char*>(text.utf16()),
                      (text.size() + 1) * static_cast<qsizetype>(sizeof(WCHAR)));
}

void* Fetch(UINT format) {
    const QByteArray bytes = BytesOnHost(format);
    if (bytes.size() > kLargestBlock) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    void* block = LocalAlloc(LMEM_FIXED, static_cast<std::size_t>(bytes.size()));
    if (block)
        std::memcpy(block, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    return block;
}

} // namespace

} // namespace ui

using namespace ui;

UINT RegisterClipboardFormatW(const WCHAR* name) {
    const QString wanted = HostText(name);
    QStringList& names = FormatNames();
    qsizetype index = names.indexOf(wanted);
    if (wanted.isEmpty() || (index < 0 && names.size() == kMostRegistered)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (index < 0) {
        index = names.size();
        names.append(wanted);
    }
    return kFirstRegistered + static_cast<UINT>(index);
}

BOOL OpenClipboard(HWND window) {
    if (!LiveWindow(window) || (IsOpen() && TheSession().window != window)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    // A window that was destroyed with the clipboard open does not keep it.
    if (!IsOpen())
        EndSession();
    TheSession().window = window;
    return TRUE;
}

BOOL CloseClipboard() {
    const bool wasOpen = IsOpen();
    EndSession();
    return wasOpen;
}

BOOL EmptyClipboard() {
    if (!IsOpen())
        return FALSE;
    Session& session = TheSession();
    Release(session.offered);
    Release(session.fetched);
    session.emptied = true;
    QGuiApplication::clipboard()->clear();
    return TRUE;
}

void* SetClipboardData(UINT format, void* block) {
    Session& session = TheSession();
    if (!IsOpen() || !session.emptied) {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    if (!IsLiveBlock(block) || (format != CF_UNICODETEXT && !IsRegistered(format))) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    LocalFree(std::exchange(session.offered[format], block));
    Release(session.fetched);
    HandToHost(session.offered);
    return block;
}

void* GetClipboardData(UINT format) {
    if (!IsOpen() || !IsClipboardFormatAvailable(format))
        return nullptr;
    void*& block = TheSession().fetched[format];
    if (!block)
        block = Fetch(format);
    return block;
}

BOOL IsClipboardFormatAvailable(UINT format) {
    EnsureWindowSystem();
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    if (!data)
        return FALSE;
    return format == CF_UNICODETEXT ? data->hasText()
                                    : IsRegistered(format) && data->hasFormat(MimeTypeOf(format));
}
