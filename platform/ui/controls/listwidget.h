// The list view's widget: a table of rows under a details view and an icons view that share one selection.
#pragma once

#include <QBasicTimer>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QPointer>
#include <QStringList>
#include <QWidget>

#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/controls/listmodel.h"

class QAbstractItemView;

namespace ui {

class DetailsView;
class IconsView;

class ListWidget : public QWidget {
public:
    ListWidget(WindowObject& window, QWidget* parent);

    // ---- what it shows (listwidget.cpp) ----
    void SetName(const QString& name); // for assistive programs
    DWORD Style() const;               // the window's
    DWORD View() const { return Style() & LVS_TYPEMASK; }
    bool CheckBoxes() const { return extendedStyle & LVS_EX_CHECKBOXES; }
    bool FullRow() const { return extendedStyle & LVS_EX_FULLROWSELECT; }
    QAbstractItemView* CurrentView() const;
    HIMAGELIST Images() const { return View() == LVS_ICON ? normalImages : smallImages; }
    bool HasKeyboard() const; // the focus is here, in a view or in the label editor
    // After the window style, the extended style, an image list or the font has changed.
    void ApplyStyle();
    // The widths that the program has set are wishes: see listcolumns.cpp.
    void ApplyColumnWidths();
    void ShareRoom();
    // The user has moved a divider: from then on the columns stay as they were left.
    void TakeColumnWidth(int column, int width);
    // Brings the views in step after the model was reset: selection, focus, scrolling to that top row.
    void ShowRows(int top);
    void SetRedraw(bool on);

    int RowHeight() const; // all views but large icons
    int TopRow() const;
    int RowsPerPage() const;
    void EnsureVisible(int row);
    void DeleteAllRows();
    int pendingTop = 0;  // the top row to be, while the views are detached
    int pendingRow = -1; // the same for the icon views: the row last asked for

    // ---- selection, focus and checks (listselection.cpp) ----
    // Each row that changes is told to the parent once, selections that end before those that begin.
    void SetRowState(int row, UINT state, UINT mask);
    // Without a focused row the keyboard begins at the selected one; the host would choose the first.
    void BeginAtSelection();
    void TakeViewSelection(); // what the user has changed in the view
    bool ToggleCheckAt(const QPoint& point);
    bool ToggleFocusedCheck();
    int RowAt(const QPoint& point) const; // container coordinates; -1 for none
    QRect CellRect(int row) const;        // of its first column, container coordinates

    // ---- label editing (labeledit.cpp) ----
    bool EditLabel(int row);
    void FinishLabelEdit(bool accept);
    // A tap on the label of the one selected row begins an edit when no second one follows soon.
    void LabelPressed(const QPoint& point);
    void LabelReleased(const QPoint& point);
    void ForgetLabelTap();

    HWND handle;
    HWND header = nullptr;
    ListModel* model;
    QItemSelectionModel* selection;
    DetailsView* details;
    IconsView* icons;
    HIMAGELIST normalImages = nullptr;
    HIMAGELIST smallImages = nullptr;
    DWORD extendedStyle = 0;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // False when the parent's answer to the notification changed the rows: numbers taken before are void.
    bool StoreState(int row, UINT state);
    void MirrorRow(int row);
    void MirrorAll();
    void PlaceViews();

    const std::vector<int>& NeededWidths();

    std::vector<int> needed; // of columns, for the contents of that number
    unsigned neededFor = 0;
    bool widthsChosen = false; // by the user
    bool sharing = false;

    bool mirroring = false; // the selection model is following the rows, not the other way round
    bool takeQueued = false;
    QPointer<QLineEdit> editor;
    int editedRow = -1;
    int tappedRow = -1;
    bool focusedByTap = false; // the tap that is on its way gave the list the focus, and does no more
    QBasicTimer tapTimer;
};

// Where things are in a cell.
struct CellLayout {
    QRect check; // empty when there is none
    QRect image;
    QRect label; // as wide as the text
};
CellLayout LayOutCell(const ListWidget& list, const QRect& cell, int row, int column);
// A name beside or below its icon, broken between words where that is possible; the last line ends in an
// ellipsis when there would be too many.
QStringList LabelLines(const QFont& font, const QString& text, int room);
// The width in which the column shortens no text, over all rows and in the header.
int ContentsWidth(const ListWidget& list, int column);
// The details view's stripes and whole-row selection; it comes before the row's cells.
void PaintRowBackground(const ListWidget& list, QPainter& painter, const QRect& rect, int row);
void PaintCell(const ListWidget& list, QPainter& painter, const QRect& cell, int row, int column);

} // namespace ui
