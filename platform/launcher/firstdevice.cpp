#include "platform/launcher/firstdevice.h"

#include <QIcon>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <unistd.h>

#include "platform/device.h"
#include "platform/errors.h"

namespace {

const QString kTitle = QStringLiteral("Pocket Strandview");

enum class Answer { Samples, Empty, Cancel };

bool UsualDeviceIsMissing() {
    const char* const named = std::getenv("STRANDVIEW_DEVICE");
    return !(named && *named) && !UseDevice({}, false) && GetLastError() == ERROR_PATH_NOT_FOUND;
}

Answer Ask() {
    const QString question =
        QStringLiteral("There is no device yet. Make one with sample databases, or an empty one?\n\n"
                       "It will be the folder %1.");
    QMessageBox box(QMessageBox::Question, kTitle, question.arg(DeviceFolder().c_str()));
    box.setWindowIcon(QIcon::fromTheme(QStringLiteral("pocket-strandview")));
    const auto* const samples = box.addButton(QStringLiteral("&Samples"), QMessageBox::YesRole);
    const auto* const empty = box.addButton(QStringLiteral("&Empty"), QMessageBox::NoRole);
    box.addButton(QMessageBox::Cancel);
    box.exec();
    return box.clickedButton() == samples ? Answer::Samples
           : box.clickedButton() == empty ? Answer::Empty
                                          : Answer::Cancel;
}

// What went wrong, empty when nothing did.
QString FillFolder(const QString& maker, const std::string& folder) {
    QProcess process;
    process.start(maker, {QString::fromStdString(folder)});
    if (!process.waitForFinished(-1))
        return QStringLiteral("%1: %2").arg(maker, process.errorString());
    const bool filled = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return filled ? QString() : QStringLiteral("%1 failed\n").arg(maker) + process.readAllStandardError();
}

// Made beside its place and moved there, so that a device is there whole or not at all. What went wrong has
// been said on standard error, too.
QString MakeSampleDevice(const QString& maker) {
    namespace fs = std::filesystem;
    const std::string fresh = DeviceFolder() + ".new-" + std::to_string(getpid());
    QString complaint = FillFolder(maker, fresh);
    std::error_code error;
    if (complaint.isEmpty())
        fs::rename(fresh, DeviceFolder(), error);
    // Another start may have made one meanwhile.
    if (error && !fs::exists(DeviceStorePath()))
        complaint = QStringLiteral("%1: %2").arg(DeviceFolder().c_str(), error.message().c_str());
    fs::remove_all(fresh, error);
    if (!complaint.isEmpty())
        std::fprintf(stderr, "pocket-strandview: no sample databases: %s\n", complaint.toUtf8().constData());
    return complaint;
}

} // namespace

FirstStart OfferFirstDevice(const QString& maker) {
    if (!UsualDeviceIsMissing())
        return FirstStart::GoOn;
    const Answer answer = Ask();
    if (answer != Answer::Samples)
        return answer == Answer::Empty ? FirstStart::GoOn : FirstStart::Cancelled;
    const QString complaint = MakeSampleDevice(maker);
    if (complaint.isEmpty())
        return FirstStart::GoOn;
    QMessageBox::critical(nullptr, kTitle,
                          QStringLiteral("The sample databases could not be made.\n\n") + complaint);
    return FirstStart::Failed;
}

FirstStart MakeFirstDevice(const QString& maker) {
    return !UsualDeviceIsMissing() || MakeSampleDevice(maker).isEmpty() ? FirstStart::GoOn
                                                                        : FirstStart::Failed;
}
