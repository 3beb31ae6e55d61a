// A window on the help pages of one folder.
#pragma once

#include <QMainWindow>

class HelpPages;

class HelpWindow : public QMainWindow {
public:
    // `topic` is a page's file name, which may be followed by # and an anchor; empty for the contents.
    HelpWindow(const QString& folder, const QString& topic);

    HelpPages* pages; // a child

protected:
    void showEvent(QShowEvent* event) override;
};
