// How the program is started, and how it starts and finds other processes.
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <initializer_list>
#include <memory>
#include <sys/stat.h>
#include <vector>

#include "platform/base/instance.h"
#include "platform/base/utf8.h"
#include "platform/launcher/arguments.h"
#include "platform/process.h"
#include "platform/ui/core/windowobject.h"
#include "platform/ui/core/windowsystem.h"
#include "platform/window.h"
#include "tests/platform/hostsupport.h"
#include "tests/platform/otherprocess.h"
#include "tests/support/testdevice.h"

namespace {

constexpr const WCHAR* kClass = u"testclass";

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
    // What the program would split, cut or take for something else.
    const std::string longest(259, 'x');
    Options taken;
    EXPECT_EQ(Parse({"a\"b", longest.c_str(), "--device=x", "/d"}, taken), "");
    EXPECT_EQ(taken.commandLine, u"a\"b " + std::u16string(259, u'x') + u" /d");
    EXPECT_EQ(taken.device, "x");
    for (const std::string& word :
         {std::string("my \"x\" file"), std::string("\"x"), longest + 'x', std::string("\xFF.bkp")}) {
        Options kept;
        EXPECT_NE(Parse({"-B", word.c_str()}, kept).find(word), std::string::npos);
    }
    Options refused;
    EXPECT_NE(Parse({"-B", "x", "--devise", "y"}, refused).find("--devise"), std::string::npos);
    EXPECT_NE(Parse({"--device"}, refused), "");
}

TEST(Launcher, TakesHostPathsWherePathsBelong) {
    const struct {
        std::vector<const char*> typed;
        std::u16string handedOn;
    } known[] = {
        {{"-B", "/all.bkp"}, u"-B \"\\Storage Card\\all.bkp\""},
        {{"-B", "/tmp/no such/../all.bkp", "/d"}, u"-B \"\\Storage Card\\tmp\\all.bkp\" /d"},
        {{"/b", "x", "/B", "y", "/d"}, u"/b x /B y /d"},
        {{"/backup", "/d"}, u"/backup \"\\Storage Card\\d\""},
        {{"/etc"}, u"\"\\Storage Card\\etc\""},
        {{"/nowhere/at/all"}, u"\"\\Storage Card\\nowhere\\at\\all\""},
        {{"-B", "a/b"}, u"-B a/b"},
    };
    for (const auto& [typed, handedOn] : known) {
        std::vector<const char*> arguments{"program"};
        arguments.insert(arguments.end(), typed.begin(), typed.end());
        Options options;
        EXPECT_EQ(ParseArguments(static_cast<int>(arguments.size()), arguments.data(), options), "");
        EXPECT_EQ(options.commandLine, handedOn);
    }
    Options refused;
    EXPECT_NE(Parse({"-B", "/a\\b"}, refused), "") << "the device would find a folder in it";
    const std::string tooLong = std::string("/").append(MAX_PATH - 14, 'x');
    EXPECT_NE(Parse({"-B", tooLong.c_str()}, refused), "");
}

TEST(Launcher, TakesAFileThatStandsAloneForTheDocument) {
    const std::u16string here = u"\\Storage Card" + QDir::currentPath().replace('/', '\\').toStdU16String();
    const struct {
        std::vector<const char*> typed;
        std::u16string document, commandLine;
    } known[] = {
        {{"/no such/all.BKP"}, u"\\Storage Card\\no such\\all.BKP", u""},
        {{"--device", "x", "a b.abk"}, here + u"\\a b.abk", u""},
        {{"\\My Documents\\x.rbk"}, u"\\My Documents\\x.rbk", u""},
        {{"all.bkp", "-D"}, u"", u"all.bkp -D"},
        {{"all.txt"}, u"", u"all.txt"},
        {{"-b.bkp"}, u"", u"-b.bkp"},
    };
    for (const auto& [typed, document, commandLine] : known) {
        std::vector<const char*> arguments{"program"};
        arguments.insert(arguments.end(), typed.begin(), typed.end());
        Options options;
        EXPECT_EQ(ParseArguments(static_cast<int>(arguments.size()), arguments.data(), options), "");
        EXPECT_EQ(options.document, document);
        EXPECT_EQ(options.commandLine, commandLine);
        EXPECT_EQ(options.makesDevice, commandLine.empty());
    }
}

TEST(Launcher, OnlyTheWindowAndARestoreMakeADevice) {
    const struct {
        std::vector<const char*> typed;
        bool makes;
    } known[] = {
        {{}, true},
        {{"-R", "x"}, true},
        {{"-D", "/restore", "x", "-S"}, true},
        {{"-B", "x", "-r", "y"}, true},
        {{"-R", "x", "-b", "y"}, false},
        {{"-A", "-R"}, false},
        {{"-b x", "-R", "y"}, false},
        {{"words"}, false},
    };
    for (const auto& [typed, makes] : known) {
        Options options;
        std::vector<const char*> arguments{"program"};
        arguments.insert(arguments.end(), typed.begin(), typed.end());
        EXPECT_EQ(ParseArguments(static_cast<int>(arguments.size()), arguments.data(), options), "");
        EXPECT_EQ(options.makesDevice, makes) << testing::PrintToString(options.commandLine);
    }
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

QProcessEnvironment WithoutDisplay() {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove("QT_QPA_PLATFORM");
    environment.remove("WAYLAND_DISPLAY");
    environment.remove("STRANDVIEW_DEVICE");
    environment.insert("DISPLAY", ":64999"); // nobody answers there
    return environment;
}

TEST(Launcher, SaysHowToGetADisplayAndLeavesNoDevice) {
    const QTemporaryDir folder;
    auto environment = WithoutDisplay();
    const QString device = folder.filePath("device");
    EXPECT_EQ(Start({"--version"}, environment).out, "Pocket Strandview " PROGRAM_VERSION "\n");
    EXPECT_EQ(Start({"-v"}, environment).out, Start({"--version"}, environment).out);
    EXPECT_TRUE(Start({"-h"}, environment).out.contains("--device DIR"));
    const Outcome wrong = Start({"--wrong"}, environment);
    EXPECT_EQ(wrong.code, 2);
    EXPECT_TRUE(wrong.error.contains("--wrong") && wrong.out.isEmpty());
    // The last ones show nothing; the one that does not exist gives way to one that exists.
    for (const char* platform : {"", "xcb", "nonsense", "offscreen", "minimal", "minimalegl"}) {
        environment.insert("QT_QPA_PLATFORM", platform);
        const Outcome window = Start({"--device", device}, environment);
        EXPECT_EQ(window.code, 1) << platform;
        EXPECT_TRUE(window.error.contains("no display") && window.error.count('\n') == 1)
            << window.error.toStdString();
    }
    EXPECT_FALSE(QDir(device).exists());
    const Outcome job = Start({"--device", device, "-R", "none.bkp"}, environment);
    EXPECT_EQ(job.code, 255);
    EXPECT_TRUE(job.error.contains("Unable to read from file")) << job.error.toStdString();
    EXPECT_TRUE(QDir(device + "/root").exists());
}

TEST(Launcher, LeavesTheOldArchiveAloneWhenTheDeviceCannotBeUsed) {
    const QTemporaryDir folder;
    const std::string archive = folder.filePath("old.bkp").toStdString();
    const QString missing = folder.filePath("missing"), empty = folder.filePath("empty"),
                  damaged = folder.filePath("damaged"), blank = folder.filePath("blank");
    WriteHostFile(archive, "the last good one");
    QDir().mkdir(empty);
    QDir().mkdir(damaged);
    QDir().mkdir(blank);
    WriteHostFile(blank.toStdString() + "/objectstore.db", "");
    WriteHostFile(damaged.toStdString() + "/objectstore.db", std::string(5000, 'x'));
    auto environment = WithoutDisplay();
    for (const QString& device : {missing, empty, damaged, blank, QStringLiteral("/dev/null/x")}) {
        for (const bool byName : {true, false}) {
            QStringList arguments{"-B", QString::fromStdString(archive), "-D", "-P"};
            arguments = (byName ? QStringList{"--device", device} : QStringList()) + arguments;
            environment.insert("STRANDVIEW_DEVICE", byName ? QString("/none") : device);
            const Outcome backup = Start(arguments, environment);
            EXPECT_EQ(backup.code, 3);
            EXPECT_TRUE(backup.error.contains(device.toUtf8()) && backup.error.count('\n') == 1)
                << backup.error.toStdString();
            EXPECT_NE(backup.error.contains("$STRANDVIEW_DEVICE"), byName);
        }
    }
    EXPECT_FALSE(QDir(missing).exists());
    EXPECT_TRUE(QDir(empty).isEmpty());
    EXPECT_EQ(HostFile(archive), "the last good one");

    environment.remove("STRANDVIEW_DEVICE");
    environment.remove("XDG_DATA_HOME");
    for (const char* home : {"", "relative"}) {
        environment.insert("HOME", home);
        const Outcome homeless = Start({"-R", "x"}, environment);
        EXPECT_EQ(homeless.code, 3);
        EXPECT_TRUE(homeless.error.contains("$HOME"));
    }
}

TEST(Device, IsItsOwnersAlone) {
    const auto mode = [](const std::string& path) { return std::filesystem::status(path).permissions(); };
    using std::filesystem::perms;
    TestDevice device;
    EXPECT_TRUE(UseDevice(device.folder + "/made/device"));
    EXPECT_EQ(mode(DeviceFolder()), perms::owner_all);
    EXPECT_EQ(mode(DeviceRootFolder()), perms::owner_all);

    const std::string open = device.folder + "/open";
    ASSERT_EQ(mkdir(open.c_str(), 0777) + mkdir((open + "/root").c_str(), 0777) + chmod(open.c_str(), 0755),
              0);
    EXPECT_TRUE(UseDevice(open));
    EXPECT_NE(mode(open), perms::owner_all) << "no device yet: it may serve something else";
    WriteHostFile(open + "/objectstore.db", "a store");
    EXPECT_TRUE(UseDevice(open, false));
    EXPECT_EQ(mode(open), perms::owner_all);
    EXPECT_EQ(mode(open + "/root"), perms::owner_all);
}

TEST(Instance, OneProcessOfADeviceHasTheWindowFromTheMomentItLooksForIt) {
    const TestDevice device;
    EXPECT_FALSE(RequestForeground(kClass));
    {
        OtherProcess other({[] { return !FindWindowW(kClass, nullptr) && !FindWindowW(kClass, nullptr); }});
        ASSERT_TRUE(other.Run(0));
        EXPECT_TRUE(ClaimWindow(kClass).taken);
        const HWND found = FindWindowW(u"TESTCLASS", nullptr);
        EXPECT_TRUE(found);
        for (int i = 0; i < 100; ++i)
            ASSERT_TRUE(SetForegroundWindow(found)); // though it is too busy to listen
        const TestDevice another;
        const WindowClaim claim = ClaimWindow(kClass);
        EXPECT_TRUE(claim.listener >= 0 && !claim.taken);
        close(claim.listener);
        EXPECT_TRUE(UseDevice(device.folder));
    }
    const WindowClaim claim = ClaimWindow(kClass); // the other process is gone
    EXPECT_GE(claim.listener, 0);
    close(claim.listener);
}

TEST(Instance, OfProcessesThatStartTogetherOneGetsTheWindow) {
    const TestDevice device;
    const auto claims = [] { return !ClaimWindow(kClass).taken; };
    std::vector<std::unique_ptr<OtherProcess>> others;
    for (int i = 0; i < 8; ++i)
        others.push_back(std::make_unique<OtherProcess>(std::vector<OtherProcess::Errand>{claims}));
    for (const auto& other : others)
        other->Start(0);
    EXPECT_EQ(std::count_if(others.begin(), others.end(), [](const auto& other) { return other->Await(); }),
              1);
    for (const auto& other : others)
        other->Kill(); // each holds the pipes of those before it, which therefore see no end
}

TEST(Instance, OnlyARequestBringsTheWindowToTheFront) {
    const TestDevice device;
    const int listener = ClaimWindow(kClass).listener;
    ASSERT_GE(listener, 0);
    EXPECT_FALSE(AcceptForegroundRequests(listener).any);
    EXPECT_TRUE(ClaimWindow(kClass).taken);
    EXPECT_FALSE(AcceptForegroundRequests(listener).any);
    EXPECT_TRUE(ClaimWindow(kClass).taken && RequestForeground(kClass));
    SetStartDocument(u"\\\u00e9.bkp");
    EXPECT_TRUE(RequestForeground(kClass));
    SetStartDocument(std::u16string(MAX_PATH, u'\u20ac'));
    EXPECT_TRUE(RequestForeground(kClass));
    SetStartDocument({});
    const ForegroundRequests requests = AcceptForegroundRequests(listener);
    EXPECT_TRUE(requests.any);
    EXPECT_EQ(requests.documents, std::vector<std::u16string>{u"\\\u00e9.bkp"});
    EXPECT_FALSE(AcceptForegroundRequests(listener).any);
    close(listener);
    EXPECT_FALSE(RequestForeground(kClass));
}

TEST(Process, StartsAProgramBesideThisOneAndForgetsIt) {
    const QTemporaryDir folder;
    const QDir here(QFileInfo("/proc/self/exe").canonicalPath());
    const QString name = QString("started-%1.sh").arg(getpid());
    const QString report = folder.filePath("report");
    QFile script(here.filePath(name));
    WriteHostFile(
        script.fileName().toStdString(),
        QString("#!/bin/sh\ncd %1\nout=$(readlink /proc/$$/fd/1)\necho \"$#:$1\" > new\necho $out >> new\n"
                "echo ${QT_ENABLE_HIGHDPI_SCALING-unset} >> new\nls /proc/self/fd | wc -l >> "
                "new\nmv new report\n")
            .arg(folder.path())
            .toStdString());
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    const int inherited = dup(1);
    const std::u16string program = name.toStdU16String();
    ui::EnsureWindowSystem(); // for which it has variables set
    EXPECT_TRUE(CreateProcessW(program.c_str(), u"tarnwickscope.htm#a b"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(report); }, 10000));
    // The fourth is the listing itself.
    EXPECT_EQ(HostFile(report.toStdString()), "1:tarnwickscope.htm#a b\n/dev/null\nunset\n4\n");
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1); // no child is left to wait for
    close(inherited);
    script.remove();
    EXPECT_EQ(FailureOf(CreateProcessW(program.c_str(), u"")), ERROR_FILE_NOT_FOUND);
}

} // namespace
