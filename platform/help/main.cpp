// The help viewer: opens the topic that is its one argument in the help folder beside it.
#include <QApplication>

#include "platform/help/helpwindow.h"

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    HelpWindow window(QApplication::applicationDirPath() + QStringLiteral("/help"), arguments.value(1));
    window.show();
    return QApplication::exec();
}
