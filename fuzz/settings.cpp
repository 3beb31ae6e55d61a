// Any values as the stored settings.
#include "app/settings.h"

#include <cstring>

#include "fuzz/targets.h"
#include "platform/registry.h"

namespace {

constexpr const WCHAR* kNames[] = {u"ShowSysDb", u"Sort",        u"SortOrder", u"MatchCase", u"SearchNumProp",
                                   u"Style",     u"Bold",        u"Selection", u"FullRow",   u"PromptScript",
                                   u"DoubleTap", u"ShowWarning", u"ScriptName"};

void StoreValues(Input input) {
    HKEY key = 0;
    RegCreateKeyExW(HKEY_CURRENT_USER, u"Software\\Norvance\\Strandview\\Settings", 0, nullptr, 0,
                    KEY_ALL_ACCESS, nullptr, &key, nullptr);
    while (!input.Ended()) {
        const WCHAR* const name = kNames[input.Byte() % std::size(kNames)];
        const auto type = static_cast<DWORD>(input.Byte());
        const std::string bytes(input.Bytes(static_cast<std::size_t>(input.Number(2)) % 700));
        RegSetValueExW(key, name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                       static_cast<DWORD>(bytes.size()));
    }
    RegCloseKey(key);
}

} // namespace

void FuzzSettings(Input input) {
    Scratch::Fresh();
    StoreValues(input);
    std::u16string script;
    DWORD sortKey = 0;
    BYTE selection[kSelectionBytes];
    {
        const Settings settings;
        script = settings.scriptName;
        sortKey = settings.sortKey;
        std::memcpy(selection, settings.selection, sizeof(selection));
    }
    const Settings again;
    Require(again.scriptName == script && again.sortKey == sortKey &&
                std::memcmp(again.selection, selection, sizeof(selection)) == 0,
            "what was read is read again once it has been saved");
}
