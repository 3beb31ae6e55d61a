// The handheld's shell: full-screen dialogs, activation, special folders, the out-of-memory box.
#include "platform/shell.h"

#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/base/paths.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"

// A special folder's identity.
struct ITEMIDLIST {
    int folder;
};

namespace ui {

namespace {

const WCHAR* const kDocumentsFolder = u"\\My Documents";

struct ShellAllocator final : IMalloc {
    void Free(void* block) override { std::free(block); }
    DWORD Release() override { return 1; }
};

// The folder exists from its first use; on a device that cannot be written it stays missing.
void MakeDocumentsFolder() {
    std::string host;
    std::error_code ignored;
    if (HostPath(kDocumentsFolder, host))
        std::filesystem::create_directory(host, ignored);
}

} // namespace

} // namespace ui

using namespace ui;

BOOL SHInitDialog(SHINITDLGINFO* info) {
    WindowObject* dialog = info ? LiveWindow(info->hDlg) : nullptr;
    if (!dialog || !dialog->topLevel || !(info->dwMask & SHIDIM_FLAGS))
        return FALSE;
    dialog->topLevel->button = info->dwFlags & SHIDIF_DONEBUTTON ? TitleButton::Ok : TitleButton::None;
    if (info->dwFlags & SHIDIF_SIZEDLGFULLSCREEN) {
        dialog->topLevel->fullScreen = true;
        LayOutTopLevel(info->hDlg);
        HideCoveredFrames();
    }
    UpdateTitleBar();
    return TRUE;
}

BOOL SHInitMainWindow(HWND window) {
    WindowObject* object = LiveWindow(window);
    if (!object || !object->topLevel)
        return FALSE;
    object->topLevel->button = TitleButton::Close;
    SaveAtSessionEnd(window);
    UpdateTitleBar();
    return TRUE;
}

void SHSetDocumentTitle(HWND window, const WCHAR* title) {
    WindowObject* object = LiveWindow(window);
    if (!object || !object->topLevel)
        return;
    object->topLevel->documentTitle = HostText(title);
    UpdateTitleBar();
}

BOOL SHHandleWMSettingChange(HWND window, WPARAM, LPARAM, SHACTIVATEINFO* info) {
    // No input panel takes room here: the keyboard is the host's.
    return LiveWindow(window) && info;
}

std::int32_t SHGetMalloc(IMalloc** allocator) {
    static ShellAllocator shellAllocator;
    *allocator = &shellAllocator;
    return NOERROR;
}

std::int32_t SHGetSpecialFolderLocation(HWND, int folder, ITEMIDLIST** location) {
    constexpr std::int32_t kNoSuchFolder = -1;
    *location =
        folder == CSIDL_PERSONAL ? static_cast<ITEMIDLIST*>(std::malloc(sizeof(ITEMIDLIST))) : nullptr;
    if (!*location)
        return kNoSuchFolder;
    (*location)->folder = folder;
    MakeDocumentsFolder();
    return NOERROR;
}

BOOL SHGetPathFromIDList(const ITEMIDLIST* location, WCHAR* path) {
    if (!location || location->folder != CSIDL_PERSONAL)
        return FALSE;
    CopyHostText(path, MAX_PATH, HostText(kDocumentsFolder));
    return TRUE;
}

void SHShowOutOfMemory(HWND owner, UINT) {
    MessageBoxW(owner,
                u"There is not enough memory to complete this operation. Close other programs and try again.",
                u"Out of Memory", MB_OK | MB_ICONEXCLAMATION);
}
