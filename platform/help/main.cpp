// The help viewer: opens the topic that is its one argument in the help folder beside it.
#include <QApplication>
#include <QIcon>

#include "platform/base/libraryremarks.h"
#include "platform/help/helpwindow.h"

int main(int argc, char** argv) {
    SilenceLibraries("PegHelp.exe");
    QApplication application(argc, argv);
    // The desktop shows the program's icon with it, once that is installed.
    QGuiApplication::setDesktopFileName(QStringLiteral("pocket-strandview"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("pocket-strandview")));
    const QStringList arguments = QApplication::arguments();
    HelpWindow window(QApplication::applicationDirPath() + QStringLiteral("/help"), arguments.value(1));
    window.show();
    return QApplication::exec();
}
