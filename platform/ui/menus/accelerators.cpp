// Accelerator tables from resources.
#include <cstring>
#include <map>
#include <memory>

#include "platform/resources.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/menus/menus.h"

struct AcceleratorTable {
    struct Entry {
        WORD flags;
        WORD key;
        WORD command;
        WORD padding;
    };
    static_assert(sizeof(Entry) == 8);
    std::vector<Entry> entries;
};

namespace ui {

namespace {

constexpr WORD kVirtualKey = 0x01; // else a character
constexpr WORD kShift = 0x04;
constexpr WORD kControl = 0x08;
constexpr WORD kAlt = 0x10;

const WCHAR* const kAcceleratorResource = MAKEINTRESOURCEW(9);

bool Held(UINT virtualKey) {
    return GetKeyState(static_cast<int>(virtualKey)) < 0;
}

bool Matches(const AcceleratorTable::Entry& entry, WPARAM key) {
    return entry.flags & kVirtualKey && entry.key == key && Held(VK_SHIFT) == bool(entry.flags & kShift) &&
           Held(VK_CONTROL) == bool(entry.flags & kControl) && Held(VK_MENU) == bool(entry.flags & kAlt);
}

} // namespace

} // namespace ui

using namespace ui;

HACCEL LoadAcceleratorsW(HINSTANCE instance, const WCHAR* table) {
    const HRSRC resource = FindResourceW(instance, table, kAcceleratorResource);
    if (!resource)
        return nullptr;
    // Tables live as long as the program, one for each resource.
    static auto* tables = new std::map<HRSRC, std::unique_ptr<AcceleratorTable>>;
    std::unique_ptr<AcceleratorTable>& loaded = (*tables)[resource];
    if (!loaded) {
        loaded = std::make_unique<AcceleratorTable>();
        loaded->entries.resize(SizeofResource(instance, resource) / sizeof(AcceleratorTable::Entry));
        std::memcpy(loaded->entries.data(), LoadResource(instance, resource),
                    loaded->entries.size() * sizeof(AcceleratorTable::Entry));
    }
    return loaded.get();
}

int TranslateAcceleratorW(HWND window, HACCEL table, MSG* message) {
    if (!table || !LiveWindow(window) ||
        (message->message != WM_KEYDOWN && message->message != WM_SYSKEYDOWN))
        return FALSE;
    // Only what is meant for the window: a dialog's keys are its own.
    if (TopLevelOf(message->hwnd) != TopLevelOf(window))
        return FALSE;
    for (const AcceleratorTable::Entry& entry : table->entries) {
        if (!Matches(entry, message->wParam))
            continue;
        if (IsWindowEnabled(window))
            SendMessageW(window, WM_COMMAND, MAKELONG(entry.command, 1), 0);
        return TRUE;
    }
    return FALSE;
}
