#include "platform/help/helppages.h"

#include <QFile>
#include <QFileInfo>

namespace {

constexpr auto kContentsPage = "tarnwickscope.htm";

QString MissingPage(const QString& name) {
    return QStringLiteral("<html><head><title>Help</title></head><body><h1>This page is not there</h1>"
                          "<p>The help has no page \"%1\".</p>"
                          "<p><a href=\"%2\">Contents</a></p></body></html>")
        .arg(name.toHtmlEscaped(), QLatin1String(kContentsPage));
}

} // namespace

HelpPages::HelpPages(const QString& folder, QWidget* parent) : QTextBrowser(parent), folder(folder) {
    setAccessibleName(QStringLiteral("Help page"));
    setOpenExternalLinks(false);
}

void HelpPages::OpenTopic(const QString& topic) {
    const qsizetype hash = topic.indexOf(QLatin1Char('#'));
    const QString page = hash < 0 ? topic : topic.left(hash);
    QUrl url = QUrl::fromLocalFile(folder + QLatin1Char('/') +
                                   (page.isEmpty() ? QLatin1String(kContentsPage) : page));
    if (hash >= 0)
        url.setFragment(topic.mid(hash + 1));
    setSource(url, QTextDocument::HtmlResource);
}

QVariant HelpPages::loadResource(int type, const QUrl& name) {
    const QString path = source().resolved(name).toLocalFile();
    // The folder is flat: whatever a topic or a link asks for, only a name within it is looked up.
    QFile file(folder + QLatin1Char('/') + QFileInfo(path).fileName());
    if (!path.isEmpty() && file.open(QIODevice::ReadOnly)) {
        return type == QTextDocument::HtmlResource ? QVariant(QString::fromUtf8(file.readAll()))
                                                   : QVariant(file.readAll());
    }
    return type == QTextDocument::HtmlResource ? QVariant(MissingPage(QFileInfo(name.path()).fileName()))
                                               : QVariant();
}
