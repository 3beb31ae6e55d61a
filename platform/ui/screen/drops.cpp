// Files that are dropped on the display, or that the program was started to open.
#include "platform/base/instance.h"
#include "platform/shell.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/screen/windows.h"

struct DroppedFiles {
    std::vector<std::u16string> paths;
};

namespace ui {

bool AcceptsFiles(HWND window) {
    const WindowObject* object = LiveWindow(window);
    return object && object->topLevel && object->topLevel->acceptsFiles;
}

void DropFiles(HWND window, const std::vector<std::u16string>& paths) {
    if (!paths.empty() && AcceptsFiles(window))
        PostMessageW(window, WM_DROPFILES, reinterpret_cast<WPARAM>(new DroppedFiles{paths}), 0);
}

} // namespace ui

using namespace ui;

void DragAcceptFiles(HWND window, BOOL accept) {
    WindowObject* object = LiveWindow(window);
    if (!object || !object->topLevel)
        return;
    object->topLevel->acceptsFiles = accept != FALSE;
    const std::u16string document = accept ? TakeStartDocument() : std::u16string();
    if (!document.empty())
        DropFiles(window, {document});
}

UINT DragQueryFileW(HDROP dropped, UINT file, WCHAR* path, UINT capacity) {
    if (!dropped)
        return 0;
    if (file == kDropCount)
        return static_cast<UINT>(dropped->paths.size());
    if (file >= dropped->paths.size() || dropped->paths[file].size() >= capacity)
        return 0;
    const std::u16string& found = dropped->paths[file];
    found.copy(path, found.size());
    path[found.size()] = 0;
    return static_cast<UINT>(found.size());
}

void DragFinish(HDROP dropped) {
    delete dropped;
}
