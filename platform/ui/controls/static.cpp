// The static text: wraps, marks its mnemonic, and lets input through to what is behind it.
#include <QLabel>
#include <QPainter>
#include <QTextOption>
#include <algorithm>

#include "platform/ui/controls/controlsupport.h"

namespace ui {

namespace {

constexpr QChar kEllipsis(0x2026);

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
        const Qt::Alignment alignment =
            Qt::AlignTop | (style & SS_CENTER ? Qt::AlignHCenter : Qt::AlignLeft);
        painter.setPen(
            palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
        if (style & SS_NOPREFIX)
            PaintAsItIs(painter, alignment);
        else
            painter.drawText(rect(), alignment | Qt::TextWordWrap | Qt::TextExpandTabs | Qt::TextShowMnemonic,
                             shown);
    }

private:
    // Names and paths may have no place to wrap at, and more lines than there is room for.
    void PaintAsItIs(QPainter& painter, Qt::Alignment alignment) {
        QTextOption option(alignment);
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        const QRectF room(0, 0, width(), std::max(height(), fontMetrics().height()));
        const auto fits = [&](const QString& text) {
            return painter.boundingRect(room, text, option).height() <= room.height();
        };
        qsizetype least = 0;
        for (qsizetype most = fits(shown) ? 0 : shown.size(); least < most;) {
            const qsizetype middle = (least + most + 1) / 2;
            const bool enough = fits(shown.left(middle) + kEllipsis);
            (enough ? least : most) = enough ? middle : middle - 1;
        }
        painter.drawText(room, least ? shown.left(least) + kEllipsis : shown, option);
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
