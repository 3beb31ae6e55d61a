// How the program is started, and how it starts and finds other processes.
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>
#include <initializer_list>
#include <vector>

#include "platform/base/display.h"
#include "platform/base/instance.h"
#include "platform/base/utf8.h"
#include "platform/launcher/arguments.h"
#include "platform/process.h"
#include "tests/platform/hostsupport.h"
#include "tests/platform/otherprocess.h"
#include "tests/support/testdevice.h"

namespace {

constexpr const WCHAR* kClass = u"TestClass";

std::string Parse(std::initializer_list<const char*> typed, Options& options) {
    std::vector<const char*> arguments{"program"};
    arguments.insert(arguments.end(), typed);
    return ParseArguments(static_cast<int>(arguments.size()), arguments.data(), options);
}

TEST(Launcher, HandsOnOneCommandLine) {
    Options options;
    EXPECT_EQ(Parse({"-B", "my backups/all.bkp", "--device", "some dir", "-D", "\xC3\xA9", ""}, options), "");
    EXPECT_EQ(options.commandLine, u"-B \"my backups/all.bkp\" -D \u00e9 \"\"");
    EXPECT_EQ(options.device, "some dir");
    Options typed; // a quote cannot be written within quotes
    EXPECT_EQ(Parse({"-R \"a b.bkp\" -P", "--device=x", "/d"}, typed), "");
    EXPECT_EQ(typed.commandLine, u"-R \"a b.bkp\" -P /d");
    EXPECT_EQ(typed.device, "x");
    Options refused;
    EXPECT_NE(Parse({"-B", "x", "--devise", "y"}, refused).find("--devise"), std::string::npos);
    EXPECT_NE(Parse({"--device"}, refused), "");
}

struct Outcome {
    int code = -1;
    QByteArray out, error;
};

Outcome Start(const QStringList& arguments, const QProcessEnvironment& environment) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(LAUNCHER_PATH), arguments);
    Outcome outcome;
    if (process.waitForFinished(20000) && process.exitStatus() == QProcess::NormalExit)
        outcome = {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    process.kill();
    process.waitForFinished();
    return outcome;
}

TEST(Launcher, SaysHowToGetADisplayAndLeavesNoDevice) {
    const QTemporaryDir folder;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove("QT_QPA_PLATFORM");
    environment.remove("WAYLAND_DISPLAY");
    environment.insert("DISPLAY", ":64999"); // nobody answers there
    const QString device = folder.filePath("device");
    const Outcome window = Start({"--device", device}, environment);
    EXPECT_EQ(window.code, 1);
    EXPECT_TRUE(window.error.contains("no display")) << window.error.toStdString();
    EXPECT_EQ(Start({"--version"}, environment).out, "Pocket Strandview " PROGRAM_VERSION "\n");
    EXPECT_TRUE(Start({"--help"}, environment).out.contains("--device DIR"));
    const Outcome wrong = Start({"--wrong"}, environment);
    EXPECT_EQ(wrong.code, 2);
    EXPECT_TRUE(wrong.error.contains("--wrong") && wrong.out.isEmpty());
    EXPECT_FALSE(QDir(device).exists());

    const Outcome job = Start({"--device", device, "words"}, environment);
    EXPECT_EQ(job.code, 255);
    EXPECT_TRUE(job.error.contains("Invalid command line parameters.")) << job.error.toStdString();
    const Outcome nowhere = Start({"--device", "/dev/null/x", "words"}, environment);
    EXPECT_EQ(nowhere.code, 3);
    EXPECT_TRUE(nowhere.error.contains("/dev/null/x"));
}

TEST(Instance, AWindowIsFoundByItsDeviceAndClassWhileItsProcessLives) {
    const TestDevice device;
    EXPECT_FALSE(OtherInstanceHasWindow(kClass));
    EXPECT_FALSE(RequestForeground(kClass));
    {
        OtherProcess other({[] { return ListenForForegroundRequests(kClass) >= 0; }});
        ASSERT_TRUE(other.Run(0));
        EXPECT_TRUE(OtherInstanceHasWindow(kClass));
        EXPECT_FALSE(OtherInstanceHasWindow(u"OtherClass"));
        EXPECT_EQ(ListenForForegroundRequests(kClass), -1);
        for (int i = 0; i < 100; ++i)
            ASSERT_TRUE(RequestForeground(kClass)); // though it is too busy to listen
        {
            const TestDevice another;
            EXPECT_FALSE(OtherInstanceHasWindow(kClass));
        }
        EXPECT_TRUE(UseDevice(device.folder) && OtherInstanceHasWindow(kClass));
    }
    EXPECT_FALSE(OtherInstanceHasWindow(kClass));
}

TEST(Instance, OnlyARequestBringsTheWindowToTheFront) {
    const TestDevice device;
    const int listener = ListenForForegroundRequests(kClass);
    ASSERT_GE(listener, 0);
    EXPECT_FALSE(AcceptForegroundRequests(listener));
    EXPECT_TRUE(OtherInstanceHasWindow(kClass));
    EXPECT_FALSE(AcceptForegroundRequests(listener));
    EXPECT_TRUE(OtherInstanceHasWindow(kClass) && RequestForeground(kClass));
    EXPECT_TRUE(AcceptForegroundRequests(listener));
    EXPECT_FALSE(AcceptForegroundRequests(listener));
    close(listener);
    EXPECT_FALSE(OtherInstanceHasWindow(kClass));
}

TEST(Process, StartsAProgramBesideThisOneAndForgetsIt) {
    const QTemporaryDir folder;
    const QDir here(QFileInfo("/proc/self/exe").canonicalPath());
    const QString name = QString("started-%1.sh").arg(getpid());
    const QString report = folder.filePath("report");
    QFile script(here.filePath(name));
    WriteHostFile(
        script.fileName().toStdString(),
        QString("#!/bin/sh\ncd %1\necho \"$#:$1\" > new\nls /proc/self/fd | wc -l >> new\nmv new report\n")
            .arg(folder.path())
            .toStdString());
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    const int inherited = dup(1);
    const std::u16string program = name.toStdU16String();
    SetNoDisplay(true);
    EXPECT_FALSE(CreateProcessW(program.c_str(), u"nobody would see it"));
    SetNoDisplay(false);
    EXPECT_TRUE(CreateProcessW(program.c_str(), u"tarnwickscope.htm#a b"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(report); }, 10000));
    // The fourth is the listing itself.
    EXPECT_EQ(HostFile(report.toStdString()), "1:tarnwickscope.htm#a b\n4\n");
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1); // no child is left to bury
    close(inherited);
    script.remove();
    EXPECT_EQ(FailureOf(CreateProcessW(program.c_str(), u"")), ERROR_FILE_NOT_FOUND);
}

} // namespace
