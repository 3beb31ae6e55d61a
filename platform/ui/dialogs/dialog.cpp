// Dialogs: made from templates, run until they end.
#include "platform/dialog.h"

#include <QApplication>
#include <QFontMetrics>
#include <algorithm>
#include <map>

#include "platform/base/outofmemory.h"
#include "platform/base/utf8.h"
#include "platform/process.h"
#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/core/accessible.h"
#include "platform/ui/core/display.h"
#include "platform/ui/core/messagequeue.h"
#include "platform/ui/core/testhooks.h"
#include "platform/ui/core/windowsystem.h"
#include "platform/ui/dialogs/dialogcore.h"
#include "platform/ui/dialogs/dialogtemplate.h"
#include "platform/ui/drawing/gdiobjects.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

constexpr int kOwnPointSize = 9; // the platform's own font

// Fonts of templates that ask for another size; null for the platform's own.
HFONT DialogFont(int pointSize) {
    if (pointSize == 0 || pointSize == kOwnPointSize)
        return nullptr;
    static auto* fonts = new std::map<int, HFONT>;
    HFONT& font = (*fonts)[pointSize];
    if (!font) {
        LOGFONTW description{};
        GetObjectW(GetStockObject(SYSTEM_FONT), sizeof(description), &description);
        description.lfHeight = description.lfHeight * pointSize / kOwnPointSize;
        font = CreateFontIndirectW(&description);
    }
    return font;
}

// The size in pixels of four dialog units across and eight down.
QSize BaseUnits(HFONT font) {
    const QFontMetrics metrics(FontOf(font));
    const QString alphabet = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    const auto letters = static_cast<int>(alphabet.size());
    return QSize((metrics.horizontalAdvance(alphabet) + letters / 2) / letters, metrics.height());
}

int FromUnits(int units, int base, int unitsPerBase) {
    return (units * base + unitsPerBase / 2) / unitsPerBase;
}

QRect PlaceOf(const TemplateItem& item, const QSize& base) {
    const int left = FromUnits(item.x, base.width(), 4);
    const int top = FromUnits(item.y, base.height(), 8);
    return QRect(left, top, FromUnits(item.x + item.width, base.width(), 4) - left,
                 FromUnits(item.y + item.height, base.height(), 8) - top);
}

QSize SizeOf(const ParsedTemplate& parsed, const QSize& base) {
    return QSize(FromUnits(parsed.width, base.width(), 4), FromUnits(parsed.height, base.height(), 8));
}

void MakeControls(HWND dialog, const ParsedTemplate& parsed, HINSTANCE instance, const QSize& base) {
    for (const TemplateItem& item : parsed.items) {
        const QRect place = PlaceOf(item, base);
        const HWND control = CreateWindowExW(item.exStyle, item.className.c_str(), item.text.c_str(),
                                             item.style | WS_CHILD, place.x(), place.y(), place.width(),
                                             place.height(), dialog, ChildId(item.id), instance, nullptr);
        if (!control)
            continue;
        if (dialog->font)
            SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(dialog->font), FALSE);
        if (SendMessageW(control, WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON)
            dialog->dialog->defaultId = item.id;
    }
}

// Null when the procedure destroyed it at once.
HWND MakeDialog(HINSTANCE instance, const DLGTEMPLATE* dialogTemplate, HWND owner, DLGPROC procedure,
                LPARAM param, bool modal) {
    if (!dialogTemplate)
        return nullptr;
    const ParsedTemplate parsed = ParseDialogTemplate(dialogTemplate);
    const HWND dialog = CreateWindowExW(parsed.exStyle, kDialogClass, parsed.caption.c_str(),
                                        parsed.style & ~(WS_VISIBLE | WS_CHILD), 0, 0, 0, 0, owner, nullptr,
                                        instance, nullptr);
    if (!dialog)
        return nullptr;
    NewWindow unfinished(dialog, DestroyWindow);
    dialog->dialog = NewDialogData(procedure, modal);
    GiveRole(dialog->widget, QAccessible::Dialog);
    dialog->font = DialogFont(parsed.pointSize);
    const QSize base = BaseUnits(dialog->font);
    dialog->topLevel->fullScreen = false;
    dialog->topLevel->cardSize = SizeOf(parsed, base);
    LayOutTopLevel(dialog);
    MakeControls(dialog, parsed, instance, base);
    RememberLayout(dialog);
    const HWND first = NextTabStop(dialog, nullptr, false);
    const LRESULT wantsFocus = SendMessageW(dialog, WM_INITDIALOG, reinterpret_cast<WPARAM>(first), param);
    if (!LiveWindow(dialog))
        return nullptr;
    if (wantsFocus && !dialog->dialog->ended)
        FocusByKey(NextTabStop(dialog, nullptr, false));
    ShowDefaultButton(dialog);
    if (parsed.style & WS_VISIBLE && !modal)
        ShowWindow(dialog, SW_SHOW);
    return LiveWindow(unfinished.release());
}

void FocusInDialog(HWND dialog) {
    const HWND last = dialog->topLevel->lastFocus;
    const HWND control =
        last && last != dialog && IsInside(last, dialog) ? last : NextTabStop(dialog, nullptr, false);
    if (control)
        SetFocus(control);
}

LRESULT DialogClassProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const std::shared_ptr<DialogData> data = LiveWindow(window) ? window->dialog : nullptr;
    if (data && data->procedure) {
        const LONG_PTR handled = data->procedure(window, message, wParam, lParam);
        if (handled || !LiveWindow(window))
            return handled;
    }
    switch (message) {
    case WM_CLOSE:
        PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
        return 0;
    case WM_SETFOCUS:
        FocusInDialog(window);
        return 0;
    case WM_MOUSEWHEEL:
        if (data)
            ScrollByWheel(window, SignedHiWord(static_cast<LPARAM>(wParam)));
        return 0;
    case WM_INITDIALOG:
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void FollowFocus(HWND dialog) {
    ScrollIntoView(GetFocus());
    ShowDefaultButton(dialog);
}

void TellOfDialog(const DLGTEMPLATE* dialogTemplate, HWND dialog, bool modal) {
    if (dialog && TestHooks().dialog)
        TestHooks().dialog({dialogTemplate, dialog, modal});
}

} // namespace

void RegisterDialogClass() {
    RegisterBuiltInClass(kDialogClass, DialogClassProcedure, nullptr);
}

std::shared_ptr<DialogData> NewDialogData(DLGPROC procedure, bool modal) {
    auto data = std::make_shared<DialogData>();
    data->procedure = procedure;
    data->modal = modal;
    data->layOut = LayOutDialog;
    data->focusMoved = FollowFocus;
    return data;
}

LONG_PTR RunUntilEnded(HWND dialog, HWND owner) {
    const std::shared_ptr<DialogData> data = dialog->dialog;
    const HWND ownerTop = TopLevelOf(owner);
    const bool ownerWasEnabled = ownerTop && IsWindowEnabled(ownerTop);
    if (ownerWasEnabled)
        EnableWindow(ownerTop, FALSE);
    if (!data->ended) {
        ShowWindow(dialog, SW_SHOW);
        RunModal(data->ended);
    }
    // The owner can take the focus again before the dialog lets go of it.
    if (ownerWasEnabled)
        EnableWindow(ownerTop, TRUE);
    DestroyWindow(dialog);
    return data->result;
}

} // namespace ui

using namespace ui;

LONG_PTR DialogBoxIndirectParamW(HINSTANCE instance, const DLGTEMPLATE* dialogTemplate, HWND owner,
                                 DLGPROC procedure, LPARAM param) {
    if (NoDisplay()) {
        const std::string title =
            dialogTemplate ? ToUtf8(ParseDialogTemplate(dialogTemplate).caption) : std::string();
        std::fprintf(stderr, "%s: a dialog was cancelled, since there is no display\n", title.c_str());
        NoteFailure();
        return IDCANCEL;
    }
    const HWND dialog = UnlessOutOfMemory<HWND>(
        nullptr, [&] { return MakeDialog(instance, dialogTemplate, owner, procedure, param, true); });
    if (!dialog)
        return -1;
    TellOfDialog(dialogTemplate, dialog, true);
    return RunUntilEnded(dialog, owner);
}

HWND CreateDialogIndirectParamW(HINSTANCE instance, const DLGTEMPLATE* dialogTemplate, HWND owner,
                                DLGPROC procedure, LPARAM param) {
    const HWND dialog = UnlessOutOfMemory<HWND>(
        nullptr, [&] { return MakeDialog(instance, dialogTemplate, owner, procedure, param, false); });
    TellOfDialog(dialogTemplate, dialog, false);
    return LiveWindow(dialog);
}

BOOL RelayoutDialog(HWND dialog, const DLGTEMPLATE* dialogTemplate) {
    const WindowObject* object = LiveWindow(dialog);
    if (!object || !object->dialog || !dialogTemplate)
        return FALSE;
    const ParsedTemplate parsed = ParseDialogTemplate(dialogTemplate);
    std::vector<ControlHome>& homes = object->dialog->homes;
    const bool same = std::equal(homes.begin(), homes.end(), parsed.items.begin(), parsed.items.end(),
                                 [](const ControlHome& home, const TemplateItem& item) {
                                     return LiveWindow(home.control) && home.control->id == item.id;
                                 });
    if (!same)
        return FALSE;
    const QSize base = BaseUnits(object->font);
    for (std::size_t i = 0; i < homes.size(); ++i)
        homes[i].rect = PlaceOf(parsed.items[i], base);
    object->dialog->natural = SizeOf(parsed, base);
    LayOutTopLevel(dialog);
    return TRUE;
}

BOOL EndDialog(HWND dialog, LONG_PTR result) {
    const WindowObject* object = LiveWindow(dialog);
    if (!object || !object->dialog || object->dialog->ended)
        return FALSE;
    object->dialog->result = result;
    EndDialogLoop(*object->dialog);
    return TRUE;
}

LONG GetDialogBaseUnits() {
    EnsureWindowSystem();
    const QSize base = BaseUnits(nullptr);
    return static_cast<LONG>(MAKELONG(static_cast<WORD>(base.width()), static_cast<WORD>(base.height())));
}
