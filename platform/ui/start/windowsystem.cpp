// The start of the host's window system, the look of everything, and the table of what lower floors ask for.
#include "platform/ui/core/windowsystem.h"

#include <QApplication>
#include <QLoggingCategory>
#include <QPalette>

#include "platform/storage/watch.h"
#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/core/accessible.h"
#include "platform/ui/core/display.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/dialogs/dialogcore.h"
#include "platform/ui/drawing/cursors.h"
#include "platform/ui/input/inputtranslation.h"
#include "platform/ui/menus/menus.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"
#include "platform/ui/start/hoststyle.h"

namespace ui {

namespace {

constexpr double kFontSize = 9; // points, where the desktop names none

// For displays whose desktop says nothing of colours.
QPalette OwnPalette() {
    QPalette palette(QColor(0xf3, 0xf5, 0xf8));
    palette.setColor(QPalette::Window, QColor(0xf3, 0xf5, 0xf8));
    palette.setColor(QPalette::WindowText, QColor(0x1c, 0x24, 0x30));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xf5, 0xf8, 0xfc));
    palette.setColor(QPalette::Text, QColor(0x1c, 0x24, 0x30));
    palette.setColor(QPalette::Button, QColor(0xec, 0xf0, 0xf5));
    palette.setColor(QPalette::ButtonText, QColor(0x1c, 0x24, 0x30));
    palette.setColor(QPalette::ToolTipBase, QColor(0xff, 0xfd, 0xe8));
    palette.setColor(QPalette::ToolTipText, QColor(0x1c, 0x24, 0x30));
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x6f, 0xb5));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor(0x79, 0x84, 0x93));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x9a, 0xa3, 0xaf));
    palette.setColor(QPalette::Disabled, QPalette::Base, QColor(0xf3, 0xf5, 0xf8));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0xc3, 0xcb, 0xd5));
    return palette;
}

// A variable of the environment while Qt starts. Whatever the program starts later must not find it.
class StartVariable {
public:
    StartVariable(const char* name, const QByteArray& value)
        : name(name), wasSet(qEnvironmentVariableIsSet(name)), before(qgetenv(name)) {
        qputenv(name, value);
    }
    StartVariable(const StartVariable&) = delete;
    StartVariable& operator=(const StartVariable&) = delete;
    ~StartVariable() {
        if (wasSet)
            qputenv(name, before);
        else
            qunsetenv(name);
    }

private:
    const char* name;
    bool wasSet;
    QByteArray before;
};

// Qt tries them in this order. The last one always starts, where Qt would otherwise end the process.
QByteArray Platforms() {
    QByteArrayList names;
    if (const QByteArray chosen = qgetenv("QT_QPA_PLATFORM"); !chosen.isEmpty()) {
        // All platforms without a display are alike, and only "offscreen" starts everywhere.
        if (!ShowsNothing(chosen))
            names << chosen;
    } else {
        if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
            names << "wayland";
        if (!qEnvironmentVariableIsEmpty("DISPLAY"))
            names << "xcb";
    }
    names << "offscreen";
    return names.join(';');
}

void StartHost() {
    if (QCoreApplication::instance())
        return;
    const StartVariable platforms("QT_QPA_PLATFORM", Platforms());
    // No scaling by the host: the program chooses its pictures by the display's density itself.
    const StartVariable scaling("QT_ENABLE_HIGHDPI_SCALING", "0");
    // Silences that the next platform is tried; why a display could not be used is still printed.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.qpa.plugin=false"));
    static int argumentCount = 1;
    static char name[] = "pocket-strandview";
    static char* arguments[] = {name, nullptr};
    static auto* application = new QApplication(argumentCount, arguments);
    Q_UNUSED(application);
}

void DressHost() {
    auto* const style = new HostStyle;
    QApplication::setStyle(style);
    if (QApplication::palette() == style->standardPalette())
        QApplication::setPalette(OwnPalette());
    if (ShowsNothing(QGuiApplication::platformName().toLatin1())) {
        QFont font = QApplication::font();
        font.setPointSizeF(kFontSize);
        QApplication::setFont(font);
    }
    QApplication::setQuitOnLastWindowClosed(false);
}

void RegisterClasses() {
    RegisterDialogClass();
    RegisterButtonClass();
    RegisterStaticClass();
    RegisterEditClass();
    RegisterListViewClass();
    RegisterProgressClass();
    RegisterMenuBarClass();
    RegisterComboBoxClass();
    RegisterDatePickerClass();
}

void PostFromStore(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    PostMessageW(window, message, wParam, lParam);
}

void Start() {
    StartHost();
    DressHost();
    InstallRoles();
    InstallInputFilter();
    CreateScreen();
    QObject::connect(qApp, &QApplication::focusChanged, [](QWidget*, QWidget* now) {
        if (now)
            HostFocusMoved(now);
    });
    RegisterClasses();
    SetNotifySink(PostFromStore);
    ShowCursorOnHost();
}

} // namespace

const HigherFloors kHigherFloors{
    .start = Start,
    .agreeOnFocus = AgreeOnFocus,
    .watchStore = WatchStore,
    .takeDialogKey = [](HWND dialog, MSG* input) -> bool { return IsDialogMessageW(dialog, input); },
    .endLabelEdit = EndLabelEdit,
};

} // namespace ui
