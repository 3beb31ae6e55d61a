#include "tests/support/usersession.h"

#include <QAbstractItemView>
#include <algorithm>

#include "app/application.h"
#include "app/uiservices.h"
#include "platform/base/utf8.h"
#include "platform/controls.h"
#include "platform/process.h"
#include "platform/ui/core/windowobject.h"

namespace {

constexpr int kTextRoom = 1024;

bool TakesInput(HWND window) {
    return IsWindow(window) && IsWindowVisible(window) && IsWindowEnabled(window);
}

int CountRows(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
}

} // namespace

UserSession::UserSession() {
    TestHooks().dialog = [this](const DialogSeen& seen) { opened[seen.dialogTemplate] = seen.window; };
}

void UserSession::Do(std::function<void(HWND)> act) {
    WaitFor([act = std::move(act)](HWND window) {
        act(window);
        return true;
    });
}

void UserSession::WaitFor(std::function<bool(HWND)> condition) {
    steps.push_back({currentTemplate, std::move(condition)});
}

void UserSession::Tap(int controlId) {
    Do([this, controlId](HWND window) { stylus.Tap(window, controlId); });
}

void UserSession::TapTitleButton() {
    Do([this](HWND) { stylus.TapTitleButton(); });
}

void UserSession::Press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    Do([this, key, modifiers](HWND) { stylus.Key(key, modifiers); });
}

void UserSession::Type(std::u16string text) {
    Do([this, text = std::move(text)](HWND) { stylus.Type(text); });
}

void UserSession::TypeInto(int controlId, std::u16string text) {
    Do([controlId](HWND window) {
        SetFocus(GetDlgItem(window, controlId));
        SendMessageW(GetDlgItem(window, controlId), EM_SETSEL, 0, -1);
    });
    Type(std::move(text));
}

void UserSession::TapRow(int listId, const std::u16string& text) {
    Do([listId, text](HWND window) {
        const HWND list = GetDlgItem(window, listId);
        const int row = RowOf(list, text);
        LVITEMW item = {};
        item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
        item.state = item.stateMask;
        SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    });
}

void UserSession::TouchRow(int listId, const std::u16string& text) {
    Do([this, listId, text](HWND window) {
        const HWND list = GetDlgItem(window, listId);
        for (const QAbstractItemView* view : list->widget->findChildren<QAbstractItemView*>()) {
            if (!view->isVisible() || view->inherits("QHeaderView"))
                continue;
            const QRect row = view->visualRect(view->model()->index(RowOf(list, text), 0));
            const QPoint label(row.left() + 2 * row.height(), row.center().y()); // right of its icon
            stylus.Tap(list, view->viewport()->mapTo(list->widget, label));
        }
    });
}

void UserSession::Choose(UINT command) {
    Do([command](HWND window) { PostMessageW(window, WM_COMMAND, command, 0); });
}

int UserSession::RowOf(HWND list, const std::u16string& text) {
    const std::vector<std::u16string> names = Column(list, 0);
    const auto found = std::find(names.begin(), names.end(), text);
    if (found != names.end())
        return static_cast<int>(found - names.begin());
    ADD_FAILURE() << "no row " << ToUtf8(text);
    return -1;
}

HWND UserSession::WindowOf(UINT templateId) const {
    if (templateId == 0)
        return App().idle ? App().mainWindow : nullptr;
    const auto found = opened.find(FindDialogTemplate(templateId));
    return found == opened.end() ? nullptr : found->second;
}

bool UserSession::Take(const Step& step) {
    HWND window = nullptr;
    const std::string place = "template " + std::to_string(step.templateId);
    const auto ready = [&] { return TakesInput(window = WindowOf(step.templateId)); };
    if (!stylus.WaitFor(ready, (place + " to take input").c_str()) ||
        !stylus.WaitFor([&] { return step.act(window); }, (place + ", a step's condition").c_str()))
        return false;
    stylus.Settle();
    return true;
}

// In the end, or when a step waits in vain, everything is closed.
void UserSession::TakeSteps() {
    Do([](HWND window) { PostMessageW(window, WM_CLOSE, 0, 0); });
    steps.back().templateId = 0;
    bool goesOn = true;
    for (; goesOn && !steps.empty(); steps.pop_front())
        goesOn = Take(steps.front());
    if (goesOn)
        return;
    for (const auto& [dialogTemplate, window] : opened)
        if (IsWindow(window))
            PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
    PostQuitMessage(0);
}

void UserSession::RunProgram() {
    static bool classRegistered = false;
    App() = Application();
    // A second run in one process finds the window class there, as a second instance of old did.
    const HINSTANCE previous = classRegistered ? reinterpret_cast<HINSTANCE>(this) : nullptr;
    classRegistered = true;
    WCHAR nothing[] = u"";
    stylus.Beside([&] { EXPECT_EQ(WinMain(nullptr, previous, nothing, SW_SHOWNORMAL), 0); },
                  [this] { TakeSteps(); });
    currentTemplate = 0;
}

std::u16string UserSession::RowText(HWND list, int row, int column) {
    WCHAR text[kTextRoom] = {};
    LVITEMW item = {};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = kTextRoom;
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
}

std::vector<std::u16string> UserSession::Column(HWND list, int column) {
    std::vector<std::u16string> texts;
    for (int row = 0; row < CountRows(list); ++row)
        texts.push_back(RowText(list, row, column));
    return texts;
}

int UserSession::SelectedRow(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}
