// Menus from resources.
#pragma once

#include "platform/types.h"

constexpr UINT MF_BYCOMMAND = 0x000;
constexpr UINT MF_ENABLED = 0x000;
constexpr UINT MF_GRAYED = 0x001;

HMENU LoadMenuW(HINSTANCE instance, const WCHAR* name); // null when absent; released by DestroyMenu
BOOL DestroyMenu(HMENU menu);
HMENU GetSubMenu(HMENU menu, int position); // null where no submenu stands; owned by its parent
// Items are looked for by command, in the submenus too. Returns the previous state, -1 when there is no such
// item.
int EnableMenuItem(HMENU menu, UINT item, UINT flags);
// Changes an item's text and command; false when there is no such item.
BOOL ModifyMenuW(HMENU menu, UINT item, UINT flags, WPARAM newCommand, const WCHAR* text);
BOOL DeleteMenu(HMENU menu, UINT item, UINT flags);
// Radio-checks one command of first..last and clears the others.
BOOL CheckMenuRadioItem(HMENU menu, UINT first, UINT last, UINT checked, UINT flags);

// Shows the popup at a point of the screen and runs until it closes, dispatching messages meanwhile; the
// choice arrives at the owner as WM_COMMAND (posted). WM_INITMENUPOPUP goes to the owner first.
constexpr UINT TPM_RIGHTALIGN = 0x0008;
BOOL TrackPopupMenuEx(HMENU menu, UINT flags, int x, int y, HWND owner, const void* exclude);
