// Changing a menu's items.
#include "platform/ui/core/windowobject.h"
#include "platform/ui/menus/menus.h"

using namespace ui;

BOOL ModifyMenuW(HMENU menu, UINT item, UINT flags, WPARAM newCommand, const WCHAR* text) {
    const ItemPosition found = PositionOfItem(menu, item);
    if (!found.menu)
        return FALSE;
    MenuItem changed;
    changed.id = static_cast<UINT>(newCommand);
    changed.text = HostText(text);
    changed.enabled = !(flags & MF_GRAYED);
    found.menu->items[found.index] = std::move(changed);
    return TRUE;
}

BOOL DeleteMenu(HMENU menu, UINT item, UINT) {
    const ItemPosition found = PositionOfItem(menu, item);
    if (!found.menu)
        return FALSE;
    found.menu->items.erase(found.menu->items.begin() + static_cast<std::ptrdiff_t>(found.index));
    return TRUE;
}
