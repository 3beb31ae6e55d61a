// What the main window keeps over its dialogs.
#include "platform/controls.h"
#include "resources/resource.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/usersession.h"

namespace {

using MainWindowTest = UserSession;

} // namespace

TEST_F(MainWindowTest, OptionsKeepTheSelection) {
    for (const WCHAR* name : {u"A", u"B", u"C"})
        MakeDatabase(name, {});
    TapRow(IDC_LIST, u"B");
    Choose(IDM_REFRESH); // remembers it
    TapRow(IDC_LIST, u"C");
    Choose(IDM_OPTIONS);
    InWindow(IDD_OPTIONS);
    Tap(IDC_OPTIONS_BOLD);
    Tap(IDOK);
    InMainWindow();
    Do([](HWND window) {
        const HWND list = GetDlgItem(window, IDC_LIST);
        EXPECT_EQ(RowText(list, SelectedRow(list), 0), u"C");
        EXPECT_EQ(SendMessageW(list, LVM_GETSELECTEDCOUNT, 0, 0), 1);
    });
    RunProgram();
}
