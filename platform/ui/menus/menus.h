// Menus as data, the host's popups made from them, and the keys of the menu bar.
#pragma once

#include <QMenu>
#include <QString>
#include <cstddef>
#include <memory>
#include <vector>

#include "platform/menu.h"
#include "platform/shell.h"

namespace ui {

struct MenuItem {
    UINT id = 0;
    QString text; // "&Copy...\tCtrl+C"; empty for a separator
    bool separator = false;
    bool enabled = true;
    bool radioChecked = false;
    std::unique_ptr<MenuObject> popup;
};

} // namespace ui

// A menu or a submenu; its handle is live as long as the object is.
struct MenuObject {
    MenuObject();
    ~MenuObject();
    MenuObject(const MenuObject&) = delete;
    MenuObject& operator=(const MenuObject&) = delete;

    std::vector<ui::MenuItem> items;
};

namespace ui {

// The live menu or submenu, or null.
MenuObject* LiveMenu(HMENU menu);
QString TextOfPopup(HMENU popup); // that its parent has for it; empty for a menu without one

struct ItemPosition {
    MenuObject* menu = nullptr; // null: there is no such item
    std::size_t index = 0;
};
// Searches the submenus too.
ItemPosition PositionOfItem(HMENU menu, UINT command);
MenuItem* FindMenuItem(HMENU menu, UINT command); // null when absent

// A host menu that shows the popup at `position` of its parent menu. Each time it or a submenu is about to
// show, WM_INITMENUPOPUP goes to the owner and the items are taken from the menu again; a choice is posted to
// the owner as WM_COMMAND. `parent` is where assistive programs find it. The caller deletes it later
// (deleteLater: it may be delivering an event).
QMenu* MakePopup(HMENU menu, HWND owner, int position, QWidget* parent);

// ---- keys on the bar ----
// Alt and a letter: opens the popup whose mnemonic it is. F10 or Alt alone: the arrows move along the bar
// until Escape. Both return false when there is nothing to open. The focus stays where it is meanwhile.
bool MenuBarMnemonic(HWND bar, char16_t letter);
bool EnterMenuMode(HWND bar);

void RegisterMenuBarClass(); // at the start of the window system

} // namespace ui
