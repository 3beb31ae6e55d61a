#include "platform/ui/menus/menubarwidget.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>
#include <algorithm>

#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/core/accessible.h"
#include "platform/ui/core/keyboard.h"
#include "platform/ui/core/testhooks.h"
#include "platform/ui/core/windowobject.h"
#include "platform/ui/drawing/gdiobjects.h"
#include "platform/ui/drawing/look.h"
#include "platform/ui/input/windowprocedures.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

// At 96 dots an inch: large enough for a stylus, and nine pictures beside two popups within 480.
constexpr int kBarButtonHeight = 34;
constexpr int kPictureWidth = 36;
constexpr int kTextMargin = 10;
constexpr int kEdge = 2;
constexpr int kGroupGap = 9; // between the popups and the pictures
constexpr int kCornerRadius = 4;
constexpr double kDisabledOpacity = 0.3;

} // namespace

QSize BarButton::sizeHint() const {
    const int height = Scaled(kBarButtonHeight);
    if (!IsPopup())
        return QSize(std::max(Scaled(kPictureWidth), PictureSize(picture).width() + 4), height);
    const QSize shown = fontMetrics().size(Qt::TextShowMnemonic, text());
    return QSize(shown.width() + 2 * Scaled(kTextMargin), std::max(height, shown.height() + Scaled(8)));
}

void BarButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool pressed = isDown() || marked;
    if (isEnabled() && (pressed || underMouse())) {
        const double share = pressed ? 0.30 : 0.14;
        painter.setBrush(
            look::Blend(palette().color(QPalette::Highlight), palette().color(QPalette::Window), share));
        painter.setPen(Qt::NoPen);
        const qreal radius = Scaled(kCornerRadius);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius, radius);
    }
    if (!isEnabled())
        painter.setOpacity(kDisabledOpacity);
    if (IsPopup()) {
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextShowMnemonic, text());
    } else {
        const QSize size = PictureSize(picture);
        DrawPicture(painter, QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), picture);
    }
}

MenuBarWidget::MenuBarWidget(HWND bar, QWidget* parent) : QWidget(parent), barWindow(bar) {
    setObjectName(QStringLiteral("menuBar"));
    GiveRole(this, QAccessible::MenuBar);
    setAccessibleName(tr("Menu bar"));
    setFont(FontOf(nullptr));
    setFocusPolicy(Qt::NoFocus);
}

MenuBarWidget::~MenuBarWidget() {
    ClosePopup();
    if (Marked())
        Keyboard().atBar = false;
}

BarButton* MenuBarWidget::AddButton() {
    auto* const button = new BarButton(this);
    button->setFocusPolicy(Qt::NoFocus);
    button->setAutoRaise(true);
    button->setAttribute(Qt::WA_Hover);
    buttons.push_back(button);
    return button;
}

BarButton* MenuBarWidget::AddPopup(const QString& text, HMENU popup, int position) {
    BarButton* const button = AddButton();
    button->popup = popup;
    button->position = position;
    button->setText(text);
    // Its letter is looked for when a message asks, after the accelerators.
    button->setShortcut({});
    button->setAccessibleName(QString(text).remove(QLatin1Char('&')));
    connect(button, &BarButton::pressed, this, [this, button] { Choose(button); });
    button->show();
    return button;
}

BarButton* MenuBarWidget::AddCommand(const QString& name, const QImage& picture, UINT command) {
    BarButton* const button = AddButton();
    button->picture = picture;
    button->command = command;
    button->setToolTip(name);
    button->setAccessibleName(name);
    connect(button, &BarButton::clicked, this, [this, button] { Choose(button); });
    button->show();
    return button;
}

void MenuBarWidget::Choose(BarButton* button) {
    const QPointer<BarButton> chosen(button);
    EndLabelEdit(); // which may say something and take down what is here
    const WindowObject* const bar = chosen ? LiveWindow(barWindow) : nullptr;
    if (!bar || !button->isEnabled() || !IsWindowEnabled(bar->parent))
        return;
    if (button->IsPopup())
        OpenPopup(button);
    else
        PostMessageW(bar->parent, WM_COMMAND, button->command, reinterpret_cast<LPARAM>(barWindow));
}

void MenuBarWidget::Mark(BarButton* marked) {
    Keyboard().atBar = marked != nullptr;
    if (auto* const focus = qobject_cast<QAbstractScrollArea*>(QApplication::focusWidget()))
        focus->viewport()->update(); // which shows that it has the keys
    for (BarButton* const button : buttons) {
        button->marked = marked && button == marked;
        button->open = button->marked && openPopup;
        button->update();
    }
    if (marked)
        TellFocus(marked);
}

BarButton* MenuBarWidget::Marked() const {
    const auto found = std::find_if(buttons.begin(), buttons.end(), [](auto* each) { return each->marked; });
    return found == buttons.end() ? nullptr : *found;
}

// ---- the open popup ----

void MenuBarWidget::OpenPopup(BarButton* button) {
    const WindowObject* const bar = LiveWindow(barWindow);
    ClosePopup();
    QMenu* const popup = MakePopup(button->popup, bar->parent, button->position, button);
    openPopup = popup;
    // The press that closes it is not also a press on what lies beneath, or a second tap would open it again.
    popup->setAttribute(Qt::WA_NoMouseReplay);
    popup->installEventFilter(this);
    connect(popup, &QMenu::aboutToHide, this, [this, popup] {
        if (openPopup == popup) {
            openPopup = nullptr;
            Mark(nullptr);
        }
        popup->deleteLater();
    });
    button->setDown(false); // the popup takes the release
    Mark(button);
    popup->popup(button->mapToGlobal(QPoint(0, button->height())));
    if (TestHooks().menu)
        TestHooks().menu(popup);
}

void MenuBarWidget::ClosePopup() {
    if (openPopup)
        openPopup->close();
}

BarButton* MenuBarWidget::PopupButtonAt(const QPoint& screenPoint) const {
    auto* const button = qobject_cast<BarButton*>(childAt(mapFromGlobal(screenPoint)));
    return button && button->IsPopup() && button->isEnabled() ? button : nullptr;
}

BarButton* MenuBarWidget::NextPopup(int step) const {
    std::vector<BarButton*> popups;
    std::copy_if(buttons.begin(), buttons.end(), std::back_inserter(popups),
                 [](const BarButton* each) { return each->IsPopup() && each->isEnabled(); });
    const auto open = std::find(popups.begin(), popups.end(), Marked());
    if (open == popups.end())
        return nullptr;
    const auto count = static_cast<int>(popups.size());
    return popups[static_cast<std::size_t>((open - popups.begin() + step + count) % count)];
}

// Moving over another popup's button opens that one; so do the arrows that lead out of this one.
bool MenuBarWidget::PopupEvent(QMenu* popup, QEvent* event) {
    BarButton* next = nullptr;
    if (event->type() == QEvent::MouseMove) {
        next = PopupButtonAt(static_cast<QMouseEvent*>(event)->globalPosition().toPoint());
    } else if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const QAction* const current = popup->activeAction();
        if (key == Qt::Key_Left)
            next = NextPopup(-1);
        else if (key == Qt::Key_Right && !(current && current->menu()))
            next = NextPopup(1);
    }
    if (!next || next->marked)
        return false;
    Choose(next);
    return true;
}

bool MenuBarWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == openPopup && PopupEvent(openPopup, event))
        return true;
    if (watched == watchedParent && event->type() == QEvent::Resize)
        Fit();
    return QWidget::eventFilter(watched, event);
}

// ---- layout ----

int MenuBarWidget::LayOut(int width, bool move) const {
    const int edge = Scaled(kEdge);
    int x = edge;
    int y = 1;
    int rowHeight = 0;
    const BarButton* before = nullptr;
    for (BarButton* const button : buttons) {
        const QSize size = button->sizeHint();
        if (before && before->IsPopup() && !button->IsPopup())
            x += Scaled(kGroupGap);
        if (x > edge && x + size.width() > width - edge) {
            x = edge;
            y += rowHeight;
            rowHeight = 0;
        }
        if (move)
            button->setGeometry(x, y, size.width(), size.height());
        x += size.width();
        rowHeight = std::max(rowHeight, size.height());
        before = button;
    }
    return buttons.empty() ? 0 : y + rowHeight + 2; // the line beneath, and a pixel above it
}

int MenuBarWidget::heightForWidth(int width) const {
    return LayOut(width, false);
}

void MenuBarWidget::Fit() {
    const QWidget* const parent = parentWidget();
    if (!parent || !LiveWindow(barWindow))
        return;
    const QSize wanted(parent->width(), heightForWidth(parent->width()));
    const bool newHeight = wanted.height() != height();
    setVisible(!buttons.empty());
    resize(wanted);
    if (newHeight)
        LayOutTopLevel(TopLevelOf(barWindow));
}

void MenuBarWidget::resizeEvent(QResizeEvent* event) {
    LayOut(width(), true);
    if (event->oldSize().height() == height())
        return;
    NMHDR notification{};
    NotifyParent(barWindow, &notification, MBN_SIZECHANGED);
}

void MenuBarWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        LayOut(width(), true);
        Fit();
    }
}

bool MenuBarWidget::event(QEvent* event) {
    if (event->type() == QEvent::ParentChange || event->type() == QEvent::Polish) {
        if (watchedParent)
            watchedParent->removeEventFilter(this);
        watchedParent = parentWidget();
        if (watchedParent)
            watchedParent->installEventFilter(this);
        Fit();
    }
    return QWidget::event(event);
}

void MenuBarWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    painter.setPen(look::Line());
    painter.drawLine(0, height() - 1, width(), height() - 1);
    const BarButton* before = nullptr;
    for (const BarButton* const button : buttons) {
        if (before && before->IsPopup() && !button->IsPopup() && button->y() == before->y()) {
            const int x = (before->geometry().right() + button->x() + 1) / 2;
            const int inset = button->height() / 5;
            painter.drawLine(x, button->y() + inset, x, button->geometry().bottom() - inset);
        }
        before = button;
    }
}

} // namespace ui
