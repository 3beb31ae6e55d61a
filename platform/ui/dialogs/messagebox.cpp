// The message box: a card in the middle of the screen, made of a dialog and its buttons.
#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QTextDocument>
#include <QTextOption>
#include <cstdio>

#include "platform/base/outofmemory.h"
#include "platform/process.h"
#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/core/display.h"
#include "platform/ui/core/testhooks.h"
#include "platform/ui/dialogs/dialogcore.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

// Pixels at 96 to the inch.
constexpr int kMargin = 14;
constexpr int kGap = 10;
constexpr int kIconSize = 32;
constexpr int kButtonWidth = 76;
constexpr int kButtonHeight = 28;
constexpr int kWidest = 420;

constexpr UINT kButtonsMask = 0x0F;
constexpr UINT kIconMask = 0xF0;

struct BoxButton {
    int id;
    const WCHAR* text;
};

constexpr BoxButton kOk{IDOK, u"OK"};
constexpr BoxButton kCancel{IDCANCEL, u"Cancel"};
constexpr BoxButton kYes{IDYES, u"&Yes"};
constexpr BoxButton kNo{IDNO, u"&No"};
constexpr BoxButton kAbort{IDABORT, u"&Abort"};

std::vector<BoxButton> ButtonsOf(UINT style) {
    switch (style & kButtonsMask) {
    case MB_ABORTRETRYIGNORE:
        return {kAbort, {IDRETRY, u"&Retry"}, {IDIGNORE, u"&Ignore"}};
    case MB_YESNOCANCEL:
        return {kYes, kNo, kCancel};
    case MB_YESNO:
        return {kYes, kNo};
    }
    return {kOk};
}

// What Escape means, and what is taken for the answer where nobody can be asked.
BoxButton SafeButton(UINT style) {
    switch (style & kButtonsMask) {
    case MB_YESNOCANCEL:
        return kCancel;
    case MB_ABORTRETRYIGNORE:
        return kAbort;
    case MB_YESNO:
        return kNo;
    }
    return kOk;
}

QIcon IconOf(UINT style) {
    const QStyle& host = *QApplication::style();
    switch (style & kIconMask) {
    case MB_ICONHAND:
        return host.standardIcon(QStyle::SP_MessageBoxCritical);
    case MB_ICONQUESTION:
        return host.standardIcon(QStyle::SP_MessageBoxQuestion);
    case MB_ICONEXCLAMATION:
        return host.standardIcon(QStyle::SP_MessageBoxWarning);
    case MB_ICONASTERISK:
        return host.standardIcon(QStyle::SP_MessageBoxInformation);
    }
    return QIcon();
}

// Caption, icon and text of the box, drawn as one card under the buttons.
class Card : public QWidget {
public:
    Card(QWidget* parent, const QString& caption, const QString& text, const QIcon& icon)
        : QWidget(parent), caption(caption), icon(icon) {
        QTextOption wrapping;
        // A path without blanks has to break somewhere, too.
        wrapping.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        document.setDefaultTextOption(wrapping);
        document.setDefaultFont(font());
        document.setDocumentMargin(0);
        document.setPlainText(text);
        setAccessibleName(caption);
        setAccessibleDescription(text);
    }

    // The size that shows all the text, at most that wide; room for the buttons included.
    QSize Fit(int widest, int buttonsWidth) {
        const int beside = 2 * Scaled(kMargin) + TextLeft() - Scaled(kMargin);
        document.setTextWidth(std::max(1, widest - beside));
        const int wanted =
            std::max(qCeil(document.idealWidth()) + beside, buttonsWidth + 2 * Scaled(kMargin));
        const int width = std::min(widest, std::max(wanted, CaptionWidth()));
        document.setTextWidth(std::max(1, width - beside));
        const int body = std::max(qCeil(document.size().height()), icon.isNull() ? 0 : Scaled(kIconSize));
        return QSize(width, TextTop() + body + Scaled(kGap) + Scaled(kButtonHeight) + Scaled(kMargin));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::white);
        painter.setPen(QColor(0x17, 0x33, 0x62));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
        painter.setFont(CaptionFont());
        const QRect captionRect(Scaled(kMargin), 0, width() - 2 * Scaled(kMargin), CaptionHeight());
        painter.drawText(captionRect, Qt::AlignVCenter | Qt::TextSingleLine,
                         painter.fontMetrics().elidedText(caption, Qt::ElideRight, captionRect.width()));
        painter.drawLine(0, CaptionHeight(), width(), CaptionHeight());
        if (!icon.isNull())
            icon.paint(&painter, Scaled(kMargin), TextTop(), Scaled(kIconSize), Scaled(kIconSize));
        painter.translate(TextLeft(), TextTop());
        QAbstractTextDocumentLayout::PaintContext context;
        context.palette = palette();
        document.documentLayout()->draw(&painter, context);
    }

private:
    QFont CaptionFont() const {
        QFont bold = font();
        bold.setBold(true);
        return bold;
    }
    int CaptionWidth() const {
        return QFontMetrics(CaptionFont()).horizontalAdvance(caption) + 2 * Scaled(kMargin);
    }
    int CaptionHeight() const { return QFontMetrics(CaptionFont()).height() + Scaled(kGap); }
    int TextTop() const { return CaptionHeight() + Scaled(kMargin); }
    int TextLeft() const { return Scaled(kMargin) + (icon.isNull() ? 0 : Scaled(kIconSize) + Scaled(kGap)); }

    QString caption;
    QIcon icon;
    QTextDocument document;
};

// Innermost last.
std::vector<HWND>& OpenBoxes() {
    static auto* boxes = new std::vector<HWND>;
    return *boxes;
}

// Escape arrives as IDCANCEL even when there is no Cancel button.
LONG_PTR BoxProcedure(HWND box, UINT message, WPARAM wParam, LPARAM) {
    if (message != WM_COMMAND)
        return FALSE;
    const int id = LOWORD(wParam);
    EndDialog(box, id == IDCANCEL ? SafeButton(static_cast<UINT>(box->userData)).id : id);
    return TRUE;
}

void MakeButtons(HWND box, UINT style) {
    const std::vector<BoxButton> buttons = ButtonsOf(style);
    for (const BoxButton& button : buttons)
        CreateWindowExW(0, u"BUTTON", button.text, WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON, 0, 0,
                        0, 0, box, ChildId(static_cast<UINT>(button.id)), nullptr, nullptr);
    const bool second = style & MB_DEFBUTTON2 && buttons.size() > 1;
    box->dialog->defaultId = static_cast<UINT>(buttons[second ? 1 : 0].id);
    SetFocus(GetDlgItem(box, static_cast<int>(box->dialog->defaultId)));
}

// Lays out the card and its buttons for a screen of that size.
void FitBox(HWND box, Card* card, const QSize& area) {
    const int count = static_cast<int>(box->children.size());
    const int widest = std::min(Scaled(kWidest), area.width() - 2 * Scaled(kGap));
    const int gaps = (count - 1) * Scaled(kGap);
    const int buttonWidth =
        std::min(Scaled(kButtonWidth), (widest - 2 * Scaled(kMargin) - gaps) / std::max(1, count));
    // When the text is too high for the screen it is cut, so that the buttons stay visible.
    const QSize size = card->Fit(widest, count * buttonWidth + gaps).boundedTo(area);
    card->setGeometry(QRect(QPoint(0, 0), size));
    box->topLevel->cardSize = size;
    int left = size.width() - Scaled(kMargin) - count * buttonWidth - gaps;
    for (HWND button : box->children) {
        PlaceWindow(button, QRect(left, size.height() - Scaled(kMargin) - Scaled(kButtonHeight), buttonWidth,
                                  Scaled(kButtonHeight)));
        left += buttonWidth + Scaled(kGap);
    }
}

HWND MakeBox(HWND owner, const QString& text, const WCHAR* caption, UINT style) {
    const HWND box =
        CreateWindowExW(0, kDialogClass, caption, WS_POPUP, 0, 0, 0, 0, owner, nullptr, nullptr, nullptr);
    if (!box)
        return nullptr;
    NewWindow unfinished(box, DestroyWindow);
    box->dialog = NewDialogData(BoxProcedure, true);
    box->userData = style;
    auto* card = new Card(box->widget, box->text, text, IconOf(style));
    card->show();
    MakeButtons(box, style);
    box->topLevel->fullScreen = false;
    box->topLevel->fitCard = [box, card](const QSize& area) { FitBox(box, card, area); };
    LayOutTopLevel(box);
    return unfinished.release();
}

// A question that a user answers is none, whatever its sign.
bool TellsOfFailure(UINT style, HWND box) {
    const UINT icon = style & kIconMask;
    if ((style & kButtonsMask) == MB_OK)
        return icon == MB_ICONEXCLAMATION || icon == MB_ICONHAND;
    return !box || (style & kButtonsMask) == MB_ABORTRETRYIGNORE;
}

// For a question the line ends with the answer that is assumed.
void PrintBox(const QString& text, const WCHAR* caption, UINT style) {
    QString line = HostText(caption) + QStringLiteral(": ") + text;
    line.remove(u'\r').replace(u'\n', u' ');
    if (const BoxButton button = SafeButton(style); button.id != IDOK)
        line += QStringLiteral(" (nobody to ask: ") + WithoutMnemonic(HostText(button.text)) + u')';
    std::fprintf(stderr, "%s\n", line.toUtf8().constData());
}

} // namespace

void AnswerMessageBox(int button) {
    if (!OpenBoxes().empty())
        EndDialog(OpenBoxes().back(), button);
}

} // namespace ui

using namespace ui;

int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT style) {
    const HWND stoodBefore = owner ? owner : ActiveTopLevel();
    const HWND box = UnlessOutOfMemory<HWND>(nullptr, [&] {
        return NoDisplay() ? nullptr : MakeBox(stoodBefore, HostText(text), caption, style);
    });
    if (TellsOfFailure(style, box))
        NoteFailure();
    if (!box) {
        PrintBox(HostText(text), caption, style);
        return 0;
    }
    OpenBoxes().push_back(box);
    if (TestHooks().messageBox)
        TestHooks().messageBox({text ? text : u"", caption ? caption : u"", style, box});
    const LONG_PTR answer = RunUntilEnded(box, owner);
    std::erase(OpenBoxes(), box);
    return answer == IDCANCEL ? SafeButton(style).id : static_cast<int>(answer);
}

void MessageBeep(UINT) {
    if (!NoDisplay())
        QApplication::beep();
}
