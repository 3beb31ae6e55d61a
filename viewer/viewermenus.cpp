// Which commands the viewer offers at this moment.
#include "platform/clipboard.h"
#include "platform/menu.h"
#include "platform/shell.h"
#include "resources/resource.h"
#include "viewer/propertyclipboard.h"
#include "viewer/recordviewer.h"

namespace {

struct CommandState {
    HMENU menu;
    HWND bar;

    void Enable(UINT command, bool enable) const {
        EnableMenuItem(menu, command, MF_BYCOMMAND | (enable ? MF_ENABLED : MF_GRAYED));
        SendMessageW(bar, TB_ENABLEBUTTON, command, enable);
    }
};

bool ClipboardHolds(HWND owner, UINT format) {
    if (!OpenClipboard(owner))
        return false;
    const bool available = IsClipboardFormatAvailable(format);
    CloseClipboard();
    return available;
}

bool HasTextSelection(HWND editor) {
    DWORD start = 0;
    DWORD end = 0;
    SendMessageW(editor, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    return start != end;
}

// Quirk: Select All keeps the state that it had, for only the other branch ever sets it.
void UpdateForEditor(const CommandState& state, HWND editor) {
    const bool selection = HasTextSelection(editor);
    state.Enable(IDM_EDIT_COPY, selection);
    state.Enable(IDM_EDIT_CUT, selection);
    state.Enable(IDM_EDIT_UNDO, SendMessageW(editor, EM_CANUNDO, 0, 0) != 0);
    state.Enable(IDM_EDIT_PASTE, IsClipboardFormatAvailable(CF_UNICODETEXT));
}

void UpdateForProperty(const CommandState& state, const RecordViewer& viewer) {
    const bool selected = viewer.SelectedProperty() != nullptr;
    state.Enable(IDM_EDIT_COPY, selected);
    state.Enable(IDM_EDIT_CUT, selected);
    state.Enable(IDM_EDIT_UNDO, viewer.undo.IsPossible());
    state.Enable(IDM_EDIT_PASTE, ClipboardHolds(viewer.dialog, PropertyClipFormat()));
    state.Enable(IDM_EDIT_SELECT_ALL, false);
}

} // namespace

void RecordViewer::UpdateMenus(HMENU menu) {
    if (!menuBar)
        return;
    if (!menu)
        menu = reinterpret_cast<HMENU>(SendMessageW(menuBar, SHCMBM_GETMENU, 0, 0));
    const CommandState state = {menu, menuBar};
    state.Enable(IDM_EDIT_FIND_NEXT, findText[0] != 0);
    const UINT sort = HasSort(currentSort) ? IDM_SORT_FIRST + currentSort : IDM_SORT_UNSORTED;
    CheckMenuRadioItem(menu, IDM_SORT_FIRST, IDM_SORT_UNSORTED, sort, MF_BYCOMMAND);
    state.Enable(IDM_RECORD_FIRST, recordIndex != 0);
    state.Enable(IDM_RECORD_PREVIOUS, recordIndex != 0);
    const bool more = recordIndex + 1 < info.wNumRecords;
    state.Enable(IDM_RECORD_NEXT, more);
    state.Enable(IDM_RECORD_LAST, more);
    const HWND focus = GetFocus();
    if (IsEditor(focus))
        UpdateForEditor(state, focus);
    else
        UpdateForProperty(state, *this);
}
