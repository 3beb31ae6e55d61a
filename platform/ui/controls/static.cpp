// The static text: wraps, marks its mnemonic, and lets input through to what is behind it.
#include <QLabel>
#include <QPainter>

#include "platform/ui/controls/controlsupport.h"

namespace ui {

namespace {

class StaticText : public QLabel {
public:
    StaticText(const WindowObject& window, QWidget* parent) : QLabel(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setFocusPolicy(Qt::NoFocus);
        setTextFormat(Qt::PlainText);
        Show(window);
    }

    void Show(const WindowObject& window) {
        style = window.style;
        shown = window.text;
        shown.remove(u'\r');
        // The label's own text is what assistive programs read; painting is done here, since the host's
        // label marks mnemonics only when it has a companion.
        setText(style & SS_NOPREFIX ? shown : WithoutMnemonic(shown));
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        int flags = Qt::AlignTop | Qt::TextWordWrap | Qt::TextExpandTabs;
        flags |= style & SS_CENTER ? Qt::AlignHCenter : Qt::AlignLeft;
        if (!(style & SS_NOPREFIX))
            flags |= Qt::TextShowMnemonic;
        painter.setPen(
            palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
        painter.drawText(rect(), flags, shown);
    }

private:
    QString shown;
    DWORD style = 0;
};

QWidget* MakeStatic(WindowObject& window, QWidget* parent) {
    return new StaticText(window, parent);
}

LRESULT StaticProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_GETDLGCODE)
        return DLGC_STATIC;
    LRESULT result = DefaultControlProcedure(window, message, wParam, lParam);
    StaticText* label = WidgetOf<StaticText>(window);
    if (label && (message == WM_SETTEXT || message == WM_STYLECHANGED))
        label->Show(*window);
    return result;
}

} // namespace

void RegisterStaticClass() {
    RegisterBuiltInClass(u"STATIC", StaticProcedure, MakeStatic);
}

} // namespace ui
