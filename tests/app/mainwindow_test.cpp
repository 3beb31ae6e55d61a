// What the main window keeps over its dialogs.
#include "app/application.h"
#include "app/start/mainwindow.h"
#include "platform/controls.h"
#include "resources/resource.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/usersession.h"
#include "viewer/recordviewer.h"

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

TEST_F(MainWindowTest, EndOfTheProgramGetsThroughAViewer) {
    MakeDatabase(u"A", {{TextValue(1, u"text")}});
    RunProgram(); // registers the window's class
    App() = Application();
    ASSERT_TRUE(CreateMainWindow());
    RecordViewer viewer;
    PostQuitMessage(0);
    RunRecordViewer(&viewer, App().mainWindow, u"A");
    EXPECT_FALSE(IsWindow(viewer.dialog));
    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    DestroyWindow(App().mainWindow);
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    }
}
