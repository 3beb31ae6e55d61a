#include "platform/ui/menus/menus.h"

#include <cstring>
#include <unordered_map>
#include <unordered_set>

#include "platform/base/outofmemory.h"
#include "platform/resources.h"

namespace ui {

namespace {

// A menu resource is a header of two words (version, size of what follows the header's words), then the
// items: flags, command unless it is a popup, text with terminator. A popup's own items follow it.
constexpr WORD kPlainMenu = 0;
constexpr WORD kItemGreyed = 0x0001;
constexpr WORD kItemPopup = 0x0010;
constexpr WORD kItemLast = 0x0080;
constexpr int kDeepestMenu = 8;

struct MenuReader {
    const std::byte* at;
    std::size_t left; // bytes

    bool ReadWord(WORD& word) {
        if (left < sizeof word)
            return false;
        std::memcpy(&word, at, sizeof word);
        at += sizeof word;
        left -= sizeof word;
        return true;
    }
    bool ReadText(QString& text) {
        for (WORD character = 0; ReadWord(character);) {
            if (character == 0)
                return true;
            text.append(QChar(character));
        }
        return false;
    }
};

bool ReadItems(MenuReader& reader, MenuObject& menu, int depth) {
    if (depth > kDeepestMenu)
        return false;
    for (WORD flags = 0; !(flags & kItemLast);) {
        MenuItem item;
        WORD id = 0;
        if (!reader.ReadWord(flags) || (!(flags & kItemPopup) && !reader.ReadWord(id)) ||
            !reader.ReadText(item.text))
            return false;
        item.id = id;
        item.enabled = !(flags & kItemGreyed);
        item.separator = !(flags & kItemPopup) && id == 0 && item.text.isEmpty();
        if (flags & kItemPopup) {
            item.popup = std::make_unique<MenuObject>();
            if (!ReadItems(reader, *item.popup, depth + 1))
                return false;
        }
        menu.items.push_back(std::move(item));
    }
    return true;
}

std::unordered_set<const MenuObject*>& LiveMenus() {
    static auto* const menus = new std::unordered_set<const MenuObject*>;
    return *menus;
}

// What LoadMenuW gave out; submenus belong to their parents.
std::unordered_map<HMENU, std::unique_ptr<MenuObject>>& LoadedMenus() {
    static auto* const menus = new std::unordered_map<HMENU, std::unique_ptr<MenuObject>>;
    return *menus;
}

// A popup has no command of its own.
ItemPosition PositionOfCommand(MenuObject& menu, UINT command) {
    for (std::size_t index = 0; index < menu.items.size(); ++index) {
        const MenuItem& item = menu.items[index];
        if (item.popup) {
            const ItemPosition inside = PositionOfCommand(*item.popup, command);
            if (inside.menu)
                return inside;
        } else if (!item.separator && item.id == command) {
            return {&menu, index};
        }
    }
    return {};
}

void MarkRadioItem(MenuObject& menu, UINT first, UINT last, UINT checked) {
    for (MenuItem& item : menu.items)
        if (item.popup)
            MarkRadioItem(*item.popup, first, last, checked);
        else if (!item.separator && item.id >= first && item.id <= last)
            item.radioChecked = item.id == checked;
}

// A MENU resource; null when its bytes make no menu.
std::unique_ptr<MenuObject> ParseMenu(const void* bytes, std::size_t size) {
    MenuReader reader{static_cast<const std::byte*>(bytes), size};
    WORD version = 0;
    WORD passOver = 0;
    if (!reader.ReadWord(version) || !reader.ReadWord(passOver) || version != kPlainMenu ||
        passOver > reader.left)
        return nullptr;
    reader.at += passOver;
    reader.left -= passOver;
    auto menu = std::make_unique<MenuObject>();
    return ReadItems(reader, *menu, 0) ? std::move(menu) : nullptr;
}

} // namespace

MenuObject* LiveMenu(HMENU menu) {
    return LiveMenus().contains(menu) ? menu : nullptr;
}

QString TextOfPopup(HMENU popup) {
    for (const MenuObject* menu : LiveMenus())
        for (const MenuItem& item : menu->items)
            if (popup && item.popup.get() == popup)
                return item.text;
    return QString();
}

ItemPosition PositionOfItem(HMENU menu, UINT command) {
    MenuObject* const object = LiveMenu(menu);
    return object ? PositionOfCommand(*object, command) : ItemPosition{};
}

MenuItem* FindMenuItem(HMENU menu, UINT command) {
    const ItemPosition found = PositionOfItem(menu, command);
    return found.menu ? &found.menu->items[found.index] : nullptr;
}

} // namespace ui

using namespace ui;

MenuObject::MenuObject() {
    LiveMenus().insert(this);
}

MenuObject::~MenuObject() {
    LiveMenus().erase(this);
}

HMENU LoadMenuW(HINSTANCE instance, const WCHAR* name) {
    const HRSRC resource = FindResourceW(instance, name, RT_MENU);
    if (!resource)
        return nullptr;
    return UnlessOutOfMemory<HMENU>(nullptr, [&] {
        auto menu = ParseMenu(LoadResource(instance, resource), SizeofResource(instance, resource));
        const HMENU handle = menu.get();
        if (handle)
            LoadedMenus().emplace(handle, std::move(menu));
        return handle;
    });
}

BOOL DestroyMenu(HMENU menu) {
    return LoadedMenus().erase(menu) != 0;
}

HMENU GetSubMenu(HMENU menu, int position) {
    const MenuObject* const parent = LiveMenu(menu);
    const bool stands = parent && position >= 0 && static_cast<std::size_t>(position) < parent->items.size();
    return stands ? parent->items[static_cast<std::size_t>(position)].popup.get() : nullptr;
}

int EnableMenuItem(HMENU menu, UINT item, UINT flags) {
    MenuItem* const found = FindMenuItem(menu, item);
    if (!found)
        return -1;
    const bool wasEnabled = std::exchange(found->enabled, !(flags & MF_GRAYED));
    return static_cast<int>(wasEnabled ? MF_ENABLED : MF_GRAYED);
}

BOOL CheckMenuRadioItem(HMENU menu, UINT first, UINT last, UINT checked, UINT) {
    if (!FindMenuItem(menu, checked))
        return FALSE;
    MarkRadioItem(*menu, first, last, checked);
    return TRUE;
}
