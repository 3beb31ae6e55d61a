// The header of a list view's columns: a window of its own, child of the list.
#pragma once

#include <QHeaderView>

#include "platform/ui/controls/listwidget.h"

namespace ui {

class HeaderView : public QHeaderView {
public:
    HeaderView(WindowObject& window, ListWidget& list);
    QSize sizeHint() const override;
    // What the keys do while the header has the focus; false for a key that means nothing to it.
    bool TakeKey(WPARAM key);
    void FocusChanged();

    HIMAGELIST images = nullptr;
    ListWidget& list;

protected:
    void paintEvent(QPaintEvent* event) override;
    void paintSection(QPainter* painter, const QRect& rect, int section) const override;
    QSize sectionSizeFromContents(int section) const override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void Mark(int section);
    void DrawByOwner(QPainter& painter, const QRect& rect, int section) const;

    HWND handle;
    int pressed = -1;
    int marked = 0;
};

void RegisterHeaderClass();

} // namespace ui
