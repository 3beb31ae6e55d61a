// The file pickers, driven through their widgets.
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>

#include "platform/pickers.h"
#include "platform/text.h"
#include "platform/ui/core/testhooks.h"
#include "platform/ui/dialogs/pickerwidget.h"
#include "tests/support/testdevice.h"

namespace {

constexpr DWORD kOpenFlags = OFN_EXPLORER | OFN_FILEMUSTEXIST;
constexpr DWORD kSaveFlags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT;

class Pickers : public testing::Test {
protected:
    void SetUp() override {
        documents = device.folder + "/root/My Documents";
        std::filesystem::create_directories(documents + "/Old");
        std::ofstream(documents + "/all.bkp") << "archive";
    }
    void TearDown() override { ui::TestHooks() = {}; }

    // What the picker's user does once it is there.
    void WhenShown(std::function<void(QWidget*)> act) {
        ui::TestHooks().picker = [act = std::move(act)](const ui::PickerSeen& picker) { act(picker.widget); };
    }
    static void Type(QWidget* picker, const QString& name) {
        auto* const edit = picker->findChild<QLineEdit*>(QStringLiteral("pickerName"));
        edit->setFocus();
        edit->setText(name);
        QTest::keyClick(edit, Qt::Key_Return);
    }
    static void Press(QWidget* picker, const char* button) {
        QTest::mouseClick(picker->findChild<QPushButton*>(QLatin1String(button)), Qt::LeftButton);
    }
    BOOL Run(bool save, DWORD room = MAX_PATH) {
        OPENFILENAMEW info{};
        info.hwndOwner = owner;
        info.lStructSize = 76;
        info.lpstrFilter = u"Backup Files (*.bkp)\0*.bkp\0\0";
        info.lpstrFile = path;
        info.nMaxFile = room;
        info.lpstrDefExt = u"*.bkp";
        info.Flags = save ? kSaveFlags : kOpenFlags;
        return save ? GetSaveFileNameW(&info) : GetOpenFileNameW(&info);
    }

    TestDevice device;
    std::string documents;
    HWND owner = nullptr;
    WCHAR path[MAX_PATH] = u".bkp";
};

} // namespace

TEST_F(Pickers, SaveGivesTheDevicePathWithTheExtension) {
    QString shown;
    WhenShown([&](QWidget* picker) {
        auto* const edit = picker->findChild<QLineEdit*>(QStringLiteral("pickerName"));
        shown = edit->text();
        edit->setFocus();
        QTest::keyClicks(edit, QStringLiteral("week")); // before the proposed extension
        Press(picker, "pickerAccept");
    });
    ASSERT_TRUE(Run(true));
    EXPECT_EQ(shown, QStringLiteral(".bkp"));
    EXPECT_EQ(std::u16string(path), u"\\My Documents\\week.bkp");

    struct Case {
        QString typed;
        std::u16string saved;
    };
    const Case cases[] = {
        {QStringLiteral("Old\\plain"), u"\\My Documents\\Old\\plain.bkp"},
        {QStringLiteral("other.txt"), u"\\My Documents\\other.txt"},
        {QStringLiteral(".bkp"), u"\\My Documents\\.bkp"}, // as proposed
        {QStringLiteral(".bkpweek"), u"\\My Documents\\week.bkp"},
        {QStringLiteral(".bkpweek.bkp"), u"\\My Documents\\week.bkp"},
        {QStringLiteral("week.bkp.bkp"), u"\\My Documents\\week.bkp"},
        {QStringLiteral("week.3.bkp"), u"\\My Documents\\week.3.bkp"},
        {QStringLiteral("all"), u"\\My Documents\\all.bkp"}, // the program asks about overwriting by itself
    };
    for (const Case& one : cases) {
        CopyText(path, u".bkp");
        WhenShown([&](QWidget* picker) { Type(picker, one.typed); });
        ASSERT_TRUE(Run(true));
        EXPECT_EQ(std::u16string(path), one.saved);
    }
}

TEST_F(Pickers, OpenTakesOnlyWhatIsThere) {
    QString problem;
    WhenShown([&](QWidget* picker) {
        Type(picker, QStringLiteral("missing"));
        problem = picker->findChild<QLabel*>(QStringLiteral("pickerProblem"))->text();
        Type(picker, QStringLiteral("nowhere\\all.bkp"));
        Type(picker, QStringLiteral("Old")); // a folder is entered
        Press(picker, "pickerUp");           // and left
        Type(picker, QStringLiteral("ALL")); // as it is called, without regard to case
    });
    ASSERT_TRUE(Run(false));
    EXPECT_TRUE(problem.contains(QStringLiteral("missing.bkp"))) << problem.toStdString();
    EXPECT_EQ(std::u16string(path), u"\\My Documents\\all.bkp");

    std::ofstream(device.folder + "/outside.bkp") << "archive";
    WhenShown([&](QWidget* picker) { Type(picker, QString::fromStdString(device.folder + "/outside.bkp")); });
    ASSERT_TRUE(Run(false));
    EXPECT_TRUE(std::u16string(path).starts_with(u"\\Storage Card\\"));
    EXPECT_TRUE(std::u16string(path).ends_with(u"\\outside.bkp"));
}

TEST_F(Pickers, FoldersAndFilesOfTheListAreOpened) {
    std::ofstream(documents + "/Old/last year.bkp") << std::string(1536, 'a');
    std::ofstream(documents + "/Old/notes.txt") << "not of the type asked for";
    QStringList listed;
    QStringList sizes;
    WhenShown([&](QWidget* picker) {
        auto* const files = picker->findChild<QTreeView*>(QStringLiteral("pickerFiles"));
        const auto rowsOf = [files] {
            QStringList rows;
            for (int i = 0; i < files->model()->rowCount(files->rootIndex()); ++i)
                rows += files->model()->index(i, 0, files->rootIndex()).data().toString();
            return rows;
        };
        const auto openRow = [&](const QString& name, int rows) {
            EXPECT_TRUE(QTest::qWaitFor([&] { return rowsOf().size() == rows && rowsOf().contains(name); }));
            listed += rowsOf();
            const auto row = static_cast<int>(rowsOf().indexOf(name));
            files->setFocus();
            files->setCurrentIndex(files->model()->index(row, 0, files->rootIndex()));
            sizes += files->currentIndex().siblingAtColumn(1).data().toString();
            QTest::keyClick(files, Qt::Key_Return);
        };
        openRow(QStringLiteral("Old"), 2);
        openRow(QStringLiteral("last year.bkp"), 1);
    });
    ASSERT_TRUE(Run(false));
    EXPECT_EQ(std::u16string(path), u"\\My Documents\\Old\\last year.bkp");
    listed.sort(); // the list is put in order some time after it is read
    EXPECT_EQ(listed.join(u','), QStringLiteral("Old,all.bkp,last year.bkp"));
    EXPECT_EQ(sizes.join(u','), QStringLiteral(",1.50KB")); // none of a folder
}

TEST_F(Pickers, CancelAndPathsTooLongGiveNothing) {
    WhenShown([](QWidget* picker) { Press(picker, "pickerCancel"); });
    EXPECT_FALSE(Run(true));
    WhenShown([](QWidget* picker) { QTest::keyClick(picker, Qt::Key_Escape); });
    EXPECT_FALSE(Run(false));
    EXPECT_EQ(std::u16string(path), u".bkp");
    bool told = false;
    WhenShown([&](QWidget* picker) {
        Type(picker, QStringLiteral("all"));
        told = picker->findChild<QLabel*>(QStringLiteral("pickerProblem"))->text().contains(u"too long");
        Press(picker, "pickerCancel");
    });
    EXPECT_FALSE(Run(true, 21)); // one short of the path with its terminator
    EXPECT_TRUE(told);
    EXPECT_TRUE(Run(true, 22));
    // So is the end of the picker's window, by itself or with its owner.
    owner = CreateWindowExW(0, u"Dialog", u"", WS_VISIBLE, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    WhenShown([this](QWidget*) { DestroyWindow(owner); });
    EXPECT_FALSE(Run(true));
    EXPECT_FALSE(IsWindow(owner));
}
