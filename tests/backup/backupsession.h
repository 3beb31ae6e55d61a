// The steps of a user who backs up and restores from the main window.
#pragma once

#include <filesystem>

#include "app/application.h"
#include "platform/controls.h"
#include "resources/resource.h"
#include "tests/backup/backupfixture.h"
#include "tests/support/session.h"

constexpr const WCHAR* kArchive = u"\\My Documents\\all.bkp";
inline const std::u16string kUnreadable = u"Unable to read from file. File may be corrupted.";
using Names = std::vector<std::u16string>;
inline const QPoint kBelowTheRows(60, 300);

class BackupSession : public Session {
protected:
    BackupSession() { std::filesystem::create_directory(device.folder + "/root/My Documents"); }

    bool Enabled(int id) { return IsWindowEnabled(Control(id)); }
    bool Checked(int id) { return IsDlgButtonChecked(Window(), id) == BST_CHECKED; }

    // Up to the list of the archive's databases.
    void ChooseRestore() {
        InMainWindow();
        PickToOpen(u"all");
        Choose(u"Tools/Restore...");
        InWindow(IDD_SELECTION_LIST);
    }
    void SelectNothing() { stylus.Tap(Control(IDC_LIST), kBelowTheRows); }
    void SelectAllToRestore() {
        TapRow(IDC_SELECTION_LIST, CellText(Control(IDC_SELECTION_LIST), 0, 0));
        Press(Qt::Key_End, Qt::ShiftModifier);
    }
    void AnswerClash(const std::u16string& name, int button) {
        InWindow(IDD_DATABASE_EXISTS);
        EXPECT_EQ(Text(IDC_EXISTS_TEXT), u"Database \"" + name + u"\" already exists.");
        Tap(button);
    }
    // At the main window again.
    void ExpectDatabases(const Names& names) {
        InMainWindow();
        Window();
        EXPECT_EQ(DatabaseNames(), names);
    }
    void TryPassword(const std::u16string& password, const std::u16string& confirmation) {
        InWindow(IDD_PROTECT_BACKUP);
        TypeInto(IDC_PROTECT_PASSWORD, password);
        TypeInto(IDC_PROTECT_CONFIRMATION, confirmation);
        Tap(IDOK);
    }
};
