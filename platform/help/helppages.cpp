#include "platform/help/helppages.h"

#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QPalette>

namespace {

constexpr auto kContentsPage = "tarnwickscope.htm";

QString MissingPage(const QString& name) {
    return QStringLiteral("<html><head><title>Help</title></head><body><h1>This page is not there</h1>"
                          "<p>The help has no page \"%1\".</p>"
                          "<p><a href=\"%2\">Contents</a></p></body></html>")
        .arg(name.toHtmlEscaped(), QLatin1String(kContentsPage));
}

// The pages say nothing of colours, which are those of the desktop.
QString ColoursFor(const QPalette& palette) {
    const bool dark = palette.color(QPalette::Base).lightness() < 128;
    return QStringLiteral(
               "h1, h2, h3, a { color: %1; } th { background-color: %2; } .note { background-color: %3; }")
        .arg(QLatin1String(dark ? "#8fbcf0" : "#000080"), QLatin1String(dark ? "#2c3e54" : "#e4eef8"),
             QLatin1String(dark ? "#463c1e" : "#fff6e0"));
}

} // namespace

HelpPages::HelpPages(const QString& folder, QWidget* parent) : QTextBrowser(parent), folder(folder) {
    document()->setDefaultStyleSheet(ColoursFor(palette()));
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

void HelpPages::changeEvent(QEvent* event) {
    QTextBrowser::changeEvent(event);
    if (event->type() != QEvent::PaletteChange)
        return;
    document()->setDefaultStyleSheet(ColoursFor(palette()));
    if (!source().isEmpty())
        reload();
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
