#include "platform/ui/controls/editbox.h"

#include <QApplication>
#include <QScrollBar>
#include <QTextBlock>
#include <algorithm>
#include <limits>

#include "platform/ui/drawing/look.h"

namespace ui {

namespace {

// How a block of the host's document ended in the text that was set, kept as the block's user state: CR LF,
// or the one character. Texts of the device hold all of these, and an edit must not change the lines beside
// it.
constexpr int kNewBlock = -1;
constexpr int kCrLf = 0;

// What the host's document breaks lines at.
bool IsLineEnd(QChar c) {
    return c == u'\n' || c == u'\r' || c == QChar::ParagraphSeparator || c == QChar(0xFDD0) ||
           c == QChar(0xFDD1);
}

template <typename Box>
void RunEditCommand(Box& box, UINT message) {
    if (message == WM_COPY)
        box.copy();
    else if (box.isReadOnly())
        return;
    else if (message == WM_CUT)
        box.cut();
    else if (message == WM_PASTE)
        box.paste();
    else
        box.undo();
}

// The host's menu for editing has just opened.
void NameOpenMenu() {
    if (QWidget* menu = QApplication::activePopupWidget())
        menu->setAccessibleName(QStringLiteral("Edit"));
}

} // namespace

void EditBox::SetText(const QString& text) {
    exact = text;
    edited = false;
    showing = true;
    ShowText(text);
    showing = false;
}

void EditBox::TakeEdit(HWND window) {
    if (showing)
        return;
    edited = true;
    CommandToParent(window, EN_CHANGE);
}

// ---- a line ----

LineBox::LineBox(WindowObject& window, QWidget* parent)
    : QLineEdit(parent), limit(std::numeric_limits<int>::max()) {
    const HWND handle = &window;
    setFrame(window.style & WS_BORDER);
    setMaxLength(limit);
    setEchoMode(window.style & ES_PASSWORD ? Password : Normal);
    if (window.style & ES_READONLY) {
        setReadOnly(true);
        look::Recolour(this, QPalette::Base, look::Window);
    }
    SetText(window.text);
    connect(this, &QLineEdit::textEdited, this, [this, handle] { TakeEdit(handle); });
}

void LineBox::ShowText(const QString& text) {
    // The limit is one of typing: a longer text may be set, and is not cut.
    setMaxLength(std::max(limit, static_cast<int>(text.size())));
    setText(text);
    setCursorPosition(0);
}

std::pair<int, int> LineBox::Selection() const {
    if (!hasSelectedText())
        return {cursorPosition(), cursorPosition()};
    return {selectionStart(), selectionEnd()};
}

void LineBox::Select(int start, int end) {
    const int length = static_cast<int>(text().size());
    start = std::clamp(start, 0, length);
    setSelection(start, std::clamp(end, 0, length) - start);
}

void LineBox::SetLimit(int characters) {
    limit = characters;
    setMaxLength(std::max(limit, static_cast<int>(text().size())));
}

void LineBox::EmptyUndoBuffer() {
    auto [start, end] = Selection();
    setText(text());
    Select(start, end);
}

void LineBox::Edit(UINT message) {
    RunEditCommand(*this, message);
}

void LineBox::contextMenuEvent(QContextMenuEvent* event) {
    QLineEdit::contextMenuEvent(event);
    NameOpenMenu();
}

// ---- many lines ----

TextBox::TextBox(WindowObject& window, QWidget* parent) : QPlainTextEdit(parent), commonLineEnd(kCrLf) {
    const HWND handle = &window;
    setFrameShape(window.style & WS_BORDER ? QFrame::StyledPanel : QFrame::NoFrame);
    setTabChangesFocus(true);
    if (window.style & WS_VSCROLL)
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    if (window.style & ES_READONLY) {
        setReadOnly(true);
        look::Recolour(this, QPalette::Base, look::Window);
    }
    TakeOwnInput(verticalScrollBar());
    TakeOwnInput(horizontalScrollBar());
    SetText(window.text);
    connect(this, &QPlainTextEdit::textChanged, this, [this, handle] { TakeEdit(handle); });
}

void TextBox::ShowText(const QString& text) {
    setPlainText(text);
    commonLineEnd = kNewBlock;
    QTextBlock block = document()->begin();
    for (qsizetype i = 0; i < text.size() && block.isValid(); ++i) {
        if (!IsLineEnd(text[i]))
            continue;
        bool pair = text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
        const int lineEnd = pair ? kCrLf : text[i].unicode();
        if (pair)
            ++i;
        if (commonLineEnd == kNewBlock)
            commonLineEnd = lineEnd;
        block.setUserState(lineEnd);
        block = block.next();
    }
    if (commonLineEnd == kNewBlock)
        commonLineEnd = kCrLf;
}

QString TextBox::LineEndOf(const QTextBlock& block) const {
    if (!block.next().isValid())
        return QString();
    const int lineEnd = block.userState() == kNewBlock ? commonLineEnd : block.userState();
    return lineEnd == kCrLf ? QStringLiteral("\r\n") : QString(QChar(static_cast<char16_t>(lineEnd)));
}

QString TextBox::CurrentText() const {
    QString text;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next())
        text += block.text() + LineEndOf(block);
    return text;
}

int TextBox::OffsetOf(int position) const {
    int offset = 0;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        if (block.contains(position))
            return offset + position - block.position();
        offset += static_cast<int>(block.text().size() + LineEndOf(block).size());
    }
    return offset;
}

int TextBox::PositionOf(int offset) const {
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        const int length = static_cast<int>(block.text().size());
        if (offset <= length || !block.next().isValid())
            return block.position() + std::clamp(offset, 0, length);
        offset = std::max(0, offset - length - static_cast<int>(LineEndOf(block).size()));
    }
    return 0;
}

std::pair<int, int> TextBox::Selection() const {
    QTextCursor cursor = textCursor();
    return {OffsetOf(cursor.selectionStart()), OffsetOf(cursor.selectionEnd())};
}

void TextBox::Select(int start, int end) {
    QTextCursor cursor = textCursor();
    cursor.setPosition(PositionOf(start));
    cursor.setPosition(PositionOf(end), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
}

void TextBox::contextMenuEvent(QContextMenuEvent* event) {
    QPlainTextEdit::contextMenuEvent(event);
    NameOpenMenu();
}

void TextBox::Edit(UINT message) {
    RunEditCommand(*this, message);
}

} // namespace ui
