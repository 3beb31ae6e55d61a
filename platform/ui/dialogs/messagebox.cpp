// The message box: a card in the middle of the screen, made of a dialog and its buttons.
#include <QApplication>
#include <QStyle>
#include <cstdio>

#include "platform/base/outofmemory.h"
#include "platform/process.h"
#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/core/accessible.h"
#include "platform/ui/core/display.h"
#include "platform/ui/core/testhooks.h"
#include "platform/ui/dialogs/dialogcore.h"
#include "platform/ui/dialogs/messagecard.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

// Pixels at 96 to the inch.
constexpr int kMargin = MessageCard::kMargin;
constexpr int kGap = MessageCard::kGap;
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

// Buttons of one size, in as many rows as the width asks for, at the right.
struct ButtonRows {
    ButtonRows(HWND box, int room) : count(static_cast<int>(box->children.size())) {
        button = QSize(Scaled(kButtonWidth), Scaled(kButtonHeight));
        for (HWND child : box->children)
            button = button.expandedTo(child->widget->sizeHint());
        button.setWidth(std::min(button.width(), room));
        inRow = std::clamp((room + Scaled(kGap)) / (button.width() + Scaled(kGap)), 1, std::max(1, count));
        const int rows = (count + inRow - 1) / inRow;
        size = QSize(inRow * (button.width() + Scaled(kGap)), rows * (button.height() + Scaled(kGap))) -
               QSize(Scaled(kGap), Scaled(kGap));
    }
    QRect Place(int index) const {
        return QRect(QPoint(index % inRow * (button.width() + Scaled(kGap)),
                            index / inRow * (button.height() + Scaled(kGap))),
                     button);
    }
    int count;
    int inRow;
    QSize button;
    QSize size;
};

// Lays out the card and its buttons for a screen of that size.
void FitBox(HWND box, MessageCard* card, const QSize& area) {
    const int widest = std::min(std::max(Scaled(kWidest), QFontMetrics(card->font()).averageCharWidth() * 60),
                                area.width() - 2 * Scaled(kGap));
    const ButtonRows rows(box, widest - 2 * Scaled(kMargin));
    card->Fit(QSize(widest, area.height()), rows.size);
    box->topLevel->cardSize = card->size();
    const QPoint first(card->width() - Scaled(kMargin) - rows.size.width(),
                       card->height() - Scaled(kMargin) - rows.size.height());
    for (int index = 0; index < rows.count; ++index)
        PlaceWindow(box->children[static_cast<std::size_t>(index)], rows.Place(index).translated(first));
}

HWND MakeBox(HWND owner, const QString& text, const WCHAR* caption, UINT style) {
    const HWND box =
        CreateWindowExW(0, kDialogClass, caption, WS_POPUP, 0, 0, 0, 0, owner, nullptr, nullptr, nullptr);
    if (!box)
        return nullptr;
    NewWindow unfinished(box, DestroyWindow);
    box->dialog = NewDialogData(BoxProcedure, true);
    box->userData = style;
    GiveRole(box->widget, QAccessible::AlertMessage);
    box->widget->setAccessibleDescription(text);
    auto* card = new MessageCard(box->widget, box->text, text, IconOf(style));
    card->show();
    box->dialog->scrollBars[1] = card->Bar();
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
