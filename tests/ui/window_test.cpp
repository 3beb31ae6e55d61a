// Windows: their lives, their relatives, focus and activation, the display and its title bar.
#include <QScreen>
#include <algorithm>

#include "platform/shell.h"
#include "platform/ui/drawing/cursors.h"
#include "platform/ui/screen/screen.h"
#include "resources/resource.h"
#include "tests/ui/windowfixture.h"

namespace {

struct Seen {
    HWND window;
    UINT message;
    WPARAM wParam;
    bool operator==(const Seen&) const = default;
};

class Windows : public WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        seen.clear();
    }

    std::optional<LRESULT> Handle(HWND window, UINT message, WPARAM wParam, LPARAM) override {
        switch (message) {
        case WM_CREATE:
            return createResult;
        case WM_COMMAND:
            DestroyWindow(destroyOnCommand);
            [[fallthrough]];
        case WM_DESTROY:
        case WM_SIZE:
        case WM_SETTINGCHANGE:
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
        case WM_ACTIVATE:
        case WM_CLOSE:
            seen.push_back({window, message, wParam});
            return 0;
        }
        return std::nullopt;
    }

    std::ptrdiff_t PlaceOf(const Seen& wanted) const {
        const auto found = std::find(seen.begin(), seen.end(), wanted);
        return found == seen.end() ? -1 : found - seen.begin();
    }

    std::vector<Seen> seen;
    LRESULT createResult = 0;
    HWND destroyOnCommand = nullptr;
};

TEST_F(Windows, AreRefusedWhereTheyCannotLive) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.lpszClassName = u"WINDOWTEST";
    EXPECT_EQ(RegisterClassW(&windowClass), 0); // taken, whatever its case
    EXPECT_EQ(CreateWindowExW(0, u"NoSuchClass", u"", 0, 0, 0, 0, 0, main, nullptr, nullptr, nullptr),
              nullptr);
    EXPECT_EQ(CreateWindowExW(0, u"BUTTON", u"", WS_CHILD, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr),
              nullptr);
    createResult = -1;
    EXPECT_EQ(Top(u"Refused"), nullptr);
    EXPECT_EQ(seen.back().message, WM_DESTROY);
    EXPECT_EQ(ui::TopLevelWindows(), std::vector<HWND>{main});
    // Nor are extra bytes beyond those of the class.
    SetWindowLongPtrW(main, 0, 78);
    SetWindowLongPtrW(main, 4, 1);
    SetWindowLongPtrW(main, -100, 1);
    EXPECT_EQ(GetWindowLongPtrW(main, 0), 78);
    EXPECT_EQ(GetWindowLongPtrW(main, 4), 0);
}

TEST_F(Windows, DieFromTheTopDownAndTheirHandlesStaySafe) {
    const HWND panel = Add(kClass, u"", 0, 1);
    const HWND inner = Add(kClass, u"", 0, 2, {0, 0, 100, 30}, panel);
    const HWND owned = Top(u"Owned", main);
    EXPECT_EQ(GetWindow(main, GW_CHILD), panel);
    EXPECT_EQ(GetParent(inner), panel);
    EXPECT_EQ(GetParent(owned), main);
    PostMessageW(inner, WM_COMMAND, 1, 0);
    SetTimer(inner, 1, 0, nullptr);
    seen.clear();
    ASSERT_TRUE(DestroyWindow(main));
    std::vector<HWND> died;
    for (const Seen& entry : seen)
        if (entry.message == WM_DESTROY)
            died.push_back(entry.window);
    EXPECT_EQ(died, (std::vector<HWND>{owned, main, panel, inner}));
    seen.clear();
    stylus.Settle();
    EXPECT_TRUE(seen.empty()); // nothing reaches them any more
    for (const HWND dead : died) {
        EXPECT_FALSE(IsWindow(dead));
        EXPECT_EQ(SendMessageW(dead, WM_GETTEXTLENGTH, 0, 0), 0);
        EXPECT_EQ(GetParent(dead), nullptr);
        EXPECT_FALSE(PostMessageW(dead, WM_CLOSE, 0, 0));
        EXPECT_FALSE(ShowWindow(dead, SW_SHOW));
        EXPECT_FALSE(DestroyWindow(dead));
        RECT rect;
        EXPECT_FALSE(GetClientRect(dead, &rect));
    }
}

TEST_F(Windows, MayDieInTheirOwnHandling) {
    destroyOnCommand = main;
    const HWND button = Add(u"BUTTON", u"child", 0, 5);
    stylus.Tap(button, QPoint(20, 10));
    EXPECT_FALSE(IsWindow(main));
    EXPECT_FALSE(IsWindow(button));

    main = Top(u"Again");
    destroyOnCommand = Add(u"BUTTON", u"child", 0, 5); // the button alone
    stylus.Tap(destroyOnCommand, QPoint(20, 10));
    EXPECT_TRUE(IsWindow(main));
    EXPECT_EQ(GetWindow(main, GW_CHILD), nullptr);
}

TEST_F(Windows, DisabledOnesGetNoInput) {
    const HWND button = Add(u"BUTTON", u"child", 0, 5);
    EnableWindow(button, FALSE);
    stylus.Tap(button, QPoint(20, 10));
    EXPECT_EQ(PlaceOf({main, WM_COMMAND, 5}), -1);
    EnableWindow(button, TRUE);
    EnableWindow(main, FALSE);
    stylus.Tap(button, QPoint(20, 10));
    EXPECT_EQ(PlaceOf({main, WM_COMMAND, 5}), -1);
    EnableWindow(main, TRUE);
    stylus.Tap(button, QPoint(20, 10));
    EXPECT_NE(PlaceOf({main, WM_COMMAND, 5}), -1);
}

TEST_F(Windows, TheFocusComesBackToTheChildThatHadIt) {
    const HWND first = Add(u"EDIT", u"child", 0, 1);
    const HWND second = Add(u"EDIT", u"child", 0, 2, {10, 50, 210, 80});
    SetFocus(first);
    EXPECT_EQ(SetFocus(second), first);
    stylus.Type(u"x");
    EXPECT_EQ(TextOf(second), u"xchild");

    seen.clear();
    const HWND other = Top(u"Other", main);
    EXPECT_EQ(GetFocus(), other);
    EXPECT_LT(PlaceOf({main, WM_ACTIVATE, WA_INACTIVE}), PlaceOf({other, WM_ACTIVATE, WA_ACTIVE}));
    EXPECT_NE(PlaceOf({main, WM_ACTIVATE, WA_INACTIVE}), -1);
    EXPECT_FALSE(first->widget->isVisible()); // covered
    seen.clear();
    DestroyWindow(other);
    stylus.Settle();
    EXPECT_EQ(GetFocus(), second);
    EXPECT_NE(PlaceOf({main, WM_ACTIVATE, WA_ACTIVE}), -1);
    stylus.Type(u"y");
    EXPECT_TRUE(TextOf(second).find(u'y') != std::u16string::npos);

    stylus.Tap(first, QPoint(20, 10));
    EXPECT_EQ(GetFocus(), first);
    DestroyWindow(first);
    EXPECT_TRUE(ui::IsInside(GetFocus(), main)); // somebody has it
}

TEST_F(Windows, TheDisplayTellsOfItsSizeAndThenOfItsOrientation) {
    RECT client;
    GetClientRect(main, &client);
    EXPECT_EQ(client.right, 480);
    EXPECT_EQ(client.bottom, 640 - GetSystemMetrics(SM_CYCAPTION));
    POINT corner{3, 4};
    ClientToScreen(main, &corner);
    EXPECT_EQ(corner.y, 4 + GetSystemMetrics(SM_CYCAPTION));
    ScreenToClient(main, &corner);
    EXPECT_EQ(corner.y, 4);

    stylus.Resize(500, 600); // still taller than wide
    EXPECT_EQ(seen, (std::vector<Seen>{{main, WM_SIZE, 0}}));
    seen.clear();
    stylus.Resize(640, 480);
    EXPECT_EQ(seen, (std::vector<Seen>{{main, WM_SIZE, 0}, {main, WM_SETTINGCHANGE, 0x3002}}));
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 640);
    EXPECT_EQ(GetSystemMetrics(SM_CYSCREEN), 480);
}

// Two texts in quick succession, and no message retrieved after them: each is seen at once.
TEST_F(Windows, WhatIsSetIsOnTheDisplayWhenItHasBeenUpdated) {
    const HWND line = Add(u"STATIC", u"", 0, 1, {0, 0, 400, 40});
    QWidget* const display = ui::ScreenArea()->window();
    const auto shown = [display] {
        return QGuiApplication::primaryScreen()->grabWindow(display->winId()).toImage();
    };
    std::vector<QImage> pictures{shown()};
    for (const WCHAR* text : {u"Record 1", u"Record 2"}) {
        SetWindowTextW(line, text);
        EXPECT_TRUE(UpdateWindow(main));
        pictures.push_back(shown());
    }
    EXPECT_NE(pictures[0], pictures[1]);
    EXPECT_NE(pictures[1], pictures[2]);
}

TEST_F(Windows, TheTitleBarSpeaksForTheActiveOne) {
    EXPECT_EQ(ui::ScreenArea()->window()->windowTitle().section(u' ', 0, 0), QStringLiteral("Main"));
    SHInitMainWindow(main);
    seen.clear();
    stylus.TapTitleButton();
    EXPECT_EQ(seen.back(), (Seen{main, WM_CLOSE, 0}));
    ui::ScreenArea()->window()->close(); // as the host's window manager does
    stylus.Settle();
    EXPECT_EQ(seen.size(), 2u);
    EXPECT_TRUE(ui::ScreenArea()->isVisible());
}

TEST_F(Windows, AreFoundByClassAndTitle) {
    EXPECT_EQ(FindWindowW(u"windowtest", nullptr), main);
    EXPECT_EQ(FindWindowW(kClass, u"Main"), main);
    EXPECT_EQ(FindWindowW(kClass, u"Other"), nullptr);
    EXPECT_EQ(FindWindowW(u"BUTTON", nullptr), nullptr);
}

TEST_F(Windows, IconsComeInAllSizes) {
    const HICON icon = LoadImageW(nullptr, MAKEINTRESOURCEW(IDI_MAIN), IMAGE_ICON, 16, 16, 0);
    ASSERT_TRUE(icon);
    const QList<QSize> sizes = ui::HostIcon(icon).availableSizes();
    for (const int side : {16, 22, 24, 32, 48, 64, 128, 256})
        EXPECT_TRUE(sizes.contains(QSize(side, side))) << side;
    EXPECT_EQ(LoadImageW(nullptr, MAKEINTRESOURCEW(9999), IMAGE_ICON, 32, 32, 0), nullptr);
}

} // namespace
