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
        painter.drawText(rect(), flags, FirstThatFit(flags));
    }

private:
    // All of it, or what fits in the height with an ellipsis.
    QString FirstThatFit(int flags) const {
        const QFontMetrics metrics(font());
        const QString whole = BreakableIn(metrics, shown, width());
        QString text = whole;
        const auto fits = [&](const QString& part) {
            return metrics.boundingRect(rect(), flags, part).height() <= std::max(height(), metrics.height());
        };
        while (!text.isEmpty() && !fits(text == whole ? text : text + QChar(0x2026)))
            text.chop(1);
        return text == whole ? text : text + QChar(0x2026);
    }

    QString shown;
    DWORD style = 0;
};

QWidget* MakeStatic(WindowObject& window, QWidget* parent) {
    return new StaticText(window, parent);
}

LRESULT StaticProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_GETDLGCODE)
        return DLGC_STATIC;
    const LRESULT result = DefaultControlProcedure(window, message, wParam, lParam);
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
