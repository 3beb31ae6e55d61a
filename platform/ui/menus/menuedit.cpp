// Changing a menu's items.
#include "platform/ui/core/windowobject.h"
#include "platform/ui/menus/menus.h"

BOOL ModifyMenuW(HMENU menu, UINT item, UINT flags, WPARAM newCommand, const WCHAR* text) {
    const ItemPlace place = PlaceOfItem(menu, item, flags);
    if (!place.menu)
        return FALSE;
    MenuItem changed;
    changed.id = static_cast<UINT>(newCommand);
    changed.text = HostText(text);
    changed.enabled = !(flags & MF_GRAYED);
    place.menu->items[place.index] = std::move(changed);
    return TRUE;
}

BOOL DeleteMenu(HMENU menu, UINT item, UINT flags) {
    const ItemPlace place = PlaceOfItem(menu, item, flags);
    if (!place.menu)
        return FALSE;
    place.menu->items.erase(place.menu->items.begin() + static_cast<std::ptrdiff_t>(place.index));
    return TRUE;
}
