// Exports through the real windows, read back by another reader and byte by byte.
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

#include "app/application.h"
#include "app/settings.h"
#include "export/export.h"
#include "platform/controls.h"
#include "resources/resource.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/session.h"

namespace {

std::string vanishing; // a folder that goes when a file is written next

} // namespace

// In place of the C library's, as the platform calls it.
extern "C" ssize_t write(int descriptor, const void* bytes, size_t count) {
    struct stat status;
    if (!vanishing.empty() && fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode))
        std::filesystem::remove_all(std::exchange(vanishing, {}));
    return syscall(SYS_write, descriptor, bytes, count);
}

namespace {

const std::u16string kUnable = u"Unable to export the database into a file.";
constexpr double kMoment = 127229404280000000.0; // 2004-03-05 06:07:08 UTC

std::u16string ConfirmOverwrite(const std::u16string& path) {
    return u"File \"" + path + u"\" already exists; overwrite?";
}

class ExportTest : public Session {
protected:
    ExportTest() {
        std::filesystem::create_directory(documents);
        App().settings = &settings;
    }
    ~ExportTest() override { App().settings = nullptr; }

    // Exports the selected database. The dialog starts with the same choices each time.
    void ExportSelected(LONG format, bool unicode, const std::u16string& name,
                        const std::u16string& message = {}) {
        Press(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
        InWindow(IDD_EXPORT);
        EXPECT_EQ(SendMessageW(Control(IDC_EXPORT_FORMAT), CB_GETCURSEL, 0, 0), kCommaSeparated);
        EXPECT_EQ(IsDlgButtonChecked(Window(), IDC_EXPORT_UNICODE), UINT{BST_UNCHECKED});
        if (format == kTabSeparated)
            Press(Qt::Key_Up);
        if (unicode)
            Tap(IDC_EXPORT_UNICODE);
        PickToSave(name);
        if (!message.empty())
            ExpectMessage(message, IDYES);
        Tap(IDOK);
        InMainWindow();
        Window();
    }
    // Without windows; true when all was written. `path` is a device path.
    bool Export(const WCHAR* path, LONG format, bool unicode) {
        auto state = std::make_unique<ExportState>(nullptr);
        state->format = format;
        state->writer.unicode = unicode;
        return ExportDatabase(state.get(), u"Ab", path);
    }
    std::string Bytes(const std::string& name) const {
        std::ifstream file(documents + "/" + name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::string Fields(const std::string& name, const std::string& encoding, const std::string& delimiter) {
        const std::string command = "python3 '" FIELD_READER "' '" + documents + "/" + name + "' " +
                                    encoding + " '" + delimiter + "'";
        FILE* const reader = popen(command.c_str(), "r");
        std::string text;
        std::array<char, 4096> part;
        while (reader && std::fgets(part.data(), part.size(), reader))
            text += part.data();
        EXPECT_TRUE(reader && pclose(reader) == 0);
        return text;
    }

    Settings settings; // where no program runs
    const std::string documents = device.folder + "/root/My Documents";
};

std::string Wide(const std::u16string& text) {
    std::string bytes = "\xFF\xFE";
    for (const char16_t unit : text)
        bytes += {static_cast<char>(unit), static_cast<char>(unit >> 8)};
    return bytes;
}

} // namespace

TEST_F(ExportTest, EveryDialectIsReadBackFieldByField) {
    MakeDatabase(u"Ab", {{TextValue(1, u"O\"Hara, \"Ann\"\t(née)\r\nat home"), NumberValue(2, CEVT_I2, -5),
                          NumberValue(3, CEVT_UI2, 65535), NumberValue(4, CEVT_I4, -2147483648.0),
                          NumberValue(5, CEVT_UI4, 4294967295.0), NumberValue(6, CEVT_R8, 123456789012.5),
                          NumberValue(7, CEVT_BOOL, 1), NumberValue(8, CEVT_BLOB, 0),
                          NumberValue(9, CEVT_FILETIME, kMoment), TextValue(10, u"")},
                         {TextValue(1, u"Łódź 日"), NumberValue(2, CEVT_R8, 0)}});
    const std::string ann =
        R"(["O\"Hara, \"Ann\"\t(n\u00e9e)\r\nat home", "-5", "65535", "-2147483648", "4294967295", )"
        R"("1.23456789e+011", "", "", "5 Mar 2004 06:07:08", ""])"
        "\n";
    const std::string whole = ann + R"(["\u0141\u00f3d\u017a \u65e5", "0."])"
                                    "\n";
    const std::string cutDown = ann + R"(["A\u00f3dz \u00e5", "0."])"
                                      "\n";
    RunProgram([&] {
        SelectRow(IDC_LIST, u"Ab");
        ExportSelected(kCommaSeparated, false, u"narrow");
        ExportSelected(kCommaSeparated, true, u"wide");
        ExportSelected(kTabSeparated, false, u"narrow");
        ExportSelected(kCommaSeparated, false, u"narrow", ConfirmOverwrite(u"\\My Documents\\narrow.csv"));
        ExportSelected(kTabSeparated, true, u"wide");
    });
    EXPECT_EQ(Fields("wide.csv", "utf-16", ","), whole);
    EXPECT_EQ(Fields("wide.txt", "utf-16", "\t"), whole);
    EXPECT_EQ(Fields("narrow.csv", "latin-1", ","), cutDown);
    EXPECT_EQ(Fields("narrow.txt", "latin-1", "\t"), cutDown);
}

TEST_F(ExportTest, CancelledFormatsAndNamesWriteNothing) {
    MakeDatabase(u"Ab", {{NumberValue(1, CEVT_I2, 1)}});
    RunProgram([&] {
        CatchHelp();
        SelectRow(IDC_LIST, u"Ab");
        Choose(u"Tools/Export Database...");
        InWindow(IDD_EXPORT);
        Tap(IDC_FRAME_HELP);
        EXPECT_EQ(HelpShown(), "tarnwickscope.htm#export");
        SendMessageW(Control(IDC_EXPORT_FORMAT), CB_SETCURSEL, WPARAM(-1), 0);
        ExpectMessage(u"Please select the file type.");
        Tap(IDOK);
        Tap(IDCANCEL);
        InMainWindow();
        ExportSelected(kCommaSeparated, false, u"");
        EXPECT_EQ(SelectedText(IDC_LIST), u"Ab");
    });
    EXPECT_TRUE(std::filesystem::is_empty(documents));
}

TEST_F(ExportTest, BytesOfTheFile) {
    MakeDatabase(u"Ab", {});
    ASSERT_TRUE(Export(u"\\My Documents\\empty", kCommaSeparated, false));
    ASSERT_TRUE(Export(u"\\My Documents\\empty wide", kTabSeparated, true));
    EXPECT_EQ(Bytes("empty"), "");
    EXPECT_EQ(Bytes("empty wide"), "\xFF\xFE");

    AddRecord(u"Ab", {NumberValue(1, CEVT_I2, -5), TextValue(2, u"a\"b"), NumberValue(3, CEVT_BLOB, 0)});
    AddRecord(u"Ab", {NumberValue(1, CEVT_BLOB, 0), NumberValue(2, CEVT_BLOB, 0)});
    SampleValue absent = TextValue(3, u"");
    absent.absent = true;
    AddRecord(u"Ab", {TextValue(1, u"\u0141\u0122"), NumberValue(2, CEVT_UI4, 7), absent});
    ASSERT_TRUE(Export(u"\\My Documents\\csv", kCommaSeparated, false));
    EXPECT_EQ(Bytes("csv"), "\"-5\",\"a\"\"b\",\r\n,\r\n\"A\"\",\"7\",\r\n");
    ASSERT_TRUE(Export(u"\\My Documents\\txt", kTabSeparated, false));
    EXPECT_EQ(Bytes("txt"), "-5\t\"a\"\"b\"\t\r\n\t\r\n\"A\"\"\t7\t\r\n");
    ASSERT_TRUE(Export(u"\\My Documents\\wide", kTabSeparated, true));
    EXPECT_EQ(Bytes("wide"), Wide(u"-5\t\"a\"\"b\"\t\r\n\t\r\n\"\u0141\u0122\"\t7\t\r\n"));

    // Longer than what is gathered for one write.
    const std::u16string longText(30'001, u'x');
    std::u16string lines = u"-5\t\"a\"\"b\"\t\r\n\t\r\n\"\u0141\u0122\"\t7\t\r\n";
    for (int i = 0; i < 4; ++i) {
        AddRecord(u"Ab", {TextValue(1, longText)});
        lines += u"\"" + longText + u"\"\r\n";
    }
    ASSERT_TRUE(Export(u"\\My Documents\\long", kTabSeparated, true));
    EXPECT_EQ(Bytes("long"), Wide(lines));
}

TEST_F(ExportTest, FailuresAreToldOnceAndUnreadableRecordsNotAtAll) {
    MakeDatabase(u"Ab",
                 {{NumberValue(1, CEVT_I2, 1)}, {NumberValue(1, CEVT_I2, 2)}, {NumberValue(1, CEVT_I2, 3)}});
    device.RunSql("UPDATE records SET data = x'00' WHERE id = (SELECT id FROM records LIMIT 1 OFFSET 1)");
    const std::u16string onDisk = u"\\My Documents\\" + std::u16string(245, u'n');
    ASSERT_EQ(onDisk.size(), std::size_t{MAX_PATH - 1});
    ASSERT_TRUE(Export(onDisk.c_str(), kTabSeparated, false));
    EXPECT_EQ(Bytes(std::string(245, 'n')), "1\r\n3\r\n");

    ExpectMessage(ConfirmOverwrite(u"\\Storage Card\\dev\\full"), IDYES);
    ExpectMessage(kUnable);
    EXPECT_FALSE(Export(u"\\Storage Card\\dev\\full", kTabSeparated, false));
    ExpectMessage(u"Couldn't create a new backup file \"\\gone\\file\".");
    EXPECT_FALSE(Export(u"\\gone\\file", kTabSeparated, false));
    ExpectMessage(u"Couldn't create a new backup file \"\\My Documents\".");
    EXPECT_FALSE(Export(u"\\My Documents", kTabSeparated, false));
    ExpectMessage(ConfirmOverwrite(onDisk), IDNO);
    EXPECT_FALSE(Export(onDisk.c_str(), kTabSeparated, false));
    device.BreakTable("records");
    ExpectMessage(kUnable);
    EXPECT_FALSE(Export(u"\\My Documents\\part", kTabSeparated, true));
    device.MendTable("records");
    device.RunSql("DELETE FROM databases");
    ExpectMessage(kUnable);
    EXPECT_FALSE(Export(u"\\My Documents\\part 2", kTabSeparated, true));
    EXPECT_EQ(Bytes(std::string(245, 'n')), "1\r\n3\r\n");
    EXPECT_EQ(Bytes("part"), "\xFF\xFE"); // what was written stays
    EXPECT_EQ(Bytes("part 2"), "\xFF\xFE");
}

TEST_F(ExportTest, FilesThatCannotBeReplacedStay) {
    MakeDatabase(u"Ab", {{NumberValue(1, CEVT_I2, 1)}});
    const WCHAR* const path = u"\\My Documents\\old";
    const std::string old = documents + "/old";
    std::ofstream(old) << "old";
    ASSERT_EQ(chmod(device.folder.c_str(), 0755) + chmod((device.folder + "/root").c_str(), 0755) +
                  chmod(documents.c_str(), 0777) + chmod(old.c_str(), 0444),
              0);
    ExpectMessage(ConfirmOverwrite(path), IDYES);
    ExpectMessage(u"Couldn't create a new backup file \"" + std::u16string(path) + u"\".");
    const bool waived = geteuid() == 0; // root may write it all the same
    EXPECT_TRUE(!waived || seteuid(65534) == 0);
    EXPECT_FALSE(Export(path, kTabSeparated, false));
    EXPECT_TRUE(!waived || seteuid(0) == 0);
    EXPECT_EQ(Bytes("old"), "old");

    vanishing = documents;
    ExpectMessage(ConfirmOverwrite(path), IDYES);
    ExpectMessage(kUnable);
    EXPECT_FALSE(Export(path, kTabSeparated, false));
    EXPECT_FALSE(std::filesystem::exists(documents));
    std::filesystem::create_directory(documents);
    ASSERT_TRUE(Export(path, kTabSeparated, false));
    EXPECT_EQ(Bytes("old"), "1\r\n");
}
