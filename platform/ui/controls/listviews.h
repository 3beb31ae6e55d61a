// The host's views of a list: details (a table) and icons (large, small, or in columns).
#pragma once

#include <QListView>
#include <QTreeView>

#include "platform/ui/controls/listwidget.h"

namespace ui {

class DetailsView : public QTreeView {
public:
    explicit DetailsView(ListWidget& list);
    QModelIndex indexAt(const QPoint& point) const override;
    void doItemsLayout() override;
    int sizeHintForColumn(int column) const override; // what a double tap on its divider makes it

protected:
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                 const QModelIndex& index) const override;
    void changeEvent(QEvent* event) override;
    // A hidden view follows the shown one without a word to assistive programs.
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

private:
    ListWidget& list;
};

class IconsView : public QListView {
public:
    explicit IconsView(ListWidget& list);
    void Arrange(DWORD view);
    QSize ItemSize() const;
    void doItemsLayout() override;

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

private:
    int MostLines(int room) const; // of all names
    ListWidget& list;
};

} // namespace ui
