// The queue, timers, keys, accelerators and gestures.
#include <QTest>
#include <QWindow>
#include <gtest/gtest.h>

#include "platform/controls.h"
#include "platform/menu.h"
#include "platform/shell.h"
#include "platform/ui/messagequeue.h"
#include "platform/ui/windowcore.h"
#include "resources/resource.h"
#include "tests/support/stylus.h"

namespace {

std::vector<UINT> commands;
std::vector<UINT> timers;
std::vector<UINT> keys; // seen by the subclass procedure
DWORD gesture = 12345;
bool swallowKeys = false;
WNDPROC editProcedure = nullptr;

LRESULT TopProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_COMMAND:
        commands.push_back(LOWORD(wParam));
        return 0;
    case WM_TIMER:
        timers.push_back(static_cast<UINT>(wParam));
        return 0;
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN: {
        SHRGINFO info{sizeof(SHRGINFO), window, {SignedLoWord(lParam), SignedHiWord(lParam)}, SHRG_RETURNCMD};
        gesture = SHRecognizeGesture(&info);
        return 0;
    }
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

LRESULT EditSubclass(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_KEYDOWN) {
        keys.push_back(static_cast<UINT>(wParam));
        if (swallowKeys)
            return 0;
    }
    return CallWindowProcW(editProcedure, window, message, wParam, lParam);
}

class Messages : public testing::Test {
protected:
    void SetUp() override {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = TopProcedure;
        windowClass.lpszClassName = u"Messages";
        RegisterClassW(&windowClass);
        top = CreateWindowExW(0, u"Messages", u"Messages", WS_VISIBLE, 0, 0, 0, 0, nullptr, nullptr, nullptr,
                              nullptr);
        edit = CreateWindowExW(0, u"EDIT", u"", WS_CHILD | WS_VISIBLE, 10, 100, 200, 30, top, ChildId(1),
                               nullptr, nullptr);
        editProcedure = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(EditSubclass)));
        SetFocus(edit);
        stylus.Settle();
        commands.clear();
        timers.clear();
        keys.clear();
        swallowKeys = false;
        gesture = 12345;
    }
    void TearDown() override {
        DestroyWindow(top);
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        }
    }
    static std::vector<UINT> Queued() {
        std::vector<UINT> queued;
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            queued.push_back(message.message);
        return queued;
    }

    Stylus stylus;
    HWND top = nullptr;
    HWND edit = nullptr;
};

TEST_F(Messages, PostedOnesAndInputKeepTheirOrder) {
    PostMessageW(top, WM_USER, 0, 0);
    QTest::keyClick(ScreenArea()->window()->windowHandle(), Qt::Key_A);
    PostMessageW(edit, WM_USER + 1, 0, 0);
    PostQuitMessage(7);
    PostMessageW(top, WM_USER + 2, 0, 0);

    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE));
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
    SetTimer(top, 5, 1, nullptr);
    QTest::qWait(30);
    PumpHost(false);
    MSG message;
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE));
    EXPECT_EQ(FindQueued(WM_TIMER, WM_TIMER), nullptr);
    stylus.WaitFor([] { return timers.size() >= 2; }, "the timer goes on");
    QTest::qWait(10);
    PumpHost(false);
    KillTimer(top, 5);
    EXPECT_TRUE(Queued().empty()); // not even what had fired already
    EXPECT_FALSE(KillTimer(top, 5));
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
    const HWND button = CreateWindowExW(0, u"BUTTON", u"Go", WS_CHILD | WS_VISIBLE, 10, 150, 80, 30, top,
                                        ChildId(9), nullptr, nullptr);
    PostMessageW(button, WM_LBUTTONDOWN, 0, static_cast<LPARAM>(MAKELONG(10, 10)));
    stylus.Settle();
    EXPECT_TRUE(commands.empty());
    PostMessageW(button, WM_LBUTTONUP, 0, static_cast<LPARAM>(MAKELONG(10, 10)));
    stylus.Settle();
    EXPECT_EQ(commands, std::vector<UINT>{9});
}

TEST_F(Messages, AcceleratorsNeedTheirModifiersAndNoMenu) {
    const HACCEL table = LoadAcceleratorsW(nullptr, MAKEINTRESOURCEW(IDR_MAIN_ACCELERATORS));
    ASSERT_TRUE(table);
    EXPECT_EQ(LoadAcceleratorsW(nullptr, MAKEINTRESOURCEW(9999)), nullptr);
    SHMENUBARINFO bar{};
    bar.cbSize = sizeof(bar);
    bar.hwndParent = top;
    bar.nToolBarId = IDR_MAIN_MENU;
    bar.nBmpId = IDB_MAIN_BUTTONS;
    bar.cBmpImages = 2;
    ASSERT_TRUE(SHCreateMenuBar(&bar));
    const auto menu = reinterpret_cast<HMENU>(SendMessageW(bar.hwndMB, SHCMBM_GETMENU, 0, 0));
    EnableMenuItem(menu, IDM_DELETE, MF_BYCOMMAND | MF_GRAYED);
    const auto translated = [&](Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QTest::keyPress(ScreenArea()->window()->windowHandle(), key, modifiers);
        bool result = false;
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) // the modifiers are pressed first
            result = TranslateAcceleratorW(top, table, &message) || result;
        QTest::keyRelease(ScreenArea()->window()->windowHandle(), key, modifiers);
        Queued();
        return result;
    };
    EXPECT_TRUE(translated(Qt::Key_R, Qt::ControlModifier));
    EXPECT_FALSE(translated(Qt::Key_R, Qt::NoModifier));
    EXPECT_FALSE(translated(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier));
    EXPECT_TRUE(translated(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier));
    EXPECT_TRUE(translated(Qt::Key_D, Qt::ControlModifier)); // greyed in the bar's menu
    EXPECT_EQ(commands, (std::vector<UINT>{IDM_REFRESH, IDM_EXPORT, IDM_DELETE}));
}

TEST_F(Messages, AHoldIsToldFromATap) {
    stylus.Tap(top, QPoint(300, 300));
    EXPECT_EQ(gesture, 0u);
    SetTimer(top, 6, 20, nullptr);
    stylus.TapAndHold(top, QPoint(300, 300));
    EXPECT_EQ(gesture, GN_CONTEXTMENU);
    EXPECT_FALSE(timers.empty()); // time goes on meanwhile
    gesture = 1;
    QWindow* display = ScreenArea()->window()->windowHandle();
    QTest::mousePress(display, Qt::LeftButton, {}, QPoint(300, 300));
    QTest::mouseMove(display, QPoint(330, 300));
    stylus.Settle();
    EXPECT_EQ(gesture, 0u);
    QTest::mouseRelease(display, Qt::LeftButton, {}, QPoint(330, 300));
    stylus.TapRight(top, QPoint(300, 300));
    EXPECT_EQ(gesture, GN_CONTEXTMENU);
    gesture = 1;
    SendMessageW(top, WM_LBUTTONDOWN, 0, 0); // no stylus behind it
    EXPECT_EQ(gesture, 0u);
}

} // namespace
