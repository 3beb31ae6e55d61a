// Buttons of every kind: push, check box, radio, group box and owner-drawn.
#include <QAbstractButton>
#include <QCheckBox>
#include <QGroupBox>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>

#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/core/accessible.h"
#include "platform/ui/drawing/devicecontext.h"

namespace ui {

namespace {

DWORD KindOf(HWND window) {
    return window->style & BS_TYPEMASK;
}

class RadioButton : public QRadioButton {
public:
    // Groups go by window order, not by the host's parents, hence no exclusivity of the host's own.
    RadioButton(HWND window, QWidget* parent) : QRadioButton(parent), window(window) {
        setAutoExclusive(false);
        GiveRole(this, QAccessible::RadioButton); // which the host grants to exclusive buttons only
    }

protected:
    void nextCheckState() override {
        if (!LiveWindow(window))
            return;
        setChecked(true);
        for (HWND other : Group())
            if (RadioButton* radio = other == window ? nullptr : WidgetOf<RadioButton>(other))
                radio->setChecked(false);
    }

private:
    // From the last WS_GROUP at or before this button up to the next one.
    std::vector<HWND> Group() const {
        std::vector<HWND> group;
        WindowObject* parent = LiveWindow(window->parent);
        if (!parent)
            return group;
        bool reached = false;
        for (HWND sibling : parent->children) {
            if (sibling->style & WS_GROUP) {
                if (reached)
                    break;
                group.clear();
            }
            reached = reached || sibling == window;
            group.push_back(sibling);
        }
        return group;
    }

    HWND window;
};

class OwnerDrawnButton : public QAbstractButton {
public:
    OwnerDrawnButton(HWND window, QWidget* parent) : QAbstractButton(parent), window(window) {}

protected:
    void paintEvent(QPaintEvent*) override {
        WindowObject* object = LiveWindow(window);
        if (!object)
            return;
        QPainter painter(this);
        PainterContext context(painter, object->font);
        DRAWITEMSTRUCT item{};
        item.CtlType = ODT_BUTTON;
        item.CtlID = object->id;
        item.itemState = isDown() ? ODS_SELECTED : 0;
        item.hwndItem = window;
        item.hDC = context.Handle();
        item.rcItem = {0, 0, width(), height()};
        SendMessageW(object->parent, WM_DRAWITEM, object->id, reinterpret_cast<LPARAM>(&item));
    }

private:
    HWND window;
};

QWidget* MakeGroupBox(const WindowObject& window, QWidget* parent) {
    QGroupBox* box = new QGroupBox(window.text, parent);
    // It lies over the controls that it frames.
    box->setAttribute(Qt::WA_TransparentForMouseEvents);
    box->setFocusPolicy(Qt::NoFocus);
    return box;
}

QAbstractButton* MakeClickable(WindowObject& window, QWidget* parent) {
    switch (KindOf(&window)) {
    case BS_AUTOCHECKBOX:
        return new QCheckBox(parent);
    case BS_AUTORADIOBUTTON:
        return new RadioButton(&window, parent);
    case BS_OWNERDRAW:
        return new OwnerDrawnButton(&window, parent);
    }
    QPushButton* push = new QPushButton(parent);
    push->setAutoDefault(false);
    push->setDefault(KindOf(&window) == BS_DEFPUSHBUTTON);
    return push;
}

QWidget* MakeButton(WindowObject& window, QWidget* parent) {
    if (KindOf(&window) == BS_GROUPBOX)
        return MakeGroupBox(window, parent);
    QAbstractButton* button = MakeClickable(window, parent);
    button->setText(window.text);
    button->setAccessibleName(WithoutMnemonic(window.text));
    const HWND handle = &window;
    QObject::connect(button, &QAbstractButton::clicked, button,
                     [handle] { CommandToParent(handle, BN_CLICKED); });
    return button;
}

void ShowText(HWND window) {
    if (QAbstractButton* button = WidgetOf<QAbstractButton>(window)) {
        // The host's own check boxes and radio buttons know one line only.
        const bool wraps = button->isCheckable();
        button->setText(wraps ? BrokenToFit(button, window->text, button->width()) : window->text);
        button->setAccessibleName(WithoutMnemonic(window->text));
    } else if (QGroupBox* box = WidgetOf<QGroupBox>(window)) {
        box->setTitle(window->text);
    }
}

LRESULT ButtonDialogCode(HWND window) {
    switch (KindOf(window)) {
    case BS_GROUPBOX:
        return DLGC_STATIC;
    case BS_AUTORADIOBUTTON:
        return DLGC_BUTTON | DLGC_RADIOBUTTON;
    case BS_DEFPUSHBUTTON:
        return DLGC_BUTTON | DLGC_DEFPUSHBUTTON;
    case BS_PUSHBUTTON:
        return DLGC_BUTTON | DLGC_UNDEFPUSHBUTTON;
    }
    return DLGC_BUTTON;
}

LRESULT ButtonProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    QAbstractButton* button = WidgetOf<QAbstractButton>(window);
    switch (message) {
    case WM_GETDLGCODE:
        return LiveWindow(window) ? ButtonDialogCode(window) : 0;
    case BM_GETCHECK:
        return button && button->isChecked() ? BST_CHECKED : BST_UNCHECKED;
    case BM_SETCHECK:
        if (button && button->isCheckable())
            button->setChecked(wParam == BST_CHECKED);
        return 0;
    }
    const LRESULT result = DefaultControlProcedure(window, message, wParam, lParam);
    if ((message == WM_SETTEXT || message == WM_SIZE || message == WM_SETFONT) && LiveWindow(window))
        ShowText(window);
    return result;
}

} // namespace

void RegisterButtonClass() {
    RegisterBuiltInClass(u"BUTTON", ButtonProcedure, MakeButton);
}

} // namespace ui
