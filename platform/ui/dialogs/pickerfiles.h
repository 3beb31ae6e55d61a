// What the file picker lists of a folder.
#pragma once

#include <QFileSystemModel>
#include <QHeaderView>

namespace ui {

constexpr int kSizeColumn = 1;
constexpr int kTypeColumn = 2;
constexpr int kDateColumn = 3;

QString FileDateText(const QDateTime& date);
QString FileSizeText(qint64 bytes); // as the lists of the program have it

// Rows high enough for a stylus; pictures that do not depend on the host's theme.
class PickerFiles : public QFileSystemModel {
public:
    explicit PickerFiles(QObject* parent);
    QVariant data(const QModelIndex& index, int role) const override;

private:
    const QIcon folderIcon;
    const QIcon fileIcon;
};

// Its arrow points up where rows ascend, as everywhere on the device, and headings stand as their values do.
class PickerHeader : public QHeaderView {
public:
    explicit PickerHeader(QWidget* parent);

protected:
    void initStyleOptionForIndex(QStyleOptionHeader* option, int section) const override;
};

} // namespace ui
