// Dialogs from templates, what runs them, and message boxes.
#include <QScrollBar>
#include <set>

#include "platform/menu.h"
#include "platform/pickers.h"
#include "platform/shell.h"
#include "platform/ui/core/display.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"
#include "resources/resource.h"
#include "tests/ui/templatebuilder.h"
#include "tests/ui/windowfixture.h"

namespace {

LONG_PTR endAtInit = 0;
bool quitAtCommand = false;
bool destroyAtCommand = false;
HWND initFocus = nullptr;

LONG_PTR DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_INITDIALOG:
        initFocus = reinterpret_cast<HWND>(wParam);
        SetDialogState(dialog, lParam);
        if (endAtInit)
            EndDialog(dialog, endAtInit);
        return TRUE;
    case WM_COMMAND:
        if (quitAtCommand)
            PostQuitMessage(3);
        else if (destroyAtCommand)
            DestroyWindow(dialog);
        else
            EndDialog(dialog, LOWORD(wParam) + 100);
        return TRUE;
    }
    return FALSE;
}

class Dialogs : public WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        ui::TestHooks() = {}; // the tests answer by themselves, from beside the loops
        edit = Add(u"EDIT", u"", 0, 1);
        Focus(edit);
        endAtInit = 0;
        quitAtCommand = destroyAtCommand = false;
    }

    static TemplateBuilder OkCancel() {
        TemplateBuilder builder(u"Question");
        builder.Add(u"STATIC", u"&Name:", 0, 65535).Add(u"EDIT", u"text", WS_TABSTOP, 20, 40, 25, 100, 12);
        builder.Add(u"BUTTON", u"OK", BS_DEFPUSHBUTTON | WS_TABSTOP, IDOK, 7, 60);
        builder.Add(u"BUTTON", u"Cancel", BS_PUSHBUTTON | WS_TABSTOP, IDCANCEL, 80, 60);
        return builder;
    }
    // Runs the dialog with the steps beside it; they get it from its being active.
    LONG_PTR Run(const TemplateBuilder& builder, std::function<void(HWND)> steps) {
        LONG_PTR result = 0;
        const auto program = [&] {
            result = DialogBoxIndirectParamW(nullptr, builder.Get(), main, DialogProcedure, 42);
        };
        stylus.Beside(program, [&steps] { steps(ui::ActiveTopLevel()); });
        return result;
    }
    int RunBox(const std::u16string& text, UINT style, std::function<void(HWND)> steps) {
        int answer = 0;
        const auto program = [&] { answer = MessageBoxW(main, text.c_str(), u"Caption", style); };
        stylus.Beside(program, [&steps] { steps(ui::ActiveTopLevel()); });
        return answer;
    }

    HWND edit = nullptr;
};

TEST_F(Dialogs, TheTemplateMakesTheControls) {
    const LONG units = GetDialogBaseUnits();
    const LONG_PTR result = Run(OkCancel(), [&](HWND dialog) {
        EXPECT_EQ(DialogState<void>(dialog), reinterpret_cast<void*>(42));
        EXPECT_EQ(TextOf(dialog), u"Question");
        EXPECT_EQ(TextOf(dialog, 65535), u"&Name:");
        const HWND text = GetDlgItem(dialog, 20);
        EXPECT_EQ(TextOf(text), u"text");
        EXPECT_EQ(initFocus, text); // the first tab stop
        EXPECT_EQ(GetFocus(), text);
        EXPECT_EQ(SendMessageW(text, EM_GETSEL, 0, 0), static_cast<LRESULT>(MAKELONG(0, 4)));
        const QRect place = text->widget->geometry();
        EXPECT_NEAR(place.x(), 40 * LOWORD(units) / 4.0, 1);
        EXPECT_NEAR(place.y(), 25 * HIWORD(units) / 8.0, 1);
        EXPECT_NEAR(place.width(), 100 * LOWORD(units) / 4.0, 1);
        stylus.Tap(dialog, IDOK);
    });
    EXPECT_EQ(result, IDOK + 100);
}

TEST_F(Dialogs, ABoxScrollsATextThatIsTooLongForTheScreen) {
    stylus.Resize(240, 320);
    RunBox(std::u16string(900, u'x'), MB_ABORTRETRYIGNORE, [&](HWND box) {
        const auto* bar = box->widget->findChild<QScrollBar*>();
        EXPECT_TRUE(bar->isVisible());
        for (const HWND button : box->children)
            EXPECT_TRUE(box->widget->rect().contains(button->widget->geometry()));
        for (int page = 0; page < 9; ++page)
            stylus.Key(Qt::Key_PageDown);
        EXPECT_EQ(bar->value(), bar->maximum());
        stylus.Key(Qt::Key_Escape);
    });
}

TEST_F(Dialogs, TheOwnerWaitsAndGetsTheFocusBack) {
    const LONG_PTR result = Run(OkCancel(), [&](HWND dialog) {
        EXPECT_FALSE(IsWindowEnabled(main));
        EXPECT_EQ(GetParent(dialog), main);
        PostMessageW(main, WM_COMMAND, 77, 0);
        stylus.Settle();
        EXPECT_EQ(commands, (std::vector<Command>{{77, 0}})); // messages go on being dispatched
        stylus.Key(Qt::Key_Escape);
    });
    EXPECT_EQ(result, IDCANCEL + 100);
    EXPECT_TRUE(IsWindowEnabled(main));
    EXPECT_EQ(GetFocus(), edit);
}

TEST_F(Dialogs, EndInEveryWay) {
    const TemplateBuilder builder = OkCancel();
    endAtInit = 9;
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, builder.Get(), main, DialogProcedure, 0), 9);
    endAtInit = 0;
    const auto tapOk = [this](HWND dialog) { stylus.Tap(dialog, IDOK); };
    destroyAtCommand = true;
    EXPECT_EQ(Run(builder, tapOk), 0);
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, nullptr, main, DialogProcedure, 0), -1);
    EXPECT_EQ(ui::ActiveTopLevel(), main);
    EXPECT_TRUE(IsWindowEnabled(main));
    const auto destroyOwner = [this](HWND) { DestroyWindow(main); };
    EXPECT_EQ(Run(builder, destroyOwner), 0);
    main = Top(u"Again");
    EXPECT_EQ(RunBox(u"Shall it?", MB_YESNO, destroyOwner), 0);
}

// Quits are for the loops around a modal one: what is asked meanwhile is seen and answered all the same.
TEST_F(Dialogs, AQuitWaitsForTheAnswer) {
    PostQuitMessage(2);
    quitAtCommand = true;
    Run(OkCancel(), [this](HWND dialog) {
        stylus.Tap(dialog, IDOK);
        EXPECT_TRUE(IsWindow(dialog));
        quitAtCommand = false;
        EXPECT_EQ(RunBox(u"Still?", MB_YESNO, [this](HWND box) { stylus.Tap(box, IDYES); }), IDYES);
        stylus.Tap(dialog, IDOK);
    });
    MSG message;
    std::set<WPARAM> exitCodes;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        if (message.message == WM_QUIT)
            exitCodes.insert(message.wParam);
    EXPECT_EQ(exitCodes, (std::set<WPARAM>{2, 3}));
}

// A progress display leaves its owner enabled; a second start of the program asks for the owner all the same.
TEST_F(Dialogs, AnOwnedOneStaysAboveItsOwner) {
    const TemplateBuilder builder = OkCancel();
    const HWND progress = CreateDialogIndirectParamW(nullptr, builder.Get(), main, DialogProcedure, 0);
    ShowWindow(progress, SW_SHOW);
    const HWND notice = Top(u"Notice", progress);
    const auto stack = [&] { return std::vector<HWND>{main, progress, notice}; };
    for (const HWND asked : {main, progress}) {
        EXPECT_TRUE(SetForegroundWindow(asked));
        ShowWindow(asked, SW_SHOWNORMAL);
        SetFocus(edit);
        stylus.Settle();
        EXPECT_EQ(ui::TopLevelWindows(), stack());
        EXPECT_EQ(ui::ActiveTopLevel(), notice);
        EXPECT_TRUE(ui::IsInside(GetFocus(), notice));
    }
    // Nothing can be typed or tapped beneath.
    stylus.Type(u"x");
    EXPECT_EQ(TextOf(edit), u"");
    EXPECT_FALSE(edit->widget->isVisible());
    // A box that belongs to nobody stands above them, too.
    int answer = 0;
    stylus.Beside([&] { answer = MessageBoxW(nullptr, u"Sure?", u"Caption", MB_YESNO); },
                  [&] {
                      SetForegroundWindow(main);
                      stylus.Key(Qt::Key_Y);
                  });
    EXPECT_EQ(answer, IDYES);
    ShowWindow(notice, SW_HIDE);
    EXPECT_EQ(ui::ActiveTopLevel(), progress);
    DestroyWindow(progress);
    EXPECT_FALSE(IsWindow(notice));
    EXPECT_EQ(GetFocus(), edit);
}

TEST_F(Dialogs, FullScreenOnesStandBelowTheirBarAndHaveADoneButton) {
    const LONG_PTR result = Run(OkCancel(), [&](HWND dialog) {
        RECT client;
        GetClientRect(dialog, &client);
        EXPECT_LT(client.right, 480);
        SHINITDLGINFO info{SHIDIM_FLAGS, dialog, SHIDIF_DONEBUTTON | SHIDIF_SIZEDLGFULLSCREEN};
        SHInitDialog(&info);
        SHMENUBARINFO bar{sizeof bar, dialog, SHCMBF_EMPTYBAR, 0, nullptr, 0, 0, nullptr};
        SHCreateMenuBar(&bar);
        const auto full = 640 - GetSystemMetrics(SM_CYCAPTION);
        GetClientRect(dialog, &client);
        EXPECT_EQ(client.right, 480);
        EXPECT_EQ(client.bottom, full); // an empty bar takes no room
        DestroyWindow(bar.hwndMB);
        bar.dwFlags = 0;
        bar.nToolBarId = 101;
        ASSERT_TRUE(SHCreateMenuBar(&bar));
        GetClientRect(dialog, &client);
        const auto height = static_cast<LONG>(SendMessageW(bar.hwndMB, SHCMBM_GETHEIGHT, 0, 0));
        EXPECT_GT(height, 0);
        EXPECT_EQ(client.bottom, full - height);
        stylus.TapTitleButton();
    });
    EXPECT_EQ(result, IDOK + 100);
}

// A rotation or a small screen while it is open: what is wide grows, buttons keep their places, and what does
// not fit comes into sight with the focus.
TEST_F(Dialogs, FullScreenOnesFollowTheScreen) {
    TemplateBuilder builder = OkCancel();
    builder.Add(u"EDIT", u"", WS_TABSTOP | ES_MULTILINE, 21, 7, 74, 214, 60);
    builder.Add(u"BUTTON", u"Below", BS_PUSHBUTTON | WS_TABSTOP, 22, 171, 140, 50);
    Run(builder, [&](HWND dialog) {
        SHINITDLGINFO info{SHIDIM_FLAGS, dialog, SHIDIF_SIZEDLGFULLSCREEN};
        SHInitDialog(&info);
        const auto placeOf = [dialog](int id) {
            const WindowObject& control = *GetDlgItem(dialog, id);
            const QWidget* widget = control.widget;
            return QRect(widget->mapTo(ui::ScreenArea(), QPoint(0, 0)), widget->size());
        };
        const QRect editor = placeOf(21);
        const int margin = 480 - editor.right();
        const int gap = placeOf(22).top() - editor.bottom();
        stylus.Resize(900, 700);
        EXPECT_EQ(placeOf(21).right(), 900 - margin);
        EXPECT_EQ(placeOf(22).right(), placeOf(21).right());
        EXPECT_EQ(placeOf(22).top() - placeOf(21).bottom(), gap);
        EXPECT_GT(placeOf(21).height(), editor.height());
        EXPECT_LT(placeOf(IDOK).left(), margin + 1);
        stylus.Resize(240, 300);
        for (const int id : {22, static_cast<int>(IDOK)}) {
            SetFocus(GetDlgItem(dialog, id));
            EXPECT_TRUE(ui::ScreenArea()->rect().contains(placeOf(id))) << id;
        }
        stylus.Resize(480, 640);
        EXPECT_EQ(placeOf(21), editor);
        stylus.Tap(dialog, IDOK);
    });
}

// ---- message boxes ----

TEST_F(Dialogs, BoxesAnswerByTapKeyAndMnemonic) {
    struct Case {
        UINT style;
        Qt::Key key;
        int answer;
    };
    const Case cases[] = {
        {MB_OK, Qt::Key_Return, IDOK},
        {MB_OK, Qt::Key_Escape, IDOK},
        {MB_YESNO, Qt::Key_Return, IDYES},
        {MB_YESNO | MB_DEFBUTTON2, Qt::Key_Return, IDNO},
        {MB_YESNO, Qt::Key_Escape, IDNO},
        {MB_YESNO, Qt::Key_N, IDNO},
        {MB_YESNOCANCEL, Qt::Key_Escape, IDCANCEL},
        {MB_YESNOCANCEL | MB_DEFBUTTON2, Qt::Key_Right, IDCANCEL},
        {MB_ABORTRETRYIGNORE, Qt::Key_Escape, IDABORT},
        {MB_ABORTRETRYIGNORE, Qt::Key_I, IDIGNORE},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.style);
        const int answer = RunBox(u"Shall it?", one.style | MB_ICONQUESTION, [&](HWND) {
            EXPECT_FALSE(IsWindowEnabled(main));
            stylus.Key(one.key);
            if (one.key == Qt::Key_Right)
                stylus.Key(Qt::Key_Return);
        });
        EXPECT_EQ(answer, one.answer);
        EXPECT_EQ(GetFocus(), edit);
        EXPECT_TRUE(IsWindowEnabled(main));
    }
    EXPECT_EQ(RunBox(u"Tapped?", MB_YESNO, [this](HWND box) { stylus.Tap(box, IDYES); }), IDYES);
}

TEST_F(Dialogs, BoxesFitTheScreenWhateverTheirText) {
    std::u16string path(500, u'x');
    std::u16string words;
    while (words.size() < 500)
        words += u"some words to break, and so some more of them\n";
    for (const QSize& screen : {QSize(480, 640), QSize(640, 480)}) {
        stylus.Resize(screen.width(), screen.height());
        for (const std::u16string& text : {path, words}) {
            RunBox(
                text, MB_ICONEXCLAMATION,
                [&](HWND box) {
                    const QSize& size = box->topLevel->cardSize;
                    const QSize wanted = size;
                    EXPECT_LE(wanted.width(), ui::ScreenArea()->width());
                    EXPECT_LE(wanted.height(), ui::ScreenArea()->height());
                    EXPECT_GT(wanted.height(), 140);                // more than a few lines
                    stylus.Resize(screen.height(), screen.width()); // turned while the box is open
                    EXPECT_LE(size.height(), ui::ScreenArea()->height());
                    stylus.Resize(300, 640);
                    EXPECT_LT(size.width(), wanted.width());
                    stylus.Resize(screen.width(), screen.height());
                    EXPECT_EQ(size, wanted);
                    ui::AnswerMessageBox(IDOK); // wherever its button stands
                });
        }
    }
}

TEST_F(Dialogs, WithoutADisplayNothingWaits) {
    ui::SetNoDisplay(true);
    testing::internal::CaptureStderr();
    for (const UINT style : {MB_OK, MB_YESNO, MB_YESNOCANCEL, MB_ABORTRETRYIGNORE})
        EXPECT_EQ(MessageBoxW(nullptr, u"Two\r\nlines", u"Caption", style), 0);
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, OkCancel().Get(), main, DialogProcedure, 0), IDCANCEL);
    const HMENU menu = LoadMenuW(nullptr, MAKEINTRESOURCEW(IDR_LIST_MENU));
    EXPECT_FALSE(TrackPopupMenuEx(GetSubMenu(menu, 0), 0, 0, 0, main, nullptr));
    DestroyMenu(menu);
    WCHAR path[MAX_PATH] = u".bkp";
    OPENFILENAMEW info{};
    info.lpstrFile = path;
    info.nMaxFile = MAX_PATH;
    EXPECT_FALSE(GetSaveFileNameW(&info));
    const std::string printed = testing::internal::GetCapturedStderr();
    ui::SetNoDisplay(false);
    EXPECT_EQ(printed, "Caption: Two lines\n"
                       "Caption: Two lines (nobody to ask: No)\n"
                       "Caption: Two lines (nobody to ask: Cancel)\n"
                       "Caption: Two lines (nobody to ask: Abort)\n"
                       "Question: a dialog was cancelled, since there is no display\n"
                       "Save As: a file cannot be chosen without a display\n");
}

} // namespace
