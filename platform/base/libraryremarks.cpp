#include "platform/base/libraryremarks.h"

#include <QString>
#include <cstdio>
#include <cstdlib>

namespace {

const char* speaker = "";

void Tell(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtFatalMsg)
        std::fprintf(stderr, "%s: %s\n", speaker, text.toUtf8().constData());
}

} // namespace

void SilenceLibraries(const char* program) {
    for (const char* variable : {"QT_DEBUG_PLUGINS", "QT_LOGGING_RULES", "QT_FATAL_WARNINGS"})
        if (std::getenv(variable))
            return;
    speaker = program;
    qInstallMessageHandler(Tell);
}
