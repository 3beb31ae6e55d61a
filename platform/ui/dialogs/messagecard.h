// What a message box shows behind its buttons.
#pragma once

#include <QIcon>
#include <QScrollBar>
#include <QTextDocument>
#include <QWidget>

namespace ui {

// Caption, icon and text. A text that is too high for the screen is scrolled.
class MessageCard : public QWidget {
public:
    // Pixels at 96 to the inch: at the edges, and between parts.
    static constexpr int kMargin = 14;
    static constexpr int kGap = 10;

    MessageCard(QWidget* parent, const QString& caption, const QString& text, const QIcon& icon);

    QScrollBar* Bar() const { return bar; }
    // Takes the size that shows all the text, within that one; `below` is what the buttons take.
    void Fit(const QSize& most, const QSize& below);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void Break(int width);
    int TextHeight() const;
    void ShowBar(int textWidth);
    QFont CaptionFont() const;
    int CaptionWidth() const;
    int CaptionHeight() const;
    int TextTop() const;
    int TextLeft() const;

    QString caption;
    QIcon icon;
    QTextDocument document;
    QScrollBar* bar;
    int shown = 0; // pixels of the text's height
};

} // namespace ui
