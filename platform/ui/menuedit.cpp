// Changing a menu's items.
#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/menus.h"

namespace {

struct ItemPlace {
    MenuObject* menu = nullptr; // null: there is no such item
    std::size_t index = 0;
};

// A popup has no command of its own.
ItemPlace PlaceOfCommand(MenuObject& menu, UINT command) {
    for (std::size_t index = 0; index < menu.items.size(); ++index) {
        const MenuItem& item = menu.items[index];
        if (item.popup) {
            const ItemPlace inside = PlaceOfCommand(*item.popup, command);
            if (inside.menu)
                return inside;
        } else if (!item.separator && item.id == command) {
            return {&menu, index};
        }
    }
    return {};
}

ItemPlace FindPlace(HMENU menu, UINT item, UINT flags) {
    MenuObject* const object = LiveMenu(menu);
    if (!object)
        return {};
    if (!(flags & MF_BYPOSITION))
        return PlaceOfCommand(*object, item);
    return item < object->items.size() ? ItemPlace{object, item} : ItemPlace{};
}

} // namespace

BOOL ModifyMenuW(HMENU menu, UINT item, UINT flags, WPARAM newCommand, const WCHAR* text) {
    const ItemPlace place = FindPlace(menu, item, flags);
    if (!place.menu)
        return FALSE;
    MenuItem changed;
    changed.id = static_cast<UINT>(newCommand);
    changed.text = TextOf(text);
    changed.enabled = !(flags & MF_GRAYED);
    place.menu->items[place.index] = std::move(changed);
    return TRUE;
}

BOOL DeleteMenu(HMENU menu, UINT item, UINT flags) {
    const ItemPlace place = FindPlace(menu, item, flags);
    if (!place.menu)
        return FALSE;
    place.menu->items.erase(place.menu->items.begin() + static_cast<std::ptrdiff_t>(place.index));
    return TRUE;
}
