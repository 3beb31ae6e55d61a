// The menu bar's row of buttons: popups by their text, commands by their picture, in as many rows as the
// width asks for.
#pragma once

#include <QImage>
#include <QPointer>
#include <QToolButton>
#include <QWidget>
#include <vector>

#include "platform/ui/menus/menus.h"

namespace ui {

// A flat button. Its picture is painted at its own size, paler when disabled.
class BarButton : public QToolButton {
    Q_OBJECT
public:
    explicit BarButton(QWidget* parent) : QToolButton(parent) {}
    QSize sizeHint() const override;
    bool IsPopup() const { return popup != nullptr; }

    UINT command = 0;
    HMENU popup = nullptr; // null for a command
    int position = 0;      // of the popup in its menu
    QImage picture;
    bool marked = false; // its popup is open, or the arrows have come to it
    bool open = false;   // its popup is

protected:
    void paintEvent(QPaintEvent* event) override;
};

class MenuBarWidget : public QWidget {
    Q_OBJECT
public:
    MenuBarWidget(HWND bar, QWidget* parent);
    ~MenuBarWidget() override;

    BarButton* AddPopup(const QString& text, HMENU popup, int position);
    BarButton* AddCommand(const QString& name, const QImage& picture, UINT command);
    const std::vector<BarButton*>& Buttons() const { return buttons; }
    // Opens the button's popup, or runs its command.
    void Choose(BarButton* button);
    void Mark(BarButton* button); // null: none
    BarButton* Marked() const;

    int heightForWidth(int width) const override; // 0 without buttons
    bool hasHeightForWidth() const override { return true; }
    // Takes the width of its parent and the height that goes with it. The bar's owner is told of a new
    // height.
    void Fit();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    BarButton* AddButton();
    int LayOut(int width, bool move) const; // returns the height
    void OpenPopup(BarButton* button);
    void ClosePopup();
    bool PopupEvent(QMenu* popup, QEvent* event);
    BarButton* PopupButtonAt(const QPoint& screenPoint) const;
    BarButton* NextPopup(int step) const; // from the open one

    HWND barWindow;
    std::vector<BarButton*> buttons;
    QPointer<QWidget> watchedParent;
    QPointer<QMenu> openPopup;
};

void InstallBarRoles(); // for assistive programs, once

} // namespace ui
