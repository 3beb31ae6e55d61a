// Menus as data, tracked menus, and the menu bar.
#include <QAction>

#include "platform/resources.h"
#include "platform/ui/menus/menubarwidget.h"
#include "resources/resource.h"
#include "tests/ui/windowfixture.h"

namespace {

QAction* ActionOf(const QMenu* popup, const QString& text) {
    for (QAction* const action : popup->actions())
        if (action->text().startsWith(text))
            return action;
    return nullptr;
}

class Menus : public WindowTest {
protected:
    std::optional<LRESULT> Handle(HWND, UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_INITMENUPOPUP) {
            popups.push_back(reinterpret_cast<HMENU>(wParam));
            if (greyCopy)
                EnableMenuItem(popups.back(), IDM_COPY, MF_BYCOMMAND | MF_GRAYED);
        }
        if (message == WM_NOTIFY)
            barSizeChanges += reinterpret_cast<NMHDR*>(lParam)->code == MBN_SIZECHANGED;
        return std::nullopt;
    }
    ui::MenuBarWidget* MakeBar(UINT definition, int bitmap, int images) {
        SHMENUBARINFO info{sizeof info, main, 0, definition, nullptr, bitmap, images, nullptr};
        if (!SHCreateMenuBar(&info))
            return nullptr;
        bar = info.hwndMB;
        return qobject_cast<ui::MenuBarWidget*>(bar->widget);
    }

    HWND bar = nullptr;
    std::vector<HMENU> popups;
    int barSizeChanges = 0;
    bool greyCopy = false; // when a popup is about to show
};

} // namespace

TEST(MenuData, ItemsAreKnownByCommandAndEndWithTheMenu) {
    const HMENU menu = LoadMenuW(nullptr, MAKEINTRESOURCEW(IDR_MAIN_MENU));
    EXPECT_EQ(EnableMenuItem(menu, IDM_COPY, MF_BYCOMMAND | MF_GRAYED), static_cast<int>(MF_ENABLED));
    EXPECT_EQ(EnableMenuItem(menu, IDM_COPY, MF_BYCOMMAND | MF_ENABLED), static_cast<int>(MF_GRAYED));
    EXPECT_TRUE(ui::FindMenuItem(menu, IDM_COPY)->enabled);
    EXPECT_EQ(EnableMenuItem(menu, 12345, MF_GRAYED), -1);

    const auto checkView = [&](UINT view) {
        return CheckMenuRadioItem(menu, IDM_VIEW_SMALL_ICONS, IDM_VIEW_LARGE_ICONS, view, MF_BYCOMMAND);
    };
    EXPECT_TRUE(checkView(IDM_VIEW_LIST));
    EXPECT_TRUE(checkView(IDM_VIEW_LARGE_ICONS));
    EXPECT_FALSE(ui::FindMenuItem(menu, IDM_VIEW_LIST)->radioChecked);
    EXPECT_TRUE(ui::FindMenuItem(menu, IDM_VIEW_LARGE_ICONS)->radioChecked);
    EXPECT_FALSE(checkView(12345));

    const HMENU edit = GetSubMenu(menu, 0);
    EXPECT_EQ(GetSubMenu(menu, 3), nullptr);
    EXPECT_EQ(GetSubMenu(edit, 0), nullptr);
    EXPECT_TRUE(DeleteMenu(menu, IDM_COPY, MF_BYCOMMAND));
    EXPECT_FALSE(DeleteMenu(menu, IDM_COPY, MF_BYCOMMAND));
    EXPECT_FALSE(ModifyMenuW(menu, IDM_COPY, MF_BYCOMMAND, 1, u"?"));
    EXPECT_FALSE(DestroyMenu(edit)); // its parent's, and gone with it
    EXPECT_TRUE(DestroyMenu(menu));
    EXPECT_FALSE(DestroyMenu(menu));
    EXPECT_EQ(EnableMenuItem(edit, IDM_DELETE, MF_GRAYED), -1);
    EXPECT_EQ(LoadMenuW(nullptr, MAKEINTRESOURCEW(1)), nullptr);
}

TEST_F(Menus, ATrackedMenuRunsUntilAChoiceIsPosted) {
    greyCopy = true;
    const HMENU menu = LoadMenuW(nullptr, MAKEINTRESOURCEW(IDR_LIST_MENU));
    const HMENU popup = GetSubMenu(menu, 0);
    bool copyEnabled = true;
    ui::TestHooks().menu = [&](QMenu* shown) {
        copyEnabled = ActionOf(shown, QStringLiteral("&Copy"))->isEnabled();
        QTest::mouseClick(shown, Qt::LeftButton, {},
                          shown->actionGeometry(ActionOf(shown, QStringLiteral("&Delete"))).center());
    };
    EXPECT_TRUE(TrackPopupMenuEx(popup, TPM_RIGHTALIGN, 100, 100, main, nullptr));
    EXPECT_FALSE(copyEnabled); // as WM_INITMENUPOPUP left it
    EXPECT_EQ(popups, std::vector{popup});
    EXPECT_TRUE(commands.empty()); // posted, not sent
    stylus.Settle();
    EXPECT_EQ(commands, (std::vector<Command>{{IDM_DELETE, 0}}));

    ui::TestHooks().menu = [](QMenu* shown) { QTest::keyClick(shown, Qt::Key_Escape); };
    EXPECT_TRUE(TrackPopupMenuEx(popup, 0, 100, 100, main, nullptr));
    DestroyMenu(menu);
    EXPECT_FALSE(TrackPopupMenuEx(popup, 0, 100, 100, main, nullptr));
    stylus.Settle();
    EXPECT_EQ(commands.size(), 1u);
}

TEST_F(Menus, APopupShowsEveryMark) {
    const HMENU menu = LoadMenuW(nullptr, MAKEINTRESOURCEW(IDR_MAIN_MENU));
    CheckMenuRadioItem(menu, IDM_VIEW_SMALL_ICONS, IDM_VIEW_LARGE_ICONS, IDM_VIEW_LIST, MF_BYCOMMAND);
    CheckMenuRadioItem(menu, IDM_ARRANGE_BY_NAME, IDM_ARRANGE_BY_DATE, IDM_ARRANGE_BY_SIZE, MF_BYCOMMAND);
    const std::unique_ptr<QMenu> popup(ui::MakePopup(GetSubMenu(menu, 1), main, 1, nullptr));
    QStringList marked;
    for (const QAction* const action : popup->actions())
        if (action->isChecked())
            marked += action->text();
    EXPECT_EQ(marked, QStringList({QStringLiteral("&List"), QStringLiteral("Arrange by &Size")}));
    DestroyMenu(menu);
}

TEST_F(Menus, TheBarRunsItsButtons) {
    ui::MenuBarWidget* const widget = MakeBar(IDR_MAIN_MENU, IDB_MAIN_BUTTONS, 2);
    ASSERT_NE(widget, nullptr);
    const auto menu = reinterpret_cast<HMENU>(SendMessageW(bar, SHCMBM_GETMENU, 0, 0));
    ASSERT_EQ(widget->Buttons().size(), 5u);
    SendMessageW(bar, TB_ENABLEBUTTON, IDM_DELETE, FALSE);
    QTest::mouseClick(widget->Buttons()[3], Qt::LeftButton);
    SendMessageW(bar, TB_ENABLEBUTTON, IDM_PROPERTIES, TRUE);
    QTest::mouseClick(widget->Buttons()[4], Qt::LeftButton);
    stylus.Settle();
    EXPECT_EQ(commands, (std::vector<Command>{{IDM_PROPERTIES, 0}}));
    DestroyWindow(bar);
    EXPECT_EQ(ui::MenuBarOf(main), nullptr);
    EXPECT_EQ(ui::LiveMenu(menu), nullptr);
}

TEST_F(Menus, KeysOpenPopupsAndMoveAlongTheBar) {
    ui::MenuBarWidget* const widget = MakeBar(IDR_MAIN_MENU, IDB_MAIN_BUTTONS, 2);
    ASSERT_NE(widget, nullptr);
    QString firstItem;
    ui::TestHooks().menu = [&](QMenu* shown) { firstItem = shown->actions().front()->text(); };
    EXPECT_TRUE(ui::MenuBarMnemonic(bar, u't'));
    EXPECT_TRUE(firstItem.startsWith(QStringLiteral("&Backup")));
    // The arrow leads from the last popup to the first, and Escape away from it.
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Right);
    EXPECT_TRUE(firstItem.startsWith(QStringLiteral("&View/Modify")));
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_FALSE(ui::MenuBarMnemonic(bar, u'q'));

    EXPECT_TRUE(ui::EnterMenuMode(bar));
    SendMessageW(bar, TB_ENABLEBUTTON, IDM_DELETE, FALSE);
    for (int step = 0; step < 3; ++step)
        QTest::keyClick(widget->window(), Qt::Key_Right);
    EXPECT_EQ(widget->Marked(), widget->Buttons()[4]); // past the greyed one
    QTest::keyClick(widget->window(), Qt::Key_Return);
    EXPECT_EQ(widget->Marked(), nullptr);
    stylus.Settle();
    EXPECT_EQ(commands, (std::vector<Command>{{IDM_PROPERTIES, 0}}));
}

TEST_F(Menus, TheBarWrapsAndSaysSo) {
    stylus.Resize(480, 640);
    ui::MenuBarWidget* const widget = MakeBar(IDR_VIEWER_MENU, IDB_VIEWER_BUTTONS, 9);
    ASSERT_NE(widget, nullptr);
    const auto oneRow = SendMessageW(bar, SHCMBM_GETHEIGHT, 0, 0);
    EXPECT_EQ(widget->Buttons().front()->y(), widget->Buttons().back()->y());
    EXPECT_GE(oneRow, 34);
    EXPECT_LE(oneRow, 40);

    barSizeChanges = 0;
    stylus.Resize(240, 640);
    EXPECT_GT(SendMessageW(bar, SHCMBM_GETHEIGHT, 0, 0), oneRow);
    EXPECT_EQ(widget->height(), SendMessageW(bar, SHCMBM_GETHEIGHT, 0, 0));
    EXPECT_EQ(barSizeChanges, 1);
    for (const ui::BarButton* const button : widget->Buttons())
        EXPECT_TRUE(widget->rect().contains(button->geometry()));
    stylus.Resize(480, 640);

    SHMENUBARINFO empty{sizeof empty, main, SHCMBF_EMPTYBAR, 0, nullptr, 0, 0, nullptr};
    DestroyWindow(bar);
    EXPECT_TRUE(SHCreateMenuBar(&empty));
    EXPECT_EQ(SendMessageW(empty.hwndMB, SHCMBM_GETHEIGHT, 0, 0), 0);
    SHMENUBARINFO absent{sizeof absent, main, 0, 1, nullptr, 0, 0, nullptr};
    EXPECT_FALSE(SHCreateMenuBar(&absent));
}
