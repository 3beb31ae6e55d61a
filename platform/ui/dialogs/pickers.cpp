// The file pickers: a window of the screen that runs until a file is chosen.
#include "platform/pickers.h"

#include <QRegularExpression>
#include <cstdio>

#include "platform/base/outofmemory.h"
#include "platform/base/paths.h"
#include "platform/process.h"
#include "platform/text.h"
#include "platform/ui/core/display.h"
#include "platform/ui/core/testhooks.h"
#include "platform/ui/core/windowobject.h"
#include "platform/ui/core/windowsystem.h"
#include "platform/ui/dialogs/pickerwidget.h"
#include "platform/ui/input/windowprocedures.h"

namespace ui {

namespace {

const WCHAR* const kPickerClass = u"file_picker";

PickerWidget* WidgetOfPicker(HWND window) {
    const WindowObject* const object = LiveWindow(window);
    return object ? qobject_cast<PickerWidget*>(object->widget) : nullptr;
}

LRESULT PickerProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_CLOSE && message != WM_DESTROY)
        return DefaultControlProcedure(window, message, wParam, lParam);
    if (PickerWidget* const widget = WidgetOfPicker(window))
        widget->Cancel();
    return 0;
}

QWidget* MakePickerWidget(WindowObject&, QWidget* parentWidget) {
    return new PickerWidget(parentWidget);
}

void RegisterPickerClass() {
    EnsureWindowSystem();
    [[maybe_unused]] static const bool once = [] {
        RegisterBuiltInClass(kPickerClass, PickerProcedure, MakePickerWidget);
        return true;
    }();
}

// Pairs of a name and patterns separated by semicolons, closed by an empty text.
QList<PickerFilter> ParseFilters(const WCHAR* list) {
    QList<PickerFilter> filters;
    while (list && *list) {
        const QString name = QString::fromUtf16(list);
        list += name.size() + 1;
        const QString patterns = QString::fromUtf16(list);
        if (patterns.isEmpty())
            break;
        list += patterns.size() + 1;
        filters.append({name, patterns.split(u';', Qt::SkipEmptyParts)});
    }
    return filters;
}

PickerRequest RequestOf(const OPENFILENAMEW& info, bool save) {
    PickerRequest request;
    request.save = save;
    request.mustExist = (info.Flags & OFN_FILEMUSTEXIST) != 0;
    request.proposedName = QString::fromUtf16(info.lpstrFile);
    static const QRegularExpression leading(QStringLiteral("^\\*?\\."));
    request.extension = QString::fromUtf16(info.lpstrDefExt).remove(leading);
    request.room = static_cast<int>(info.nMaxFile);
    request.filters = ParseFilters(info.lpstrFilter);
    return request;
}

bool GiveChoice(OPENFILENAMEW& info, const QString& hostPath) {
    const std::u16string path = DevicePath(hostPath.toStdString());
    if (hostPath.isEmpty() || path.size() >= info.nMaxFile)
        return false;
    CopyText(info.lpstrFile, info.nMaxFile, path.c_str());
    return true;
}

BOOL RunPicker(OPENFILENAMEW* info, bool save) {
    if (!info || !info->lpstrFile)
        return FALSE;
    const WCHAR* const title = save ? u"Save As" : u"Open";
    if (NoDisplay()) {
        std::fprintf(stderr, "%s: a file cannot be chosen without a display\n", save ? "Save As" : "Open");
        NoteFailure();
        return FALSE;
    }
    RegisterPickerClass();
    const HWND owner = info->hwndOwner;
    const HWND picker =
        CreateWindowExW(0, kPickerClass, title, WS_POPUP, 0, 0, 0, 0, owner, nullptr, nullptr, nullptr);
    PickerWidget* const widget = WidgetOfPicker(picker);
    if (!widget)
        return FALSE;
    bool done = false;
    QString chosen;
    const PickerRequest request = RequestOf(*info, save);
    widget->Start(request, [&](const QString& path) {
        chosen = path;
        done = true;
        PostMessageW(nullptr, WM_NULL, 0, 0);
    });
    const bool ownerWasEnabled = IsWindowEnabled(owner);
    EnableWindow(owner, FALSE);
    ShowWindow(picker, SW_SHOW);
    SetFocus(picker);
    if (TestHooks().picker)
        TestHooks().picker({save, request.proposedName.toStdU16String(), widget});
    RunModal(done);
    if (ownerWasEnabled)
        EnableWindow(owner, TRUE);
    DestroyWindow(picker);
    return GiveChoice(*info, chosen);
}

} // namespace

} // namespace ui

using namespace ui;

BOOL GetOpenFileNameW(OPENFILENAMEW* info) {
    return UnlessOutOfMemory<BOOL>(
        FALSE, [&] { return RunPicker(info, false); });
}

BOOL GetSaveFileNameW(OPENFILENAMEW* info) {
    return UnlessOutOfMemory<BOOL>(
        FALSE, [&] { return RunPicker(info, true); });
}
