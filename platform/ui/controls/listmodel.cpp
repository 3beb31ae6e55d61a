#include "platform/ui/controls/listmodel.h"

#include <algorithm>
#include <utility>

namespace ui {

namespace {

constexpr std::size_t kFirstRows = 16;

} // namespace

int ListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || detached ? 0 : RowCount();
}

// A list without columns still shows its rows' names in the icon views.
int ListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : std::max(1, static_cast<int>(columns.size()));
}

QVariant ListModel::data(const QModelIndex& index, int role) const {
    if (!HasRow(index.row()))
        return QVariant();
    if (role == Qt::DisplayRole)
        return Text(index.row(), index.column());
    if (role == Qt::AccessibleDescriptionRole && index.column() == 0) {
        const auto name = imageNames.find(Row(index.row()).image);
        return name == imageNames.end() ? QVariant() : QVariant(name->second);
    }
    const UINT stateImage = Row(index.row()).state & LVIS_STATEIMAGEMASK;
    if (role == Qt::CheckStateRole && index.column() == 0 && stateImage) // for assistive programs
        return stateImage == 2u << 12 ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::TextAlignmentRole && HasColumn(index.column())) {
        const int alignment = columns[static_cast<std::size_t>(index.column())].alignment;
        return int((alignment == LVCFMT_RIGHT ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    return QVariant();
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && HasColumn(section))
        return columns[static_cast<std::size_t>(section)].title;
    if (orientation == Qt::Horizontal && role == Qt::AccessibleTextRole && HasColumn(section))
        return columns[static_cast<std::size_t>(section)].title.isEmpty()
                   ? QStringLiteral("Column %1").arg(section + 1)
                   : columns[static_cast<std::size_t>(section)].title;
    if (orientation == Qt::Horizontal && role == Qt::AccessibleDescriptionRole && HasColumn(section)) {
        const int format = columns[static_cast<std::size_t>(section)].headerFormat;
        return format & HDF_SORTUP     ? QStringLiteral("sorted ascending")
               : format & HDF_SORTDOWN ? QStringLiteral("sorted descending")
                                       : QString();
    }
    return QVariant();
}

// Assistive programs learn of a check box here; the list toggles it by itself.
Qt::ItemFlags ListModel::flags(const QModelIndex& index) const {
    const bool checkable = index.column() == 0 && data(index, Qt::CheckStateRole).isValid();
    return QAbstractTableModel::flags(index) | (checkable ? Qt::ItemIsUserCheckable : Qt::NoItemFlags);
}

QString ListModel::Text(int row, int column) const {
    const std::vector<QString>& texts = Row(row).texts;
    const auto index = static_cast<std::size_t>(column);
    return column >= 0 && index < texts.size() ? texts[index] : QString();
}

int ListModel::FocusedRow() const {
    return NextRow(-1, LVIS_FOCUSED);
}

int ListModel::NextRow(int row, UINT stateMask) const {
    for (row = std::max(row, -1) + 1; row < RowCount(); ++row)
        if ((Row(row).state & stateMask) == stateMask)
            return row;
    return -1;
}

int ListModel::RowOfParam(LPARAM param) {
    if (paramsStale) {
        rowOfParam.clear();
        for (int row = 0; row < RowCount(); ++row)
            rowOfParam.try_emplace(Row(row).param, row);
        paramsStale = false;
    }
    const auto found = rowOfParam.find(param);
    return found == rowOfParam.end() ? -1 : found->second;
}

int ListModel::InsertRow(int position, ListRow row) {
    Detach();
    position = std::clamp(position, 0, RowCount());
    // Whatever may run out of memory is done first, so that the rows stay as they were when it does.
    if (rows.size() == rows.capacity())
        rows.reserve(std::max<std::size_t>(kFirstRows, 2 * rows.size()));
    const bool paramsKnown = !std::exchange(paramsStale, true) && position == RowCount();
    if (paramsKnown)
        rowOfParam.try_emplace(row.param, position);
    if (!quiet)
        beginInsertRows({}, position, position);
    ++generation;
    ++contents;
    paramsStale = !paramsKnown;
    selectedCount += (row.state & LVIS_SELECTED) != 0;
    rows.insert(rows.begin() + position, std::move(row));
    if (!quiet)
        endInsertRows();
    return position;
}

void ListModel::DeleteAllRows() {
    Detach();
    ++generation;
    ++contents;
    if (!quiet)
        beginResetModel();
    rows.clear();
    rowOfParam.clear();
    paramsStale = false;
    selectedCount = 0;
    if (!quiet)
        endResetModel();
}

int ListModel::InsertColumn(int position, ListColumn column) {
    const int count = static_cast<int>(columns.size());
    position = std::clamp(position, 0, count);
    // The first column takes the place of the one that is always there, and a column may land between texts.
    ++contents;
    beginResetModel();
    columns.insert(columns.begin() + position, std::move(column));
    for (ListRow& row : rows)
        if (count > 0 && static_cast<std::size_t>(position) < row.texts.size())
            row.texts.insert(row.texts.begin() + position, QString());
    endResetModel();
    return position;
}

void ListModel::SetText(int row, int column, const QString& text) {
    std::vector<QString>& texts = RowAt(row).texts;
    const auto index = static_cast<std::size_t>(column);
    if (index >= texts.size())
        texts.resize(index + 1);
    texts[index] = text;
    ++contents;
    Changed(row, column);
}

void ListModel::SetImage(int row, int image) {
    RowAt(row).image = image;
    Changed(row, 0);
}

void ListModel::SetParam(int row, LPARAM param) {
    RowAt(row).param = param;
    paramsStale = true;
}

void ListModel::SetState(int row, UINT state) {
    const UINT previous = std::exchange(RowAt(row).state, state);
    selectedCount += ((state & LVIS_SELECTED) != 0) - ((previous & LVIS_SELECTED) != 0);
    if ((previous ^ state) & LVIS_STATEIMAGEMASK)
        Changed(row, 0);
}

void ListModel::Reorder(const std::vector<int>& order) {
    Detach();
    ++generation;
    if (!quiet)
        beginResetModel();
    std::vector<ListRow> sorted;
    sorted.reserve(rows.size());
    for (int row : order)
        sorted.push_back(std::move(RowAt(row)));
    rows = std::move(sorted);
    paramsStale = true;
    if (!quiet)
        endResetModel();
}

void ListModel::ColumnChanged(int column) {
    Q_EMIT headerDataChanged(Qt::Horizontal, column, column);
}

void ListModel::SetQuiet(bool on) {
    quiet = on;
    if (on || !detached)
        return;
    beginResetModel();
    detached = false;
    endResetModel();
}

void ListModel::Detach() {
    if (!quiet || detached)
        return;
    beginResetModel();
    detached = true;
    endResetModel();
}

void ListModel::Changed(int row, int column) {
    if (!quiet && column < columnCount())
        Q_EMIT dataChanged(index(row, column), index(row, column));
}

} // namespace ui
