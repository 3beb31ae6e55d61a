// The registry saved and written back as a user does it: from the main window, by taps and keys.
#include <filesystem>

#include "app/uiservices.h"
#include "platform/controls.h"
#include "platform/ui/core/testhooks.h"
#include "resources/resource.h"
#include "tests/platform/otherprocess.h"
#include "tests/regbackup/registryfixture.h"
#include "tests/support/session.h"

namespace {

constexpr const WCHAR* kFile = u"\\My Documents\\all.rbk";
const std::u16string kQuestion =
    u"As a result of this operation registry database will be overwritten. Applications that were installed "
    u"after you made this backup may not run properly. Do you want to continue?";
const std::u16string kSoftReset = u"You must soft reset your mobile device for changes to take effect.";
const std::u16string kIncorrect = u"The password is incorrect!";

class RegistrySession : public Session {
protected:
    RegistrySession() {
        std::filesystem::create_directory(device.folder + "/root/My Documents");
        MakeSampleKey();
        SetText(HKEY_CLASSES_ROOT, u".txt\\shell", u"open", u"editor");
        SetText(HKEY_LOCAL_MACHINE, u"services\\sound", u"volume", u"loud");
        SetText(HKEY_LOCAL_MACHINE, u"services\\sound", u"wave", u"sine");
    }

    void ChooseBackup() {
        InMainWindow();
        Choose(u"Tools/Backup Registry...");
        InWindow(IDD_MAIN_KEYS);
    }
    void ChooseRestore() {
        InMainWindow();
        PickToOpen(u"all");
        Choose(u"Tools/Restore Registry...");
    }
    void ToggleRow(int row) {
        TapRow(IDC_MAIN_KEYS_LIST, CellText(Control(IDC_MAIN_KEYS_LIST), row, 0));
        Press(Qt::Key_Space);
    }
    bool IsTicked(int row) {
        return ListView_GetItemState(Control(IDC_MAIN_KEYS_LIST), row, LVIS_STATEIMAGEMASK) == 2u << 12;
    }
    void TypePassword(const std::u16string& password) {
        InWindow(IDD_ENTER_PASSWORD);
        TypeInto(IDC_ENTER_PASSWORD, password);
        Tap(IDOK);
    }
    void ConfirmRestore() {
        InWindow(IDD_MAIN_KEYS);
        ExpectMessage(kQuestion, IDYES);
        ExpectMessage(kSoftReset);
        Tap(IDOK);
        InMainWindow();
        Window();
    }
};

TEST_F(RegistrySession, ProtectedBackupBringsBackWhatWasChanged) {
    const std::string before = WholeRegistry();
    RunProgram([&] {
        CatchHelp();
        ChooseBackup();
        EXPECT_TRUE(IsTicked(0) && IsTicked(1) && IsTicked(2));
        Tap(IDC_FRAME_HELP);
        EXPECT_EQ(HelpShown(), "tarnwickscope.htm#regbackup");
        Tap(IDC_MAIN_KEYS_PASSWORD);
        Tap(IDOK);
        InWindow(IDD_PROTECT_BACKUP);
        Tap(IDCANCEL); // not without a password
        InWindow(IDD_MAIN_KEYS);
        Tap(IDOK);
        InWindow(IDD_PROTECT_BACKUP);
        TypeInto(IDC_PROTECT_PASSWORD, u"open");
        TypeInto(IDC_PROTECT_CONFIRMATION, u"open");
        PickToSave(u"all");
        Tap(IDOK);
        InMainWindow();
        Window();
        EXPECT_TRUE(FileExists(kFile));

        SetText(HKEY_CURRENT_USER, u"Ab", u"n", u"changed");
        SetText(HKEY_CLASSES_ROOT, u".txt\\shell", u"print", u"added");
        DeleteValue(HKEY_LOCAL_MACHINE, u"services\\sound", u"wave");
        storage::TheStore()->connection.Execute(
            "DELETE FROM vals WHERE key IN (SELECT id FROM keys WHERE name = 'Ab');"
            "DELETE FROM keys WHERE name = 'Ab'");
        ChooseRestore();
        InWindow(IDD_ENTER_PASSWORD);
        Tap(IDCANCEL);
        ChooseRestore();
        ExpectMessage(kIncorrect);
        TypePassword(u"Open");
        TypePassword(u"open");
        ConfirmRestore();
        EXPECT_EQ(WholeRegistry(), before);
    });
}

TEST_F(RegistrySession, OneMainKeyIsRestored) {
    RunProgram([&] {
        ChooseBackup();
        PickToSave(u"all");
        Tap(IDOK);
        InMainWindow();
        Window();
        const std::string services = Listing(HKEY_LOCAL_MACHINE);
        SetText(HKEY_CURRENT_USER, u"Ab", u"n", u"changed");
        SetText(HKEY_CLASSES_ROOT, u".txt\\shell", u"open", u"changed");
        SetText(HKEY_LOCAL_MACHINE, u"services\\sound", u"wave", u"changed");
        const std::string user = Listing(HKEY_CURRENT_USER), classes = Listing(HKEY_CLASSES_ROOT);

        ChooseRestore();
        InWindow(IDD_MAIN_KEYS);
        EXPECT_FALSE(IsWindowVisible(Control(IDC_MAIN_KEYS_PASSWORD)));
        for (const int row : {0, 1, 2})
            ToggleRow(row);
        Tap(IDOK); // a beep
        EXPECT_FALSE(IsTicked(1));
        ToggleRow(1);
        ExpectMessage(kQuestion, IDNO);
        Tap(IDOK);
        ConfirmRestore();
        EXPECT_EQ(Listing(HKEY_LOCAL_MACHINE), services);
        EXPECT_EQ(Listing(HKEY_CURRENT_USER), user);
        EXPECT_EQ(Listing(HKEY_CLASSES_ROOT), classes);

        // A cancelled picker, or dialog, is no failure.
        PickToOpen(u"");
        Choose(u"Tools/Restore Registry...");
        ChooseBackup();
        Tap(IDCANCEL);
        InMainWindow();
        Window();
    });
}

// Cancel arrives as the progress opens, for the backup is soon over.
TEST_F(RegistrySession, CancelledBackupLeavesNoFile) {
    ui::TestHooks().dialog = [seen = ui::TestHooks().dialog](const ui::DialogSeen& dialog) {
        seen(dialog);
        if (dialog.dialogTemplate == FindDialogTemplate(IDD_PROGRESS))
            PostMessageW(dialog.window, WM_COMMAND, IDCANCEL, 0);
    };
    RunProgram([&] {
        for (const int answer : {IDYES, IDNO}) {
            ChooseBackup();
            PickToSave(u"all");
            ExpectMessage(u"Cancel registry backup; Are you sure?", answer);
            Tap(IDOK);
            InMainWindow();
            Window();
            EXPECT_EQ(FileExists(kFile), answer == IDNO);
        }
    });
}

// While the first key is shown, which has been found by then, another process deletes it.
TEST_F(RegistrySession, KeyThatVanishesIsPassedOver) {
    device.Restart();
    OtherProcess other({[] {
        storage::Store& store = *storage::TheStore();
        return storage::InTransaction(store, [&] {
            return storage::Statement(store.connection, "DELETE FROM keys WHERE name = '.txt'").Run();
        });
    }});
    ui::TestHooks().dialog = [seen = ui::TestHooks().dialog](const ui::DialogSeen& dialog) {
        seen(dialog);
        if (dialog.dialogTemplate == FindDialogTemplate(IDD_PROGRESS))
            PostMessageW(dialog.window, WM_COMMAND, IDCANCEL, 0);
    };
    RunProgram([&] {
        ChooseBackup();
        PickToSave(u"all");
        ui::TestHooks().messageBox = [&](const ui::MessageBoxSeen&) {
            EXPECT_TRUE(other.Run(0));
            ui::AnswerMessageBox(IDNO);
        };
        Tap(IDOK);
        InMainWindow();
        Window();
    });
    EXPECT_EQ(NumberAt(FileBytes(kFile), 64), 2u); // all but those of the first main key
}

} // namespace
