// The bar at the top of the display: the active window's title and the shell's button.
#pragma once

#include <QAbstractButton>
#include <QIcon>

#include "platform/ui/core/windowobject.h"

namespace ui {

// Round, with "ok" or a cross in it.
class TitleBarButton : public QAbstractButton {
public:
    explicit TitleBarButton(QWidget* parent);
    void SetKind(TitleButton kind);
    TitleButton Kind() const { return shown; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    TitleButton shown = TitleButton::None;
};

class TitleBar : public QWidget {
public:
    explicit TitleBar(QWidget* parent);
    void Show(const QString& title, TitleButton button);
    void SetIcon(const QIcon& icon);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void Tapped();

    QString text;
    QIcon picture;
    TitleBarButton* button;
};

} // namespace ui
