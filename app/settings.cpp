#include "app/settings.h"

#include <cstddef>
#include <cstring>

#include "platform/errors.h"
#include "platform/registry.h"
#include "platform/shell.h"
#include "platform/text.h"

namespace {

const WCHAR* const kSettingsKey = u"Software\\Norvance\\Strandview\\Settings";
const WCHAR* const kFallbackFolder = u"\\windows";
const WCHAR* const kScriptFile = u"\\autobackup.abk";

struct StoredValue {
    const WCHAR* name;
    DWORD type;
    std::size_t offset; // of the field in SettingsData
    DWORD bytes;
};

constexpr DWORD kFlagBytes = 4;
constexpr StoredValue Flag(const WCHAR* name, std::size_t offset) {
    return {name, REG_DWORD, offset, kFlagBytes};
}

// Flags are stored as four bytes from their first on, so "SortOrder" carries showSystemDatabases in its
// second byte and "ShowSysDb" the low byte of listStyle in its last. Reading ShowSysDb before SortOrder and
// Style puts all three right.
static_assert(offsetof(SettingsData, showSystemDatabases) == offsetof(SettingsData, sortAscending) + 1);
static_assert(offsetof(SettingsData, listStyle) == offsetof(SettingsData, sortAscending) + kFlagBytes);

const StoredValue kShowSystem = Flag(u"ShowSysDb", offsetof(SettingsData, showSystemDatabases));
const StoredValue kSort = Flag(u"Sort", offsetof(SettingsData, sortKey));
const StoredValue kSortOrder = Flag(u"SortOrder", offsetof(SettingsData, sortAscending));
const StoredValue kMatchCase = Flag(u"MatchCase", offsetof(SettingsData, matchCase));
const StoredValue kSearchNumProp = Flag(u"SearchNumProp", offsetof(SettingsData, searchNumProp));
const StoredValue kStyle = Flag(u"Style", offsetof(SettingsData, listStyle));
const StoredValue kBold = Flag(u"Bold", offsetof(SettingsData, bold));
const StoredValue kSelection = {u"Selection", REG_BINARY, offsetof(SettingsData, selection), kSelectionBytes};
const StoredValue kFullRow = Flag(u"FullRow", offsetof(SettingsData, fullRow));
const StoredValue kPromptScript = Flag(u"PromptScript", offsetof(SettingsData, promptScript));
const StoredValue kDoubleTap = Flag(u"DoubleTap", offsetof(SettingsData, doubleTap));
const StoredValue kShowWarning = Flag(u"ShowWarning", offsetof(SettingsData, showWarning));
// A text under a number's type: earlier versions stored it so, and theirs must go on reading ours.
const StoredValue kScriptName = {u"ScriptName", REG_DWORD, offsetof(SettingsData, scriptName),
                                 MAX_PATH * sizeof(WCHAR)};

const StoredValue* const kReadOrder[] = {
    &kShowSystem, &kSort,    &kSortOrder,    &kMatchCase, &kSearchNumProp, &kStyle,     &kBold,
    &kSelection,  &kFullRow, &kPromptScript, &kDoubleTap, &kShowWarning,   &kScriptName};
// ScriptName comes last and is written with its own length.
const StoredValue* const kWriteOrder[] = {&kShowSystem, &kSort,         &kSortOrder,   &kStyle,
                                          &kBold,       &kSelection,    &kFullRow,     &kSearchNumProp,
                                          &kMatchCase,  &kPromptScript, &kShowWarning, &kDoubleTap};

HFONT SystemFontOfWeight(LONG weight) {
    LOGFONTW font = {};
    GetObjectW(GetStockObject(SYSTEM_FONT), sizeof(font), &font);
    font.lfWeight = weight;
    return CreateFontIndirectW(&font);
}

BYTE* FieldOf(SettingsData* data, const StoredValue& value) {
    return reinterpret_cast<BYTE*>(data) + value.offset;
}

} // namespace

Settings::Settings() {
    boldFont = SystemFontOfWeight(FW_BOLD);
    FindDocumentsFolder();
    CopyText(scriptName, documentsFolder);
    const int folderLength = lstrlenW(scriptName);
    CopyText(scriptName + folderLength, MAX_PATH - folderLength, kScriptFile);
    std::memset(selection, kNoSelection, sizeof(selection));
    Load();
    RecreateListFont();
}

Settings::~Settings() {
    Save();
    DeleteObject(listFont);
    DeleteObject(boldFont);
}

void Settings::RecreateListFont() {
    DeleteObject(listFont);
    listFont = SystemFontOfWeight(bold ? FW_BOLD : FW_NORMAL);
}

void Settings::FindDocumentsFolder() {
    CopyText(documentsFolder, kFallbackFolder);
    IMalloc* allocator = nullptr;
    if (SHGetMalloc(&allocator) != NOERROR)
        return;
    ITEMIDLIST* location = nullptr;
    if (SHGetSpecialFolderLocation(nullptr, CSIDL_PERSONAL, &location) == NOERROR) {
        if (!SHGetPathFromIDList(location, documentsFolder))
            CopyText(documentsFolder, kFallbackFolder);
        allocator->Free(location);
    }
    allocator->Release();
}

// What is missing, too long or unreadable leaves its field as it was.
void Settings::Load() {
    HKEY key = 0;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kSettingsKey, 0, KEY_READ, &key) != ERROR_SUCCESS)
        return;
    for (const StoredValue* value : kReadOrder) {
        DWORD bytes = value->bytes;
        RegQueryValueExW(key, value->name, nullptr, nullptr, FieldOf(this, *value), &bytes);
    }
    scriptName[MAX_PATH - 1] = 0;
    RegCloseKey(key);
}

bool Settings::Save() {
    HKEY user = 0;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, u"", 0, KEY_ALL_ACCESS, &user) != ERROR_SUCCESS)
        return false;
    bool saved = false;
    HKEY key = 0;
    if (RegCreateKeyExW(user, kSettingsKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr) ==
        ERROR_SUCCESS) {
        for (const StoredValue* value : kWriteOrder)
            RegSetValueExW(key, value->name, 0, value->type, FieldOf(this, *value), value->bytes);
        const DWORD nameBytes = static_cast<DWORD>((lstrlenW(scriptName) + 1) * sizeof(WCHAR));
        saved = RegSetValueExW(key, kScriptName.name, 0, kScriptName.type, FieldOf(this, kScriptName),
                               nameBytes) == ERROR_SUCCESS;
        saved = RegCloseKey(key) == ERROR_SUCCESS && saved;
    }
    RegCloseKey(user);
    return saved;
}
