// The file picker's face: places, the folder's files, the name. It fills the screen below the title bar.
#pragma once

#include <QFileSystemModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeView>
#include <QWidget>
#include <functional>

class QBoxLayout;
class QComboBox;

namespace ui {

struct PickerFilter {
    QString name; // "Backup Files (*.bkp)"
    QStringList patterns;
};

struct PickerRequest {
    bool save = false;
    bool mustExist = false;
    QString proposedName;
    QString extension; // without a dot; given to a name without extension
    int room = 0;      // characters of a device path, terminator included
    QList<PickerFilter> filters;
};

// Parts that tests and assistive programs look for are named: "pickerName", "pickerFiles", "pickerAccept",
// "pickerCancel", "pickerUp", "pickerProblem".
class PickerWidget : public QWidget {
    Q_OBJECT
public:
    explicit PickerWidget(QWidget* parent);
    // `finish` is called once, with the host path chosen or an empty one for Cancel.
    void Start(const PickerRequest& wanted, std::function<void(const QString&)> finish);
    // As the buttons do.
    void Accept();
    void Cancel();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* MakePlaces();
    QWidget* MakeFolderRow();
    QWidget* MakeNameRows();
    void MakeFiles();
    void ShowFolder(const QString& hostFolder);
    void GoUp();
    void Tapped(const QModelIndex& index);
    void Opened(const QModelIndex& index);
    void Complain(const QString& problem);
    QString NameAsMeant() const;
    void FitWidth();
    QString HostPathOfName(const QString& name) const; // empty when it leads nowhere

    PickerRequest request;
    std::function<void(const QString&)> finished;
    QString folder; // on the host
    QFileSystemModel* model = nullptr;
    QTreeView* files = nullptr;
    QPushButton* up = nullptr;
    QLabel* folderLabel = nullptr;
    QLabel* problemLabel = nullptr;
    QLineEdit* nameEdit = nullptr;
    QComboBox* filterBox = nullptr;
    QPushButton* acceptButton = nullptr;
    QBoxLayout* buttonRow = nullptr; // the filter may stand above the buttons
};

} // namespace ui
