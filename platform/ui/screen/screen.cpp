#include "platform/ui/screen/screen.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDeadlineTimer>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QPainter>
#include <QScreen>
#include <QSettings>
#include <QStandardPaths>
#include <QStyle>
#include <QTimer>
#include <QWindow>
#include <utility>

#include "platform/base/paths.h"
#include "platform/device.h"
#include "platform/ui/core/accessible.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/core/windowsystem.h"
#include "platform/ui/drawing/cursors.h"
#include "platform/ui/screen/titlebar.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

// Pixels at 96 to the inch.
constexpr QSize kFirstSize(480, 640);
constexpr QSize kLeastSize(240, 300);
constexpr int kTitleBarHeight = 28;
constexpr int kShadow = 12;

// Milliseconds.
constexpr int kExposePatience = 1000;
constexpr int kExposeStep = 20;

const QString kPlaceKey = QStringLiteral("place");
constexpr int kOrientationChanged = 0x3002; // WM_SETTINGCHANGE, wParam

bool IsLandscape(const QSize& size) {
    return size.height() < size.width();
}

// Belongs to the host and its user, not to the device.
QSettings PlaceMemory() {
    return QSettings(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                         QStringLiteral("/pocket-strandview/display.ini"),
                     QSettings::IniFormat);
}

std::vector<std::u16string> DroppedPaths(const QDropEvent& event) {
    std::vector<std::u16string> paths;
    for (const QUrl& url : event.mimeData()->urls())
        if (url.isLocalFile())
            paths.push_back(DevicePath(url.toLocalFile().toStdString()));
    return paths;
}

class DisplayWindow : public QWidget {
public:
    DisplayWindow() : bar(new TitleBar(this)), area(new QWidget(this)) {
        GiveRole(this, QAccessible::Window);
        setMinimumSize(Scaled(kLeastSize.width()), Scaled(kLeastSize.height()));
        QSize first(Scaled(kFirstSize.width()), Scaled(kFirstSize.height()));
        if (const QScreen* screen = QGuiApplication::primaryScreen())
            first = first.boundedTo(screen->availableSize());
        resize(first);
        restoreGeometry(PlaceMemory().value(kPlaceKey).toByteArray());
        if (!QGuiApplication::screenAt(geometry().center())) // a screen that is gone, or a damaged file
            setGeometry(QRect(QPoint(), first));
        setAcceptDrops(true);
        Arrange();
    }
    TitleBar* const bar;
    QWidget* const area;

protected:
    void resizeEvent(QResizeEvent* event) override {
        Arrange();
        LayOutScreen();
        if (event->oldSize().isValid() && IsLandscape(event->oldSize()) != IsLandscape(size()))
            for (HWND window : std::vector<HWND>(TopLevelWindows()))
                SendMessageW(window, WM_SETTINGCHANGE, kOrientationChanged, 0);
    }
    void closeEvent(QCloseEvent* event) override {
        event->ignore();
        kHigherFloors.endLabelEdit();
        PostMessageW(ActiveTopLevel(), WM_CLOSE, 0, 0);
    }
    void dragEnterEvent(QDragEnterEvent* event) override {
        if (!event->source() && AcceptsFiles(ActiveTopLevel()) && !DroppedPaths(*event).empty())
            event->acceptProposedAction();
    }
    void dropEvent(QDropEvent* event) override {
        DropFiles(ActiveTopLevel(), DroppedPaths(*event));
        event->acceptProposedAction();
    }
    bool event(QEvent* event) override {
        if (event->type() == QEvent::WindowActivate || event->type() == QEvent::WindowDeactivate)
            HostActivated(event->type() == QEvent::WindowActivate);
        return QWidget::event(event);
    }

private:
    void Arrange() {
        const int barHeight = TitleBarHeight();
        bar->setGeometry(0, 0, width(), barHeight);
        area->setGeometry(0, barHeight, width(), std::max(0, height() - barHeight));
    }
};

DisplayWindow* display = nullptr;

class Frame : public QWidget {
public:
    Frame(HWND window, QWidget* parent) : QWidget(parent), window(window) {}

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const WindowObject* object = LiveWindow(window);
        if (!object || object->topLevel->fullScreen) {
            painter.fillRect(rect(), palette().window());
            return;
        }
        painter.fillRect(rect(), QColor(16, 28, 48, 96));
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        const int shadow = Scaled(kShadow);
        for (int spread = shadow; spread > 0; spread -= 2) {
            painter.setBrush(QColor(0, 0, 0, 8));
            painter.drawRoundedRect(object->widget->geometry().adjusted(-spread, -spread / 2, spread, spread),
                                    spread, spread);
        }
    }
    // Taps beside a card go nowhere.
    void mousePressEvent(QMouseEvent* event) override { event->accept(); }

private:
    HWND window;
};

// The host's list of windows tells databases and devices apart by it.
QString HostTitle(const WindowObject& titled, const QString& program) {
    QStringList parts{titled.topLevel->documentTitle, program,
                      QFileInfo(QString::fromStdString(DeviceFolder())).fileName()};
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" \u2013 "));
}

// The host drops what is painted before it has reported the window as exposed. Waits only once: a display
// that is covered or on another desktop may never be exposed.
void AwaitFirstExposure() {
    static bool awaited = false;
    if (std::exchange(awaited, true))
        return;
    QTimer wakeUp; // waiting ends without any event, too
    wakeUp.start(kExposeStep);
    QDeadlineTimer patience(kExposePatience);
    while (!display->windowHandle()->isExposed() && !patience.hasExpired())
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::WaitForMoreEvents);
}

} // namespace

int Scaled(int pixels) {
    const QScreen* screen = WindowSystemStarted() ? QGuiApplication::primaryScreen() : nullptr;
    return screen ? qRound(pixels * screen->logicalDotsPerInchX() / 96.0) : pixels;
}

void CreateScreen() {
    display = new DisplayWindow;
}

QSize ScreenSize() {
    return display ? display->size() : kFirstSize;
}

int TitleBarHeight() {
    EnsureWindowSystem();
    return std::max(Scaled(kTitleBarHeight), QFontMetrics(QApplication::font()).height() * 3 / 2);
}

int ScrollBarWidth() {
    EnsureWindowSystem();
    return QApplication::style()->pixelMetric(QStyle::PM_ScrollBarExtent);
}

QWidget* ScreenArea() {
    EnsureWindowSystem();
    return display->area;
}

QWidget* NewFrame(HWND window) {
    auto* frame = new Frame(window, display->area);
    frame->hide();
    return frame;
}

void ShowOnScreen(HWND window) {
    RaiseFamily(window);
    LayOutTopLevel(window);
    if (!LiveWindow(window))
        return;
    window->widget->show();
    HideCoveredFrames();
    UpdateTitleBar();
    if (!display->isVisible()) {
        display->show();
        display->activateWindow();
    }
}

void PaintScreenNow() {
    if (!display->isVisible())
        return;
    AwaitFirstExposure();
    QEvent paintNow(QEvent::UpdateRequest);
    QCoreApplication::sendEvent(display, &paintNow);
}

void RaiseScreen() {
    display->setWindowState(display->windowState() & ~Qt::WindowMinimized);
    display->show();
    display->raise();
    display->activateWindow();
}

void SetScreenIcon(HICON icon) {
    const QIcon picture = HostIcon(icon);
    QGuiApplication::setWindowIcon(picture);
    display->bar->SetIcon(picture);
}

void RememberDisplayPlace() {
    if (display && display->isVisible())
        PlaceMemory().setValue(kPlaceKey, display->saveGeometry());
}

void UpdateTitleBar() {
    if (!display)
        return;
    // A card belongs to the window behind it, as does a window without a text of its own.
    const WindowObject* titled = ActiveTopLevel();
    const TitleButton button = titled ? titled->topLevel->button : TitleButton::None;
    while (titled && LiveWindow(titled->owner) && (titled->text.isEmpty() || !titled->topLevel->fullScreen))
        titled = titled->owner;
    display->bar->Show(titled ? titled->text : QString(), button);
    const WindowObject* root = titled;
    while (root && LiveWindow(root->owner))
        root = root->owner;
    if (root && !root->text.isEmpty())
        display->setWindowTitle(HostTitle(*titled, root->text));
}

} // namespace ui
