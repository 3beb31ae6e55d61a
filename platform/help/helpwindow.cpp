#include "platform/help/helpwindow.h"

#include <QAction>
#include <QShortcut>
#include <QStyle>
#include <QTimer>
#include <QToolBar>

#include "platform/help/helppages.h"

namespace {

constexpr QSize kStartSize(640, 720);
constexpr int kMargin = 12;

} // namespace

HelpWindow::HelpWindow(const QString& folder, const QString& topic) : pages(new HelpPages(folder, this)) {
    setWindowTitle(QStringLiteral("Help"));
    resize(kStartSize);
    pages->document()->setDocumentMargin(kMargin);
    setCentralWidget(pages);

    QToolBar* bar = addToolBar(QStringLiteral("Navigation"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    QAction* back = bar->addAction(style()->standardIcon(QStyle::SP_ArrowBack), QStringLiteral("Back"), pages,
                                   &QTextBrowser::backward);
    QAction* forward = bar->addAction(style()->standardIcon(QStyle::SP_ArrowForward),
                                      QStringLiteral("Forward"), pages, &QTextBrowser::forward);
    QAction* contents = bar->addAction(style()->standardIcon(QStyle::SP_DirHomeIcon),
                                       QStringLiteral("Contents"), pages, [this] { pages->OpenTopic({}); });
    back->setShortcut(QKeySequence::Back);
    forward->setShortcut(QKeySequence::Forward);
    contents->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Home));
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(pages, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(pages, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this, &QWidget::close);
    pages->OpenTopic(topic);
    pages->setFocus();
}

void HelpWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    // Only now the lines break where they will stay, and with them the anchor's place.
    QTimer::singleShot(0, pages, [this] { pages->scrollToAnchor(pages->source().fragment()); });
}
