#include "platform/ui/dialogs/pickerfiles.h"

#include <QApplication>
#include <QDateTime>
#include <QLocale>
#include <QStyle>
#include <QStyleOptionHeader>

#include "platform/ui/screen/screen.h"

namespace ui {

namespace {

constexpr int kRowHeight = 28; // at 96 dots an inch

} // namespace

QString FileDateText(const QDateTime& date) {
    return QLocale().toString(date, QLocale::ShortFormat);
}

QString FileSizeText(qint64 bytes) {
    return QString::asprintf("%lld.%02lldKB", bytes / 1024, bytes % 1024 * 100 / 1024);
}

PickerFiles::PickerFiles(QObject* parent)
    : QFileSystemModel(parent), folderIcon(QApplication::style()->standardIcon(QStyle::SP_DirIcon)),
      fileIcon(QApplication::style()->standardIcon(QStyle::SP_FileIcon)) {}

QVariant PickerFiles::data(const QModelIndex& index, int role) const {
    if (role == Qt::SizeHintRole)
        return QSize(0, Scaled(kRowHeight));
    if (role == Qt::DecorationRole && index.column() == 0)
        return isDir(index) ? folderIcon : fileIcon;
    if (role == Qt::DisplayRole && index.column() == kDateColumn)
        return FileDateText(lastModified(index));
    if (role == Qt::DisplayRole && index.column() == kSizeColumn)
        return isDir(index) ? QString() : FileSizeText(size(index));
    if (role == Qt::TextAlignmentRole && index.column() == kDateColumn)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return QFileSystemModel::data(index, role);
}

PickerHeader::PickerHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
    setSectionsClickable(true);
    setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void PickerHeader::initStyleOptionForIndex(QStyleOptionHeader* option, int section) const {
    QHeaderView::initStyleOptionForIndex(option, section);
    if (option->sortIndicator != QStyleOptionHeader::None)
        option->sortIndicator = option->sortIndicator == QStyleOptionHeader::SortUp
                                    ? QStyleOptionHeader::SortDown
                                    : QStyleOptionHeader::SortUp;
    if (section == kSizeColumn || section == kDateColumn)
        option->textAlignment = Qt::AlignRight | Qt::AlignVCenter;
}

} // namespace ui
