// What the main window keeps over its dialogs.
#include "app/application.h"
#include "app/start/mainwindow.h"
#include "platform/controls.h"
#include "resources/resource.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/session.h"
#include "viewer/recordviewer.h"

namespace {

using MainWindowTest = Session;

} // namespace

TEST_F(MainWindowTest, OptionsKeepTheSelection) {
    for (const WCHAR* name : {u"A", u"B", u"C"})
        MakeDatabase(name, {});
    RunProgram([&] {
        SelectRow(IDC_LIST, u"B");
        Choose(u"View/Refresh"); // remembers it
        SelectRow(IDC_LIST, u"C");
        Choose(u"Tools/Options...");
        InWindow(IDD_OPTIONS);
        Tap(IDC_OPTIONS_BOLD);
        Tap(IDOK);
        InMainWindow();
        EXPECT_EQ(SelectedText(IDC_LIST), u"C");
        EXPECT_EQ(ListView_GetSelectedCount(Control(IDC_LIST)), 1);
    });
}

TEST_F(MainWindowTest, EndOfTheProgramGetsThroughAViewer) {
    MakeDatabase(u"A", {{TextValue(1, u"text")}});
    RunProgram([] {}); // registers the window's class
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
