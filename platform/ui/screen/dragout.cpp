// Files that are dragged from the display to other programs.
#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QUrl>

#include "platform/base/paths.h"
#include "platform/shell.h"
#include "platform/ui/core/messagequeue.h"
#include "platform/ui/core/testhooks.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

const QString kFileList = QStringLiteral("text/uri-list");

// The other program copies the file when it likes: what was dragged stays until the process ends.
std::vector<std::unique_ptr<QTemporaryDir>>& Folders() {
    static std::vector<std::unique_ptr<QTemporaryDir>> folders;
    return folders;
}

QString NewFolder() {
    const auto& folder = Folders().emplace_back(std::make_unique<QTemporaryDir>());
    return folder->isValid() ? folder->path() : QString();
}

// One name in well-formed text on the host and the device alike, of a file that file managers show.
QString VisibleName(const WCHAR* wanted) {
    static const QRegularExpression unfit(QStringLiteral("^\\.|[/\\\\]"));
    return QString::fromUtf8(HostText(wanted).toUtf8()).replace(unfit, QStringLiteral("_"));
}

// A file that is made when it is first asked for.
class PromisedFile : public QMimeData {
public:
    PromisedFile(QString name, BOOL (*make)(const WCHAR*)) : name(std::move(name)), make(make) {}
    QStringList formats() const override { return {kFileList}; }
    bool hasFormat(const QString& type) const override { return type == kFileList; }

protected:
    QVariant retrieveData(const QString& type, QMetaType) const override {
        if (type != kFileList)
            return {};
        if (!asked) {
            asked = true;
            Make();
        }
        return file.isEmpty() ? QVariant() : QVariant(QUrl::fromLocalFile(file).toEncoded() + "\r\n");
    }

private:
    void Make() const {
        const QString folder = NewFolder();
        const QString path = folder + u'/' + name;
        if (!folder.isEmpty() && make(DevicePath(path.toStdString()).c_str()))
            file = path;
    }

    const QString name;
    BOOL (*const make)(const WCHAR* path);
    mutable bool asked = false;
    mutable QString file; // empty until it is made
};

bool MovedFar(const POINT& from) {
    const MSG* moved = FindQueued(WM_MOUSEMOVE, WM_MOUSEMOVE);
    const int far = QApplication::startDragDistance();
    return moved && (std::abs(SignedLoWord(moved->lParam) - from.x) > far ||
                     std::abs(SignedHiWord(moved->lParam) - from.y) > far);
}

// They would select what the pointer passed on its way out.
void DropQueuedMoves() {
    MSG message;
    while (PeekMessageW(&message, nullptr, WM_MOUSEMOVE, WM_MOUSEMOVE, PM_REMOVE))
        if (message.message == WM_QUIT)
            return PostQuitMessage(static_cast<int>(message.wParam));
}

} // namespace

void RemoveDraggedFiles() {
    Folders().clear();
}

} // namespace ui

using namespace ui;

BOOL DragDetect(HWND window, POINT point) {
    const MSG* current = CurrentMessage();
    if (!current || current->message != WM_LBUTTONDOWN || !current->input)
        return FALSE; // no button behind it that could be held
    while (LiveWindow(window) && !FindQueued(WM_LBUTTONUP, WM_LBUTTONUP) && !FindQueued(WM_QUIT, WM_QUIT)) {
        if (MovedFar(point))
            return TRUE;
        PumpHost(true);
    }
    return FALSE;
}

// The host's own loop runs here until the button is released: messages of the program wait meanwhile.
void DragFile(HWND window, const WCHAR* fileName, BOOL (*make)(const WCHAR* path)) {
    const WindowObject* object = LiveWindow(window);
    if (!object || !object->widget)
        return;
    auto* file = new PromisedFile(VisibleName(fileName), make);
    auto* drag = new QDrag(object->widget); // deletes itself behind exec()
    drag->setMimeData(file);
    if (const auto& test = TestHooks().drag) {
        test(*file);
        drag->deleteLater();
    } else {
        drag->exec(Qt::CopyAction);
    }
    DropQueuedMoves();
}
