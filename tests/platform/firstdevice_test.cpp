// The first start with no device: what is asked, and what is made by which answer.
#include <QAbstractButton>
#include <QDir>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>
#include <optional>

#include "platform/launcher/firstdevice.h"
#include "platform/ui/core/windowsystem.h"
#include "tests/platform/hostsupport.h"

namespace {

// Presses the buttons in turn, one in each message box that comes.
class Answers {
public:
    Answers(QStringList buttons, const QDir& folder) : buttons(std::move(buttons)), folder(folder) {
        QObject::connect(&timer, &QTimer::timeout, [this] { Press(); });
        timer.start();
    }
    bool AllGiven() const { return buttons.isEmpty(); }
    bool CameBeforeAnythingWasWritten() const { return nothingWritten.value_or(false); }

private:
    void Press() {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return;
        nothingWritten = nothingWritten.value_or(folder.isEmpty());
        if (buttons.isEmpty())
            return box->reject();
        const QString wanted = buttons.takeFirst();
        for (QAbstractButton* const button : box->buttons())
            if (button->text().remove('&') == wanted)
                return button->click();
        ADD_FAILURE() << "no button " << wanted.toStdString();
        box->reject();
    }

    QStringList buttons;
    QDir folder;
    QTimer timer;
    std::optional<bool> nothingWritten; // when the first box came
};

TEST(FirstDevice, IsMadeAsTheUserAnswers) {
    const QByteArray data = qgetenv("XDG_DATA_HOME");
    const QTemporaryDir makers;
    const QString failing = makers.filePath("failing");
    WriteHostFile(failing.toStdString(), "#!/bin/sh\nmkdir -p $1\ntouch $1/objectstore.db\nexit 1\n");
    QFile::setPermissions(failing, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qunsetenv("STRANDVIEW_DEVICE");
    ui::EnsureWindowSystem();
    const struct {
        QStringList answers;
        QString maker;
        FirstStart start;
        bool made;
    } known[] = {
        {{"Cancel"}, SAMPLE_DEVICE_PATH, FirstStart::Cancelled, false},
        {{"Empty"}, SAMPLE_DEVICE_PATH, FirstStart::GoOn, false},
        {{"Samples", "OK"}, failing, FirstStart::Failed, false},
        {{"Samples", "OK"}, "/no/such/program", FirstStart::Failed, false},
        {{"Samples"}, SAMPLE_DEVICE_PATH, FirstStart::GoOn, true},
    };
    for (const auto& [answers, maker, start, made] : known) {
        const QTemporaryDir home;
        qputenv("XDG_DATA_HOME", home.path().toUtf8());
        const Answers user(answers, home.path());
        EXPECT_EQ(OfferFirstDevice(maker), start);
        EXPECT_TRUE(user.AllGiven() && user.CameBeforeAnythingWasWritten()) << answers[0].toStdString();
        const QDir folder(home.filePath("pocket-strandview"));
        EXPECT_EQ(folder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                  made ? QStringList("device") : QStringList());
        EXPECT_EQ(QFile::exists(folder.filePath("device/objectstore.db")), made);
        EXPECT_EQ(OfferFirstDevice("/bin/false"), made ? FirstStart::GoOn : FirstStart::Cancelled);
    }
    // Without a question, on request.
    const QTemporaryDir home;
    qputenv("XDG_DATA_HOME", home.path().toUtf8());
    EXPECT_EQ(MakeFirstDevice(failing), FirstStart::Failed);
    EXPECT_EQ(MakeFirstDevice(SAMPLE_DEVICE_PATH), FirstStart::GoOn);
    EXPECT_TRUE(QFile::exists(home.filePath("pocket-strandview/device/objectstore.db")));
    EXPECT_EQ(MakeFirstDevice("/bin/false"), FirstStart::GoOn);
    // Another device, though it is missing too, is made without a question.
    qputenv("STRANDVIEW_DEVICE", "/no/such/device");
    EXPECT_EQ(OfferFirstDevice("/bin/false"), FirstStart::GoOn);
    qunsetenv("STRANDVIEW_DEVICE");
    qputenv("XDG_DATA_HOME", data);
}

} // namespace
