#include "platform/ui/dialogs/pickerwidget.h"

#include <QApplication>
#include <QBoxLayout>
#include <QComboBox>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QStyle>

#include "platform/base/paths.h"
#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/core/accessible.h"
#include "platform/ui/dialogs/pickerfiles.h"
#include "platform/ui/drawing/gdiobjects.h"
#include "platform/ui/drawing/look.h"
#include "platform/ui/screen/screen.h"

namespace ui {

namespace {

const QString kDocuments = QStringLiteral("\\My Documents");
const QString kDevice = QStringLiteral("\\");
// At 96 dots an inch.
constexpr int kPickerMargin = 6;
constexpr int kPickerButtonHeight = 30;
constexpr int kRoomForColumns = 60; // average characters; narrower, only the names are shown

// Empty for a path that leads nowhere.
QString HostPathOf(const QString& devicePath) {
    std::string host;
    return HostPath(reinterpret_cast<const WCHAR*>(devicePath.utf16()), host) ? QString::fromStdString(host)
                                                                              : QString();
}

QString DevicePathOf(const QString& host) {
    return QString::fromStdU16String(DevicePath(host.toStdString()));
}

} // namespace

PickerWidget::PickerWidget(QWidget* parent) : QWidget(parent) {
    TakeOwnInput(this);
    GiveRole(this, QAccessible::Dialog);
    setFont(FontOf(nullptr));
    setAutoFillBackground(true);
    MakeFiles();
    auto* const layout = new QVBoxLayout(this);
    const int margin = Scaled(kPickerMargin);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(margin);
    layout->addWidget(MakePlaces());
    layout->addWidget(MakeFolderRow());
    layout->addWidget(files, 1);
    layout->addWidget(MakeNameRows());
}

QWidget* PickerWidget::MakePlaces() {
    auto* const row = new QWidget(this);
    auto* const layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->setSpacing(Scaled(kPickerMargin));
    const auto add = [&](const QString& name, const QString& hostFolder) {
        auto* const button = new QPushButton(name, row);
        button->setMinimumHeight(Scaled(kPickerButtonHeight));
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        button->setToolTip(DevicePathOf(hostFolder));
        connect(button, &QPushButton::clicked, this, [this, hostFolder] { ShowFolder(hostFolder); });
        layout->addWidget(button);
    };
    add(tr("Documents"), HostPathOf(kDocuments));
    add(tr("Device"), HostPathOf(kDevice));
    add(tr("Card"), QDir::homePath());
    return row;
}

QWidget* PickerWidget::MakeFolderRow() {
    auto* const row = new QWidget(this);
    auto* const layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    up = new QPushButton(style()->standardIcon(QStyle::SP_FileDialogToParent), QString(), row);
    up->setObjectName(QStringLiteral("pickerUp"));
    up->setToolTip(tr("Parent folder"));
    up->setAccessibleName(up->toolTip());
    up->setMinimumSize(Scaled(kPickerButtonHeight), Scaled(kPickerButtonHeight));
    connect(up, &QPushButton::clicked, this, &PickerWidget::GoUp);
    folderLabel = new QLabel(row);
    folderLabel->setTextFormat(Qt::PlainText);
    folderLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    layout->addWidget(up);
    layout->addWidget(folderLabel, 1);
    return row;
}

void PickerWidget::MakeFiles() {
    model = new PickerFiles(this);
    model->setFilter(QDir::AllDirs | QDir::Files | QDir::NoDotAndDotDot);
    model->setNameFilterDisables(false);
    files = new QTreeView(this);
    files->setObjectName(QStringLiteral("pickerFiles"));
    files->setAccessibleName(tr("Files"));
    files->setHeader(new PickerHeader(files));
    files->setModel(model);
    files->setRootIsDecorated(false);
    files->setItemsExpandable(false);
    files->setUniformRowHeights(true);
    files->setIconSize(QSize(Scaled(16), Scaled(16)));
    files->setIndentation(0);
    files->setAllColumnsShowFocus(true);
    files->setSortingEnabled(true);
    files->sortByColumn(0, Qt::AscendingOrder);
    files->setEditTriggers(QAbstractItemView::NoEditTriggers);
    files->setColumnHidden(kTypeColumn, true);
    files->header()->setStretchLastSection(false);
    files->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    files->header()->setSectionsMovable(false);
    connect(files, &QTreeView::clicked, this, &PickerWidget::Tapped);
    connect(files, &QTreeView::activated, this, &PickerWidget::Opened);
}

QWidget* PickerWidget::MakeNameRows() {
    auto* const rows = new QWidget(this);
    auto* const layout = new QVBoxLayout(rows);
    layout->setContentsMargins({});
    layout->setSpacing(Scaled(kPickerMargin));
    auto* const label = new QLabel(tr("&Name:"), rows);
    nameEdit = new QLineEdit(rows);
    nameEdit->setObjectName(QStringLiteral("pickerName"));
    nameEdit->setAccessibleName(tr("Name"));
    label->setBuddy(nameEdit);
    problemLabel = new QLabel(rows);
    problemLabel->setObjectName(QStringLiteral("pickerProblem"));
    problemLabel->setTextFormat(Qt::PlainText);
    problemLabel->setWordWrap(true);
    look::Recolour(problemLabel, QPalette::WindowText, look::Warning);
    problemLabel->hide();
    filterBox = new QComboBox(rows);
    filterBox->setAccessibleName(tr("Type"));
    filterBox->view()->setAccessibleName(tr("Types"));
    filterBox->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    acceptButton = new QPushButton(rows);
    acceptButton->setObjectName(QStringLiteral("pickerAccept"));
    auto* const cancel = new QPushButton(tr("Cancel"), rows);
    cancel->setObjectName(QStringLiteral("pickerCancel"));
    for (QWidget* const control : std::initializer_list<QWidget*>{nameEdit, filterBox, acceptButton, cancel})
        control->setMinimumHeight(Scaled(kPickerButtonHeight));
    auto* const nameRow = new QHBoxLayout;
    nameRow->addWidget(label);
    nameRow->addWidget(nameEdit, 1);
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(acceptButton);
    buttons->addWidget(cancel);
    buttonRow = new QBoxLayout(QBoxLayout::LeftToRight);
    buttonRow->addWidget(filterBox, 1);
    buttonRow->addLayout(buttons);
    layout->addLayout(nameRow);
    layout->addWidget(problemLabel);
    layout->addLayout(buttonRow);
    connect(acceptButton, &QPushButton::clicked, this, &PickerWidget::Accept);
    connect(cancel, &QPushButton::clicked, this, &PickerWidget::Cancel);
    connect(nameEdit, &QLineEdit::textEdited, problemLabel, &QWidget::hide);
    connect(filterBox, &QComboBox::currentIndexChanged, this,
            [this](int index) { model->setNameFilters(request.filters.value(index).patterns); });
    return rows;
}

void PickerWidget::Start(const PickerRequest& wanted, std::function<void(const QString&)> finish) {
    request = wanted;
    finished = std::move(finish);
    setAccessibleName(request.save ? tr("Save As") : tr("Open"));
    acceptButton->setText(request.save ? tr("&Save") : tr("&Open"));
    filterBox->clear();
    for (const PickerFilter& filter : request.filters)
        filterBox->addItem(filter.name);
    filterBox->setEnabled(filterBox->count() > 1);
    const QString documents = HostPathOf(kDocuments);
    ShowFolder(QFileInfo(documents).isDir() ? documents : HostPathOf(kDevice));
    nameEdit->setText(request.proposedName);
    // The proposed name is an extension as a rule: what is typed comes before it.
    nameEdit->setCursorPosition(0);
    setFocusProxy(nameEdit);
    nameEdit->setFocus();
}

void PickerWidget::ShowFolder(const QString& hostFolder) {
    folder = QDir::cleanPath(hostFolder);
    files->setRootIndex(model->setRootPath(folder));
    files->scrollToTop();
    const QString devicePath = DevicePathOf(folder);
    folderLabel->setText(devicePath);
    folderLabel->setToolTip(devicePath);
    // The device's own root is the top, though the host has folders above it.
    up->setEnabled(devicePath != kDevice && !QDir(folder).isRoot());
    problemLabel->hide();
}

void PickerWidget::GoUp() {
    ShowFolder(QFileInfo(folder).path());
}

void PickerWidget::Tapped(const QModelIndex& index) {
    if (model->isDir(index))
        ShowFolder(model->filePath(index));
    else
        nameEdit->setText(model->fileName(index));
    problemLabel->hide();
}

void PickerWidget::Opened(const QModelIndex& index) {
    Tapped(index);
    if (!model->isDir(index))
        Accept();
}

void PickerWidget::Complain(const QString& problem) {
    problemLabel->setText(problem);
    problemLabel->show();
    nameEdit->setFocus();
}

QString PickerWidget::HostPathOfName(const QString& name) const {
    const bool absolute = name.startsWith(u'\\') || name.startsWith(u'/');
    return HostPathOf(absolute ? name : folder + u'/' + name);
}

// The proposed name is often an extension only. Whoever types behind it, or types an extension although it is
// there, still means one extension at the end.
QString PickerWidget::NameAsMeant() const {
    QString name = nameEdit->text().trimmed();
    const QString& proposed = request.proposedName;
    if (!proposed.startsWith(u'.') || name == proposed)
        return name;
    if (name.startsWith(proposed, Qt::CaseInsensitive))
        return name.mid(proposed.size()).trimmed();
    if (name.endsWith(proposed + proposed, Qt::CaseInsensitive))
        name.chop(proposed.size());
    return name;
}

void PickerWidget::Accept() {
    QString name = NameAsMeant();
    if (name.isEmpty())
        return Complain(tr("Enter a name."));
    const QString asTyped = HostPathOfName(name);
    if (QFileInfo(asTyped).isDir()) {
        nameEdit->clear();
        return ShowFolder(asTyped);
    }
    if (!request.extension.isEmpty() && !QFileInfo(name.replace(u'\\', u'/')).fileName().contains(u'.'))
        name += u'.' + request.extension;
    const QString chosen = HostPathOfName(name);
    const QFileInfo info(chosen);
    if (chosen.isEmpty() || !info.dir().exists() || info.isDir())
        return Complain(tr("There is no such folder."));
    if (request.mustExist && !info.exists())
        return Complain(tr("There is no file “%1” here.").arg(info.fileName()));
    const QString path = QDir::cleanPath(chosen);
    if (DevicePathOf(path).size() >= request.room)
        return Complain(tr("The name is too long, together with its folders."));
    if (finished)
        std::exchange(finished, nullptr)(path);
}

void PickerWidget::Cancel() {
    if (finished)
        std::exchange(finished, nullptr)(QString());
}

void PickerWidget::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape:
        return Cancel();
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (files->hasFocus())
            return; // it has opened what was selected
        if (auto* const button = qobject_cast<QPushButton*>(focusWidget()))
            return button->click();
        return Accept();
    case Qt::Key_Backspace: // the name's own is taken by the name
        if (up->isEnabled())
            GoUp();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void PickerWidget::FitWidth() {
    const bool room = width() >= kRoomForColumns * fontMetrics().averageCharWidth();
    buttonRow->setDirection(room ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    files->setColumnHidden(kSizeColumn, !room);
    files->setColumnHidden(kDateColumn, !room);
    const int margin = Scaled(4 * kPickerMargin);
    const QDateTime longDate(QDate(2022, 12, 28), QTime(22, 58, 58));
    files->setColumnWidth(kSizeColumn, fontMetrics().horizontalAdvance(FileSizeText(1 << 30)) + margin);
    files->setColumnWidth(kDateColumn, fontMetrics().horizontalAdvance(FileDateText(longDate)) + margin);
}

void PickerWidget::resizeEvent(QResizeEvent*) {
    FitWidth();
}

} // namespace ui
