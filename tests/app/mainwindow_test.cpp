// What the main window keeps over its dialogs.
#include <QImage>
#include <QWidget>

#include "app/application.h"
#include "app/start/mainwindow.h"
#include "platform/controls.h"
#include "platform/gdi.h"
#include "platform/ui/core/windowobject.h"
#include "resources/resource.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/session.h"
#include "viewer/recordviewer.h"

namespace {

using MainWindowTest = Session;

// Of the pixels drawn in a dialog's title.
int TitleWidth(HWND dialog) {
    const QImage shown = dialog->widget->grab().toImage();
    const QRgb background = shown.pixel(0, 0);
    int first = -1;
    int last = -1;
    for (int x = 0; x < shown.width() / 2; ++x)
        for (int y = 1; y < GetSystemMetrics(SM_CYCAPTION) - 1; ++y)
            if (shown.pixel(x, y) != background) {
                last = x;
                first = first < 0 ? x : first;
            }
    return last - first;
}

int WidthOf(HFONT font, const std::u16string& text) {
    const HDC dc = CreateCompatibleDC(nullptr);
    SelectObject(dc, font);
    SIZE size = {};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    DeleteDC(dc);
    return static_cast<int>(size.cx);
}

} // namespace

TEST_F(MainWindowTest, OptionsKeepTheSelection) {
    for (const WCHAR* name : {u"A", u"B", u"C"})
        MakeDatabase(name, {});
    RunProgram([&] {
        CatchHelp();
        Press(Qt::Key_F1);
        EXPECT_EQ(HelpShown(), "tarnwickscope.htm#tarnwickscope_help");
        SelectRow(IDC_LIST, u"B");
        Choose(u"View/Refresh"); // remembers it
        SelectRow(IDC_LIST, u"C");
        Choose(u"Tools/Options...");
        InWindow(IDD_OPTIONS);
        EXPECT_GT(TitleWidth(Window()), WidthOf(App().settings->listFont, u"Options")); // bold
        Tap(IDC_FRAME_HELP);
        EXPECT_EQ(HelpShown(), "tarnwickscope.htm#options");
        Tap(IDC_OPTIONS_BOLD);
        Tap(IDOK);
        InMainWindow();
        EXPECT_EQ(SelectedText(IDC_LIST), u"C");
        EXPECT_EQ(ListView_GetSelectedCount(Control(IDC_LIST)), 1);
        Choose(u"Tools/Options...");
        InWindow(IDD_OPTIONS);
        Tap(IDC_OPTIONS_BOLD);
        Tap(IDCANCEL);
        InMainWindow();
        Window();
        EXPECT_EQ(App().settings->bold, 1u);
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
