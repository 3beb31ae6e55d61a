// Menus as data, tracked menus, and the menu bar.
#include <QAction>
#include <QTest>
#include <chrono>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>

#include "platform/resources.h"
#include "platform/ui/menubarwidget.h"
#include "platform/ui/testhooks.h"
#include "platform/ui/windowobject.h"
#include "resources/resource.h"

namespace {

struct Seen {
    std::vector<UINT> commands;
    std::vector<HMENU> popups;
    int barSizeChanges = 0;
    bool greyCopy = false; // when a popup is about to show
};
Seen seen;

LRESULT OwnerProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_COMMAND:
        seen.commands.push_back(LOWORD(wParam));
        return 0;
    case WM_INITMENUPOPUP:
        seen.popups.push_back(reinterpret_cast<HMENU>(wParam));
        if (seen.greyCopy)
            EnableMenuItem(seen.popups.back(), IDM_COPY, MF_BYCOMMAND | MF_GRAYED);
        return 0;
    case WM_NOTIFY:
        seen.barSizeChanges += reinterpret_cast<NMHDR*>(lParam)->code == MBN_SIZECHANGED;
        return 0;
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

bool PumpUntil(const std::function<bool()>& reached) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!reached() && std::chrono::steady_clock::now() < deadline) {
        MSG message;
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
    }
    return reached();
}

QAction* ActionOf(const QMenu* popup, const QString& text) {
    for (QAction* const action : popup->actions()) {
        if (action->text().startsWith(text))
            return action;
    }
    return nullptr;
}

class Menus : public testing::Test {
protected:
    void SetUp() override {
        seen = {};
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = OwnerProcedure;
        windowClass.lpszClassName = u"MenuOwner";
        RegisterClassW(&windowClass); // once is enough
        window = CreateWindowExW(0, u"MenuOwner", u"Menus", WS_VISIBLE, 0, 0, 0, 0, nullptr, nullptr, nullptr,
                                 nullptr);
    }
    void TearDown() override {
        TestHooks() = {};
        DestroyWindow(window);
    }
    MenuBarWidget* MakeBar(UINT definition, int bitmap, int images) {
        SHMENUBARINFO info{sizeof info, window, 0, definition, nullptr, bitmap, images, nullptr};
        if (!SHCreateMenuBar(&info))
            return nullptr;
        bar = info.hwndMB;
        return qobject_cast<MenuBarWidget*>(bar->widget);
    }
    void ResizeScreen(int width, int height) {
        ScreenArea()->window()->resize(width, height);
        PumpUntil([] { return true; });
    }
    HWND window = nullptr;
    HWND bar = nullptr;
};

} // namespace

TEST(MenuData, ComesFromTheResource) {
    const HMENU menu = LoadMenuW(nullptr, MAKEINTRESOURCEW(IDR_MAIN_MENU));
    ASSERT_NE(LiveMenu(menu), nullptr);
    ASSERT_EQ(menu->items.size(), 3u);
    EXPECT_EQ(menu->items[0].text, QStringLiteral("&Edit"));
    const HMENU edit = GetSubMenu(menu, 0);
    EXPECT_EQ(edit->items[0].text, QStringLiteral("&View/Modify\tEnter"));
    EXPECT_TRUE(edit->items[1].separator);
    EXPECT_EQ(edit->items[2].id, static_cast<UINT>(IDM_COPY));
    EXPECT_EQ(GetSubMenu(menu, 3), nullptr);
    EXPECT_EQ(GetSubMenu(menu, -1), nullptr);
    EXPECT_EQ(GetSubMenu(edit, 0), nullptr);

    EXPECT_FALSE(DestroyMenu(edit)); // its parent's
    EXPECT_TRUE(DestroyMenu(menu));
    EXPECT_FALSE(DestroyMenu(menu));
    EXPECT_EQ(GetSubMenu(menu, 0), nullptr);
    EXPECT_EQ(EnableMenuItem(edit, IDM_COPY, MF_GRAYED), -1);
    EXPECT_EQ(LoadMenuW(nullptr, MAKEINTRESOURCEW(1)), nullptr);
}

TEST(MenuData, StatesAreKeptByCommandAndByPosition) {
    const HMENU menu = LoadMenuW(nullptr, MAKEINTRESOURCEW(IDR_MAIN_MENU));
    EXPECT_EQ(EnableMenuItem(menu, IDM_COPY, MF_BYCOMMAND | MF_GRAYED), static_cast<int>(MF_ENABLED));
    EXPECT_EQ(EnableMenuItem(GetSubMenu(menu, 0), 2, MF_BYPOSITION | MF_ENABLED),
              static_cast<int>(MF_GRAYED));
    EXPECT_TRUE(FindMenuItem(menu, IDM_COPY)->enabled);
    EXPECT_EQ(EnableMenuItem(menu, 12345, MF_GRAYED), -1);

    const auto checkView = [&](UINT view) {
        return CheckMenuRadioItem(menu, IDM_VIEW_SMALL_ICONS, IDM_VIEW_LARGE_ICONS, view, MF_BYCOMMAND);
    };
    EXPECT_TRUE(checkView(IDM_VIEW_LIST));
    EXPECT_TRUE(checkView(IDM_VIEW_LARGE_ICONS));
    EXPECT_FALSE(FindMenuItem(menu, IDM_VIEW_LIST)->radioChecked);
    EXPECT_TRUE(FindMenuItem(menu, IDM_VIEW_LARGE_ICONS)->radioChecked);
    EXPECT_FALSE(checkView(12345));
    DestroyMenu(menu);
}

TEST(MenuData, BrokenResourcesMakeNoMenu) {
    const HRSRC resource = FindResourceW(nullptr, MAKEINTRESOURCEW(IDR_VIEWER_MENU), RT_MENU);
    const auto* const bytes = static_cast<const std::byte*>(LoadResource(nullptr, resource));
    const std::size_t size = SizeofResource(nullptr, resource);
    EXPECT_NE(ParseMenu(bytes, size), nullptr);
    for (std::size_t cut = 0; cut < size; cut++)
        EXPECT_EQ(ParseMenu(std::vector<std::byte>(bytes, bytes + cut).data(), cut), nullptr) << cut;
    // Popups within popups without end.
    std::vector<WORD> deep(2000, 0);
    for (std::size_t i = 2; i + 1 < deep.size(); i += 2)
        deep[i] = 0x10 | 0x80;
    EXPECT_EQ(ParseMenu(deep.data(), deep.size() * sizeof(WORD)), nullptr);
}

TEST_F(Menus, ATrackedMenuRunsUntilAChoiceIsPosted) {
    seen.greyCopy = true;
    const HMENU menu = LoadMenuW(nullptr, MAKEINTRESOURCEW(IDR_LIST_MENU));
    const HMENU popup = GetSubMenu(menu, 0);
    bool copyEnabled = true;
    TestHooks().menu = [&](QMenu* shown) {
        copyEnabled = ActionOf(shown, QStringLiteral("&Copy"))->isEnabled();
        QTest::mouseClick(shown, Qt::LeftButton, {},
                          shown->actionGeometry(ActionOf(shown, QStringLiteral("&Delete"))).center());
    };
    EXPECT_TRUE(TrackPopupMenuEx(popup, TPM_RIGHTALIGN, 100, 100, window, nullptr));
    EXPECT_FALSE(copyEnabled); // as WM_INITMENUPOPUP left it
    EXPECT_EQ(seen.popups, std::vector{popup});
    EXPECT_TRUE(seen.commands.empty()); // posted, not sent
    EXPECT_TRUE(PumpUntil([] { return seen.commands == std::vector<UINT>{IDM_DELETE}; }));

    TestHooks().menu = [](QMenu* shown) { QTest::keyClick(shown, Qt::Key_Escape); };
    EXPECT_TRUE(TrackPopupMenuEx(popup, 0, 100, 100, window, nullptr));
    DestroyMenu(menu);
    EXPECT_FALSE(TrackPopupMenuEx(popup, 0, 100, 100, window, nullptr));
    PumpUntil([] { return true; });
    EXPECT_EQ(seen.commands.size(), 1u);
}

TEST_F(Menus, APopupShowsEveryMark) {
    const HMENU menu = LoadMenuW(nullptr, MAKEINTRESOURCEW(IDR_MAIN_MENU));
    CheckMenuRadioItem(menu, IDM_VIEW_SMALL_ICONS, IDM_VIEW_LARGE_ICONS, IDM_VIEW_LIST, MF_BYCOMMAND);
    CheckMenuRadioItem(menu, IDM_ARRANGE_BY_NAME, IDM_ARRANGE_BY_DATE, IDM_ARRANGE_BY_SIZE, MF_BYCOMMAND);
    const std::unique_ptr<QMenu> popup(MakePopup(GetSubMenu(menu, 1), window, 1));
    QStringList marked;
    for (const QAction* const action : popup->actions()) {
        if (action->isChecked())
            marked += action->text();
    }
    EXPECT_EQ(marked, QStringList({QStringLiteral("&List"), QStringLiteral("Arrange by &Size")}));
    DestroyMenu(menu);
}

TEST_F(Menus, TheBarRunsItsButtonsAndPopups) {
    MenuBarWidget* const widget = MakeBar(IDR_MAIN_MENU, IDB_MAIN_BUTTONS, 2);
    ASSERT_NE(widget, nullptr);
    EXPECT_EQ(SendMessageW(bar, SHCMBM_GETHEIGHT, 0, 0), widget->height());
    const auto menu = reinterpret_cast<HMENU>(SendMessageW(bar, SHCMBM_GETMENU, 0, 0));
    ASSERT_EQ(widget->Buttons().size(), 5u);
    BarButton* const view = widget->Buttons()[1];
    BarButton* const deletion = widget->Buttons()[3];
    EXPECT_EQ(deletion->accessibleName(), QStringLiteral("Delete"));

    SendMessageW(bar, TB_ENABLEBUTTON, IDM_DELETE, FALSE);
    QTest::mouseClick(deletion, Qt::LeftButton);
    SendMessageW(bar, TB_ENABLEBUTTON, IDM_PROPERTIES, TRUE);
    QTest::mouseClick(widget->Buttons()[4], Qt::LeftButton);
    EXPECT_TRUE(PumpUntil([] { return seen.commands == std::vector<UINT>{IDM_PROPERTIES}; }));

    TestHooks().menu = [](QMenu* shown) {
        ActionOf(shown, QStringLiteral("&List"))->trigger();
        shown->close();
    };
    QTest::mousePress(view, Qt::LeftButton);
    EXPECT_TRUE(PumpUntil([] { return seen.commands.size() == 2; }));
    EXPECT_EQ(seen.commands.back(), static_cast<UINT>(IDM_VIEW_LIST));
    EXPECT_EQ(seen.popups, std::vector{GetSubMenu(menu, 1)});

    DestroyWindow(bar);
    EXPECT_EQ(MenuBarOf(window), nullptr);
    EXPECT_EQ(LiveMenu(menu), nullptr);
}

TEST_F(Menus, KeysOpenPopupsAndMoveAlongTheBar) {
    MenuBarWidget* const widget = MakeBar(IDR_MAIN_MENU, IDB_MAIN_BUTTONS, 2);
    ASSERT_NE(widget, nullptr);
    QString firstItem;
    TestHooks().menu = [&](QMenu* shown) { firstItem = shown->actions().front()->text(); };
    EXPECT_TRUE(MenuBarMnemonic(bar, u't'));
    EXPECT_TRUE(firstItem.startsWith(QStringLiteral("&Backup")));
    // The arrow leads from the last popup to the first, and Escape away from it.
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Right);
    EXPECT_TRUE(firstItem.startsWith(QStringLiteral("&View/Modify")));
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_FALSE(MenuBarMnemonic(bar, u'q'));

    EXPECT_TRUE(EnterMenuMode(bar));
    SendMessageW(bar, TB_ENABLEBUTTON, IDM_DELETE, FALSE);
    for (int step = 0; step < 3; step++)
        QTest::keyClick(widget->window(), Qt::Key_Right);
    EXPECT_EQ(widget->Marked(), widget->Buttons()[4]); // past the greyed one
    QTest::keyClick(widget->window(), Qt::Key_Return);
    EXPECT_EQ(widget->Marked(), nullptr);
    EXPECT_TRUE(PumpUntil([] { return seen.commands == std::vector<UINT>{IDM_PROPERTIES}; }));
}

TEST_F(Menus, TheBarWrapsAndSaysSo) {
    ResizeScreen(480, 640);
    MenuBarWidget* const widget = MakeBar(IDR_VIEWER_MENU, IDB_VIEWER_BUTTONS, 9);
    ASSERT_NE(widget, nullptr);
    const auto oneRow = SendMessageW(bar, SHCMBM_GETHEIGHT, 0, 0);
    EXPECT_EQ(widget->Buttons().front()->y(), widget->Buttons().back()->y());
    EXPECT_GE(oneRow, 34);
    EXPECT_LE(oneRow, 40);

    seen.barSizeChanges = 0;
    ResizeScreen(240, 640);
    EXPECT_GT(SendMessageW(bar, SHCMBM_GETHEIGHT, 0, 0), oneRow);
    EXPECT_EQ(widget->height(), SendMessageW(bar, SHCMBM_GETHEIGHT, 0, 0));
    EXPECT_EQ(seen.barSizeChanges, 1);
    for (const BarButton* const button : widget->Buttons())
        EXPECT_TRUE(widget->rect().contains(button->geometry()));
    ResizeScreen(480, 640);

    SHMENUBARINFO empty{sizeof empty, window, SHCMBF_EMPTYBAR, 0, nullptr, 0, 0, nullptr};
    DestroyWindow(bar);
    EXPECT_TRUE(SHCreateMenuBar(&empty));
    EXPECT_EQ(SendMessageW(empty.hwndMB, SHCMBM_GETHEIGHT, 0, 0), 0);
    SHMENUBARINFO absent{sizeof absent, window, 0, 1, nullptr, 0, 0, nullptr};
    EXPECT_FALSE(SHCreateMenuBar(&absent));
}
