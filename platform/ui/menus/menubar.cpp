// The shell's menu bar: a control made from a definition in the program's resources.
#include <QApplication>
#include <QKeyEvent>
#include <QtEndian>

#include "platform/resources.h"
#include "platform/ui/core/accessible.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/drawing/gdiobjects.h"
#include "platform/ui/input/windowprocedures.h"
#include "platform/ui/menus/menubarwidget.h"
#include "platform/ui/menus/menus.h"

namespace ui {

namespace {

const WCHAR* const kMenuBarClass = u"menu_worker";
constexpr int kWordsInHeader = 2;
constexpr int kWordsInButton = 7;
constexpr WORD kPopupStyle = 0x88;
constexpr WORD kEnabledState = 0x04;
constexpr COLORREF kTransparent = RGB(0xC0, 0xC0, 0xC0);
constexpr int kLongestText = 128;

struct MenuBarState : ControlState {
    ~MenuBarState() override { DestroyMenu(menu); }
    HMENU menu = nullptr;
};

QWidget* MakeMenuBarWidget(WindowObject& window, QWidget* parentWidget) {
    return new MenuBarWidget(&window, parentWidget);
}

MenuBarWidget* WidgetOf(HWND bar) {
    const WindowObject* const object = LiveWindow(bar);
    return object ? qobject_cast<MenuBarWidget*>(object->widget) : nullptr;
}

HMENU MenuOf(HWND bar) {
    const WindowObject* const object = LiveWindow(bar);
    const auto* const state = object ? dynamic_cast<MenuBarState*>(object->control.get()) : nullptr;
    return state ? state->menu : nullptr;
}

void EnableBarButton(MenuBarWidget& widget, UINT command, bool enable) {
    for (BarButton* const button : widget.Buttons())
        if (!button->IsPopup() && button->command == command)
            button->setEnabled(enable);
}

// 0 for an empty bar.
int HeightOf(const MenuBarWidget* widget) {
    const QWidget* const parent = widget ? widget->parentWidget() : nullptr;
    return parent ? widget->heightForWidth(parent->width()) : 0;
}

LRESULT MenuBarProcedure(HWND bar, UINT message, WPARAM wParam, LPARAM lParam) {
    MenuBarWidget* const widget = WidgetOf(bar);
    switch (message) {
    case SHCMBM_GETHEIGHT:
        return HeightOf(widget);
    case SHCMBM_GETMENU:
        return reinterpret_cast<LRESULT>(MenuOf(bar));
    case MBM_OPENBYLETTER:
        return MenuBarMnemonic(bar, static_cast<char16_t>(wParam));
    case MBM_ENTERMENUMODE:
        return EnterMenuMode(bar);
    case TB_ENABLEBUTTON:
        if (widget)
            EnableBarButton(*widget, static_cast<UINT>(wParam), lParam != 0);
        return TRUE;
    default:
        return DefaultControlProcedure(bar, message, wParam, lParam);
    }
}

// One button of the definition: image, command, state, style, string, reserved, popup.
void AddBarButton(MenuBarWidget& widget, HMENU menu, const WORD* words, const std::vector<QImage>& pictures) {
    WCHAR text[kLongestText];
    const int length = LoadStringW(nullptr, words[4], text, kLongestText);
    const QString name = QString::fromUtf16(text, length);
    BarButton* button = nullptr;
    if (words[3] == kPopupStyle) {
        const HMENU popup = GetSubMenu(menu, words[6]);
        if (!popup)
            return;
        button = widget.AddPopup(name, popup, words[6]);
    } else {
        const QImage picture = words[0] < pictures.size() ? pictures[words[0]] : QImage();
        button = widget.AddCommand(name, picture, words[1]);
    }
    button->setEnabled((words[2] & kEnabledState) != 0);
}

// False when there is no such definition, or none that makes sense.
bool FillBar(MenuBarWidget& widget, MenuBarState& state, const SHMENUBARINFO& info) {
    const WCHAR* const id = MAKEINTRESOURCEW(static_cast<WORD>(info.nToolBarId));
    const HRSRC definition = FindResourceW(info.hInstRes, id, RT_RCDATA);
    const std::size_t size = SizeofResource(info.hInstRes, definition) / sizeof(WORD);
    std::vector<WORD> words(size);
    if (size < kWordsInHeader)
        return false;
    qFromLittleEndian<WORD>(LoadResource(info.hInstRes, definition), static_cast<qsizetype>(size),
                            words.data());
    if (size < kWordsInHeader + std::size_t{words[1]} * kWordsInButton)
        return false;
    state.menu = LoadMenuW(info.hInstRes, MAKEINTRESOURCEW(words[0]));
    if (!state.menu)
        return false;
    std::vector<QImage> pictures;
    const WCHAR* const bitmap = MAKEINTRESOURCEW(static_cast<WORD>(info.nBmpId));
    if (const QImage strip = LoadBitmapImage(bitmap); !strip.isNull() && info.cBmpImages > 0)
        pictures = LoadImageStrip(bitmap, strip.width() / info.cBmpImages, kTransparent);
    for (std::size_t i = 0; i < words[1]; ++i)
        AddBarButton(widget, state.menu, &words[kWordsInHeader + i * kWordsInButton], pictures);
    return true;
}

// ---- moving along the bar by keys ----

// Sits before the window system's own handling of input: while the arrows move along the bar, the focus and
// the windows see nothing of it.
class MenuMode : public QObject {
public:
    explicit MenuMode(MenuBarWidget& widget) : bar(&widget) {
        Step(1);
        qApp->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Step(int step);
    void Leave();
    bool KeyPressed(const QKeyEvent& key);

    QPointer<MenuBarWidget> bar;
};

void MenuMode::Step(int step) {
    const auto& buttons = bar->Buttons();
    const auto count = static_cast<int>(buttons.size());
    const auto marked = std::find(buttons.begin(), buttons.end(), bar->Marked());
    int index = marked == buttons.end() ? -1 : static_cast<int>(marked - buttons.begin());
    for (int tried = 0; tried < count; ++tried) {
        index = (index + step + count) % count;
        if (buttons[static_cast<std::size_t>(index)]->isEnabled()) {
            bar->Mark(buttons[static_cast<std::size_t>(index)]);
            return;
        }
    }
}

void MenuMode::Leave() {
    qApp->removeEventFilter(this);
    if (bar)
        bar->Mark(nullptr);
    if (QWidget* const focus = QApplication::focusWidget())
        TellFocus(focus);
    deleteLater();
}

bool MenuMode::KeyPressed(const QKeyEvent& key) {
    switch (key.key()) {
    case Qt::Key_Left:
        Step(-1);
        break;
    case Qt::Key_Right:
        Step(1);
        break;
    case Qt::Key_Down:
    case Qt::Key_Up:
        if (!bar->Marked() || !bar->Marked()->IsPopup())
            break; // a button that is a command is pressed on purpose
        [[fallthrough]];
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space: {
        BarButton* const chosen = bar->Marked();
        Leave();
        if (chosen)
            bar->Choose(chosen);
        break;
    }
    case Qt::Key_Shift:
    case Qt::Key_Control:
        break;
    default:
        Leave();
        if (const HWND window = WindowOfWidget(bar); !key.text().isEmpty())
            MenuBarMnemonic(window, key.text().front().unicode());
        break;
    }
    return true;
}

bool MenuMode::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress:
        if (!bar)
            break;
        event->accept();
        return KeyPressed(*static_cast<QKeyEvent*>(event));
    case QEvent::MouseButtonPress:
    case QEvent::ApplicationDeactivate:
        Leave();
        break;
    default:
        break;
    }
    return false;
}

} // namespace

void RegisterMenuBarClass() {
    RegisterBuiltInClass(kMenuBarClass, MenuBarProcedure, MakeMenuBarWidget);
    InstallBarRoles();
}

bool MenuBarMnemonic(HWND bar, char16_t letter) {
    MenuBarWidget* const widget = WidgetOf(bar);
    if (!widget)
        return false;
    for (BarButton* const button : widget->Buttons()) {
        const QString text = button->text();
        const qsizetype mark = text.indexOf(QLatin1Char('&')) + 1;
        if (button->IsPopup() && button->isEnabled() && mark > 0 && mark < text.size() &&
            text[mark].toCaseFolded() == QChar(letter).toCaseFolded()) {
            widget->Choose(button);
            return true;
        }
    }
    return false;
}

bool EnterMenuMode(HWND bar) {
    MenuBarWidget* const widget = WidgetOf(bar);
    if (!widget || widget->Buttons().empty())
        return false;
    new MenuMode(*widget); // deletes itself
    return true;
}

} // namespace ui

using namespace ui;

BOOL SHCreateMenuBar(SHMENUBARINFO* info) {
    const WindowObject* const parent = info ? LiveWindow(info->hwndParent) : nullptr;
    if (!parent)
        return FALSE;
    DestroyWindow(MenuBarOf(info->hwndParent)); // the new bar takes the place of the old one
    info->hwndMB = CreateWindowExW(0, kMenuBarClass, u"", WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, info->hwndParent,
                                   ChildId(kMenuBarId), info->hInstRes, nullptr);
    MenuBarWidget* const widget = WidgetOf(info->hwndMB);
    if (!widget)
        return FALSE;
    auto state = std::make_unique<MenuBarState>();
    const bool empty = (info->dwFlags & SHCMBF_EMPTYBAR) != 0;
    if (!empty && !FillBar(*widget, *state, *info)) {
        DestroyWindow(info->hwndMB);
        info->hwndMB = nullptr;
        return FALSE;
    }
    info->hwndMB->control = std::move(state);
    widget->Fit();
    return TRUE;
}
