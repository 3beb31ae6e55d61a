#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "app/application.h"
#include "app/start/commandline.h"
#include "platform/files.h"
#include "platform/ui/core/testhooks.h"
#include "tests/platform/hostsupport.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/testdevice.h"

namespace {

using Texts = std::vector<std::u16string>;

class CommandLineTest : public testing::Test {
protected:
    CommandLineTest() {
        ui::TestHooks().messageBox = [this](const ui::MessageBoxSeen& box) {
            messages.push_back(box.text);
            ui::AnswerMessageBox(box.style & MB_YESNO ? IDYES : IDOK);
        };
        ui::TestHooks().dialog = [this](const ui::DialogSeen&) { ++dialogs; };
    }
    ~CommandLineTest() override { ui::TestHooks() = {}; }

    bool HasFile(const char* name) const { return std::filesystem::exists(device.folder + "/root/" + name); }
    // The program's verdict: invalid lines say so once and do nothing.
    bool IsInvalid(const std::u16string& line) {
        messages.clear();
        EXPECT_EQ(RunCommandLine(line.c_str()), -1);
        EXPECT_EQ(App().settings, nullptr);
        return messages == Texts{u"Invalid command line parameters."};
    }

    TestDevice device;
    Texts messages;
    int dialogs = 0;
};

} // namespace

TEST_F(CommandLineTest, RefusesWhatNamesNoJob) {
    const Texts invalid = {
        u" ",
        u"\t\v",
        u"all.bkp",
        u"-D -I -P -S",
        u"-B",
        u"-B -R",
        u"-B /D",
        u"-R \\a.bkp -A \\b.abk",
        u"-A \\a.abk -A \\b.abk",
        u"-X -B \\a.bkp",
        u"-1 -B \\a.bkp",
        u"- -B \\a.bkp",
        u"-\u00C2 -B \\a.bkp", // not a letter of this alphabet, whatever its case bit
        u"-B \"-x\" -D",
        std::u16string(100000, u'a'),
        u"-D -B \\" + std::u16string(MAX_PATH - 1, u'a')}; // too long a path names no file, and no other one
    for (const std::u16string& line : invalid)
        EXPECT_TRUE(IsInvalid(line)) << line.size();
    EXPECT_FALSE(HasFile("a.bkp"));
}

TEST_F(CommandLineTest, BacksUpWithEveryFormOfSwitch) {
    MakeDatabase(u"Plain", {});
    MakeDatabase(u"\\System", {});
    RunCommandLine(u"ignored -b \\one.bkp -D -P more");
    EXPECT_TRUE(HasFile("one.bkp"));
    EXPECT_EQ(dialogs, 0);
    RunCommandLine(u"/Backup \"\\with blanks.bkp\"/d/p"); // a quote ends its token, blank or not
    EXPECT_TRUE(HasFile("with blanks.bkp"));
    RunCommandLine(u"-B\u2003\"\\open quote.bkp -D");
    EXPECT_TRUE(HasFile("open quote.bkp -D"));
    EXPECT_EQ(dialogs, 2); // the progress, which only a P of its own hides
    EXPECT_TRUE(messages.empty());
}

TEST_F(CommandLineTest, LaterArchiveWinsAndSystemDatabasesNeedTheirSwitch) {
    MakeDatabase(u"Plain", {});
    MakeDatabase(u"\\System", {});
    RunCommandLine(u"-B \\all.bkp -S -D -P");
    RunCommandLine(u"-B \\plain.bkp -D -P");
    const TestDevice other;
    std::filesystem::copy(device.folder + "/root", other.folder + "/root",
                          std::filesystem::copy_options::recursive);
    RunCommandLine(u"-B \\never.bkp -R \\plain.bkp -D -P");
    EXPECT_FALSE(std::filesystem::exists(other.folder + "/root/never.bkp"));
    EXPECT_EQ(DatabaseNames(), Texts{u"Plain"});
    RunCommandLine(u"-R \\all.bkp -S -D -P");
    EXPECT_EQ(DatabaseNames(), (Texts{u"Plain", u"\\System"}));
    EXPECT_TRUE(messages.empty());
}

TEST_F(CommandLineTest, ScriptIsRememberedAndSwitchesAreNot) {
    EXPECT_EQ(RunCommandLine(u"-A \\missing.abk -D -P"), -1);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_NE(messages[0].find(u"Autobackup script file doesn't exist"), std::u16string::npos);
    messages.clear();
    RunCommandLine(u"-A \\missing.abk -D -P -I");
    EXPECT_TRUE(messages.empty());
    const Settings settings;
    EXPECT_EQ(std::u16string(settings.scriptName), u"\\missing.abk");
    EXPECT_EQ(settings.interactive, 1u);
    EXPECT_EQ(settings.noProgress, 0u);
}

TEST_F(CommandLineTest, ReplacesLastNightsArchiveWithoutAsking) {
    MakeDatabase(u"Plain", {});
    RunCommandLine(u"-B \\nightly.bkp -D -P");
    const auto first = std::filesystem::file_size(device.folder + "/root/nightly.bkp");
    MakeDatabase(u"Newer", {});
    RunCommandLine(u"-B \\nightly.bkp -D -P");
    EXPECT_GT(std::filesystem::file_size(device.folder + "/root/nightly.bkp"), first);
    EXPECT_TRUE(messages.empty());
    RunCommandLine(u"-B \\nightly.bkp -P"); // with dialogs it is asked once
    EXPECT_EQ(messages, (Texts{u"File \"\\nightly.bkp\" already exists; overwrite?"}));
}

TEST_F(CommandLineTest, StoreThatFailsIsToldAndCostsNoArchive) {
    const Texts failure = {u"Couldn't open \"*\" database: Unknown error"};
    MakeDatabase(u"Plain", {});
    MakeDatabase(u"Damaged", {});
    RunCommandLine(u"-B \\nightly.bkp -D -P");
    const std::string archive = HostFile(device.folder + "/root/nightly.bkp");
    device.RunSql("ALTER TABLE databases RENAME TO kept");
    RunCommandLine(u"-B \\nightly.bkp -D -P");
    EXPECT_EQ(std::exchange(messages, {}), failure);
    EXPECT_EQ(HostFile(device.folder + "/root/nightly.bkp"), archive);
    // Nor is a failure the end of the list.
    device.RunSql(
        "CREATE VIEW databases AS SELECT oid, name, folded, type, records, bytes, modified, version, "
        "deletions, lastdeleted, CASE WHEN name = 'Plain' THEN sortorders ELSE "
        "abs(-9223372036854775808) END AS sortorders FROM kept");
    RunCommandLine(u"-B \\part.bkp -D -P");
    EXPECT_EQ(std::exchange(messages, {}), failure);
    RunCommandLine(u"-B \\part.bkp -D -P -I");
    EXPECT_EQ(messages, Texts());
}
