// The two edit boxes behind one face: a line and a text of many lines.
#pragma once

#include <QLineEdit>
#include <QPlainTextEdit>
#include <utility>

#include "platform/ui/controls/controlsupport.h"

namespace ui {

class EditBox {
public:
    virtual ~EditBox() = default;

    // Text that was set and not edited since reads back unchanged, whatever the host's widget makes of it.
    QString Text() const { return edited ? CurrentText() : exact; }
    void SetText(const QString& text);

    virtual std::pair<int, int> Selection() const = 0; // offsets in Text()
    virtual void Select(int start, int end) = 0;       // clipped to the text
    virtual void SetLimit(int) {}
    virtual bool CanUndo() const = 0;
    virtual void EmptyUndoBuffer() = 0;
    virtual void Edit(UINT message) = 0; // WM_CUT, WM_COPY, WM_PASTE, WM_UNDO

protected:
    virtual QString CurrentText() const = 0;
    virtual void ShowText(const QString& text) = 0; // empties the undo buffer too
    void TakeEdit(HWND window);                     // the user has changed the text

private:
    QString exact;
    bool edited = false;
    bool showing = false;
};

class LineBox : public QLineEdit, public EditBox {
public:
    LineBox(WindowObject& window, QWidget* parent);

    std::pair<int, int> Selection() const override;
    void Select(int start, int end) override;
    void SetLimit(int characters) override;
    bool CanUndo() const override { return isUndoAvailable(); }
    void EmptyUndoBuffer() override;
    void Edit(UINT message) override;

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    QString CurrentText() const override { return text(); }
    void ShowText(const QString& text) override;

private:
    int limit;
};

class TextBox : public QPlainTextEdit, public EditBox {
public:
    TextBox(WindowObject& window, QWidget* parent);

    std::pair<int, int> Selection() const override;
    void Select(int start, int end) override;
    bool CanUndo() const override { return document()->isUndoAvailable(); }
    void EmptyUndoBuffer() override { document()->clearUndoRedoStacks(); }
    void Edit(UINT message) override;

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    QString CurrentText() const override;
    void ShowText(const QString& text) override;

private:
    QString LineEndOf(const QTextBlock& block) const;
    int OffsetOf(int position) const;
    int PositionOf(int offset) const;

    int commonLineEnd; // of lines that the user adds
};

} // namespace ui
