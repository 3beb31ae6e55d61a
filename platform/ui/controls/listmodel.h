// A list view's rows and columns, the one table behind all of its views.
#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <unordered_map>
#include <vector>

#include "platform/controls.h"

namespace ui {

// The state image of a row with a check box.
constexpr UINT kUnchecked = 1u << 12;
constexpr UINT kChecked = 2u << 12;

struct ListRow {
    std::vector<QString> texts; // as many as were set
    int image = 0;
    LPARAM param = 0;
    UINT state = 0; // LVIS_...
};

struct ListColumn {
    QString title;
    int alignment = LVCFMT_LEFT;
    int headerFormat = 0; // HDF_...
    int width = 0;        // pixels
};

class ListModel : public QAbstractTableModel {
public:
    using QAbstractTableModel::QAbstractTableModel;

    int RowCount() const { return static_cast<int>(rows.size()); }
    bool HasRow(int row) const { return row >= 0 && row < RowCount(); }
    const ListRow& Row(int row) const { return rows[static_cast<std::size_t>(row)]; }
    QString Text(int row, int column) const;
    const std::vector<ListColumn>& Columns() const { return columns; }
    ListColumn& Column(int column) { return columns[static_cast<std::size_t>(column)]; }
    bool HasColumn(int column) const { return column >= 0 && column < static_cast<int>(columns.size()); }
    int SelectedCount() const { return selectedCount; }
    int FocusedRow() const; // -1 for none
    // The first row after `row` that is selected (or any, by the mask of 0); -1 for none.
    int NextRow(int row, UINT stateMask) const;
    // Constant time; -1 when absent. The first of several with that parameter.
    int RowOfParam(LPARAM param);

    int InsertRow(int position, ListRow row);
    void DeleteAllRows();
    int InsertColumn(int position, ListColumn column);
    void SetText(int row, int column, const QString& text);
    void SetImage(int row, int image);
    void SetParam(int row, LPARAM param);
    void SetState(int row, UINT state); // tells the views nothing about selection and focus
    // order[i] is the old index of what becomes row i.
    void Reorder(const std::vector<int>& order);
    void ColumnChanged(int column);
    // What assistive programs say of rows with that image.
    void NameImage(int image, const QString& name) { imageNames[image] = name; }

    // While quiet, the views are told nothing. The first change of the rows in that time empties them for as
    // long as it lasts, so that they never ask for a row that is gone.
    void SetQuiet(bool on);
    bool Quiet() const { return quiet; }
    bool Detached() const { return detached; }

    // Grows with every change of the row order: a row number taken before it means nothing any more.
    unsigned generation = 0;
    // Grows with every change of what a cell holds.
    unsigned contents = 0;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    ListRow& RowAt(int row) { return rows[static_cast<std::size_t>(row)]; }
    void Detach();
    void Changed(int row, int column);

    std::vector<ListRow> rows;
    std::vector<ListColumn> columns;
    std::unordered_map<LPARAM, int> rowOfParam;
    std::unordered_map<int, QString> imageNames;
    bool paramsStale = false;
    bool quiet = false;
    bool detached = false;
    int selectedCount = 0;
};

} // namespace ui
