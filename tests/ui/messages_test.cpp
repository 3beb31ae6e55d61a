// The queue, timers, keys, accelerators and gestures.
#include <QTimer>
#include <QWindow>

#include "platform/menu.h"
#include "platform/shell.h"
#include "platform/ui/core/messagequeue.h"
#include "platform/ui/screen/screen.h"
#include "resources/resource.h"
#include "tests/ui/windowfixture.h"

namespace {

std::vector<UINT> keys; // seen by the subclass procedure
bool swallowKeys = false;
WNDPROC editProcedure = nullptr;

LRESULT EditSubclass(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_KEYDOWN) {
        keys.push_back(static_cast<UINT>(wParam));
        if (swallowKeys)
            return 0;
    }
    return CallWindowProcW(editProcedure, window, message, wParam, lParam);
}

class Messages : public WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        edit = Add(u"EDIT", u"", 0, 1);
        editProcedure = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(EditSubclass)));
        swallowKeys = false;
        Focus(edit);
    }

    std::optional<LRESULT> Handle(HWND window, UINT message, WPARAM, LPARAM lParam) override {
        if (message == WM_TIMER)
            ++timers;
        if (message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN) {
            SHRGINFO info{
                sizeof(SHRGINFO), window, {SignedLoWord(lParam), SignedHiWord(lParam)}, SHRG_RETURNCMD};
            gesture = SHRecognizeGesture(&info);
        }
        return std::nullopt;
    }

    static std::vector<UINT> Queued() {
        std::vector<UINT> queued;
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            queued.push_back(message.message);
        return queued;
    }

    // Until a timer of the host has rung, which every shorter one has done before.
    static void PumpUntilRung(int milliseconds) {
        bool rung = false;
        QTimer::singleShot(milliseconds, [&rung] { rung = true; });
        while (!rung)
            ui::PumpHost(true);
    }

    HWND edit = nullptr;
    int timers = 0;
    DWORD gesture = 12345;
};

TEST_F(Messages, PostedOnesAndInputKeepTheirOrder) {
    PostMessageW(main, WM_USER, 0, 0);
    QTest::keyClick(ui::ScreenArea()->window()->windowHandle(), Qt::Key_A);
    PostMessageW(edit, WM_USER + 1, 0, 0);
    PostQuitMessage(7);
    PostMessageW(main, WM_USER + 2, 0, 0);

    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, 0));
    EXPECT_EQ(message.message, WM_USER);
    EXPECT_TRUE(PeekMessageW(&message, edit, WM_USER + 1, WM_USER + 1, PM_REMOVE));
    EXPECT_EQ(message.message, WM_USER + 1);
    ASSERT_TRUE(GetMessageW(&message, nullptr, 0, 0));
    EXPECT_EQ(message.message, WM_USER);
    ASSERT_TRUE(GetMessageW(&message, nullptr, 0, 0));
    EXPECT_EQ(message.hwnd, edit);
    EXPECT_EQ(message.wParam, WPARAM{'A'});
    ASSERT_TRUE(GetMessageW(&message, nullptr, 0, 0)); // the key's release
    EXPECT_FALSE(GetMessageW(&message, nullptr, 0, 0));
    EXPECT_EQ(message.wParam, WPARAM{7});
    EXPECT_EQ(Queued(), std::vector<UINT>{WM_USER + 2});
    EXPECT_EQ(TextOf(edit), u""); // retrieved, but never dispatched
}

TEST_F(Messages, ATimerWaitsInTheQueueOnce) {
    SetTimer(main, 5, 1, nullptr);
    PumpUntilRung(30);
    MSG message;
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE));
    EXPECT_EQ(ui::FindQueued(WM_TIMER, WM_TIMER), nullptr);
    stylus.WaitFor([this] { return timers >= 2; }, "the timer goes on");
    PumpUntilRung(10);
    ASSERT_TRUE(ui::FindQueued(WM_TIMER, WM_TIMER));
    KillTimer(main, 5);
    EXPECT_TRUE(Queued().empty()); // not even what had fired already
    EXPECT_FALSE(KillTimer(main, 5));
}

TEST_F(Messages, ASubclassProcedureSeesKeysFirst) {
    stylus.Type(u"ab");
    EXPECT_EQ(TextOf(edit), u"ab");
    stylus.Key(Qt::Key_Backspace);
    EXPECT_EQ(keys.back(), VK_BACK);
    EXPECT_EQ(TextOf(edit), u"a");
    swallowKeys = true;
    stylus.Type(u"c");
    stylus.Key(Qt::Key_Backspace);
    EXPECT_EQ(TextOf(edit), u"a");
    swallowKeys = false;
    // Made by the program, with no host event behind them.
    PostMessageW(edit, WM_CHAR, u'z', 0);
    SendMessageW(edit, WM_KEYDOWN, VK_HOME, 0);
    stylus.Settle();
    stylus.Type(u"é"); // a key without a number of the handheld's
    EXPECT_EQ(TextOf(edit), u"zéa");
}

TEST_F(Messages, PointerMessagesOfTheProgramReachTheControl) {
    const HWND button = Add(u"BUTTON", u"Go", 0, 9, {10, 150, 90, 180});
    PostMessageW(button, WM_LBUTTONDOWN, 0, static_cast<LPARAM>(MAKELONG(10, 10)));
    stylus.Settle();
    EXPECT_TRUE(commands.empty());
    PostMessageW(button, WM_LBUTTONUP, 0, static_cast<LPARAM>(MAKELONG(10, 10)));
    stylus.Settle();
    EXPECT_EQ(commands, (std::vector<Command>{{9, BN_CLICKED}}));
}

TEST_F(Messages, AcceleratorsNeedTheirModifiersAndNoMenu) {
    const HACCEL table = LoadAcceleratorsW(nullptr, MAKEINTRESOURCEW(IDR_MAIN_ACCELERATORS));
    ASSERT_TRUE(table);
    EXPECT_EQ(LoadAcceleratorsW(nullptr, MAKEINTRESOURCEW(9999)), nullptr);
    SHMENUBARINFO bar{sizeof bar, main, 0, IDR_MAIN_MENU, nullptr, IDB_MAIN_BUTTONS, 2, nullptr};
    ASSERT_TRUE(SHCreateMenuBar(&bar));
    const auto menu = reinterpret_cast<HMENU>(SendMessageW(bar.hwndMB, SHCMBM_GETMENU, 0, 0));
    EnableMenuItem(menu, IDM_DELETE, MF_BYCOMMAND | MF_GRAYED);
    QWindow* const display = ui::ScreenArea()->window()->windowHandle();
    const auto translated = [&](Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QTest::keyPress(display, key, modifiers);
        bool result = false;
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) // the modifiers are pressed first
            result = TranslateAcceleratorW(main, table, &message) || result;
        QTest::keyRelease(display, key, modifiers);
        Queued();
        return result;
    };
    EXPECT_TRUE(translated(Qt::Key_R, Qt::ControlModifier));
    EXPECT_FALSE(translated(Qt::Key_R, Qt::NoModifier));
    EXPECT_FALSE(translated(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier));
    EXPECT_TRUE(translated(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier));
    EXPECT_TRUE(translated(Qt::Key_D, Qt::ControlModifier)); // greyed in the bar's menu
    EXPECT_EQ(commands, (std::vector<Command>{{IDM_REFRESH, 1}, {IDM_EXPORT, 1}, {IDM_DELETE, 1}}));
}

TEST_F(Messages, AHoldIsToldFromATap) {
    stylus.Tap(main, QPoint(300, 300));
    EXPECT_EQ(gesture, 0u);
    SetTimer(main, 6, 20, nullptr);
    stylus.TapAndHold(main, QPoint(300, 300));
    EXPECT_EQ(gesture, GN_CONTEXTMENU);
    EXPECT_GT(timers, 0); // time goes on meanwhile
    gesture = 1;
    QWindow* display = ui::ScreenArea()->window()->windowHandle();
    QTest::mousePress(display, Qt::LeftButton, {}, QPoint(300, 300));
    QTest::mouseMove(display, QPoint(330, 300));
    stylus.Settle();
    EXPECT_EQ(gesture, 0u);
    QTest::mouseRelease(display, Qt::LeftButton, {}, QPoint(330, 300));
    stylus.TapRight(main, QPoint(300, 300));
    EXPECT_EQ(gesture, GN_CONTEXTMENU);
    gesture = 1;
    SendMessageW(main, WM_LBUTTONDOWN, 0, 0); // no stylus behind it
    EXPECT_EQ(gesture, 0u);
}

} // namespace
