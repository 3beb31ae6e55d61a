// Shows the pages of one folder, and nothing from anywhere else.
#pragma once

#include <QTextBrowser>

class HelpPages : public QTextBrowser {
public:
    HelpPages(const QString& folder, QWidget* parent);

    // As HelpWindow takes it. A page that is not there shows as a page that says so.
    void OpenTopic(const QString& topic);

    QVariant loadResource(int type, const QUrl& name) override;

protected:
    void changeEvent(QEvent* event) override;

private:
    QString folder;
};
