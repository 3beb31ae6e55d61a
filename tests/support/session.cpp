#include "tests/support/session.h"

#include <filesystem>
#include <fstream>

#include "app/application.h"
#include "app/uiservices.h"
#include "platform/controls.h"
#include "platform/process.h"

namespace {

bool TakesInput(HWND window) {
    return IsWindow(window) && IsWindowVisible(window) && IsWindowEnabled(window);
}

} // namespace

Session::Session() {
    ui::TestHooks().dialog = [this](const ui::DialogSeen& seen) {
        opened[seen.dialogTemplate] = seen.window;
    };
}

HWND Session::CurrentWindow() const {
    if (currentTemplate == 0)
        return App().idle ? App().mainWindow : nullptr;
    const auto found = opened.find(FindDialogTemplate(currentTemplate));
    return found == opened.end() ? nullptr : found->second;
}

HWND Session::Window() {
    const std::string what = "template " + std::to_string(currentTemplate) + " to take input";
    WaitFor([this] { return TakesInput(CurrentWindow()); }, what.c_str());
    return CurrentWindow();
}

void Session::WaitFor(const std::function<bool()>& condition, const char* what) {
    if (!stylus.WaitFor([&] { return stylus.AllAnswered() && condition(); }, what))
        throw WaitedInVain();
}

void Session::Do(const std::function<void(HWND)>& act) {
    act(Window());
    WaitFor([] { return true; }, "what opened to be answered");
}

void Session::Tap(int controlId) {
    Do([&](HWND window) { stylus.Tap(window, controlId); });
}

void Session::TapTitleButton() {
    Do([&](HWND) { stylus.TapTitleButton(); });
}

void Session::Press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    Do([&](HWND) { stylus.Key(key, modifiers); });
}

void Session::Type(const std::u16string& text) {
    Do([&](HWND) { stylus.Type(text); });
}

void Session::TypeInto(int controlId, const std::u16string& text) {
    Tap(controlId);
    Press(Qt::Key_A, Qt::ControlModifier);
    Type(text);
}

void Session::TapRow(int listId, const std::u16string& text) {
    Do([&](HWND window) { stylus.TapRow(GetDlgItem(window, listId), text); });
}

void Session::TapRowTwice(int listId, const std::u16string& text) {
    Do([&](HWND window) { stylus.TapRowTwice(GetDlgItem(window, listId), text); });
}

void Session::SelectRow(int listId, const std::u16string& text) {
    const HWND list = Control(listId);
    Press(Qt::Key_Home);
    for (int row = 0; CellText(list, SelectedRow(list), 0) != text; ++row) {
        ASSERT_LT(row, ListView_GetItemCount(list));
        Press(Qt::Key_Down);
    }
}

void Session::TapHeader(int listId, const std::u16string& title) {
    Do([&](HWND window) { stylus.TapHeader(GetDlgItem(window, listId), title); });
}

void Session::Choose(const std::u16string& path) {
    Do([&](HWND window) { stylus.ChooseFromBar(window, path); });
}

void Session::ChooseFromPopup(int listId, const std::u16string& rowText, const std::u16string& item) {
    Do([&](HWND window) { stylus.ChooseFromPopup(GetDlgItem(window, listId), rowText, item); });
}

void Session::ChooseByRightButton(int listId, const std::u16string& rowText, const std::u16string& item) {
    Do([&](HWND window) { stylus.ChooseByRightButton(GetDlgItem(window, listId), rowText, item); });
}

void Session::CloseEverything() {
    for (const auto& [dialogTemplate, window] : opened)
        if (IsWindow(window))
            PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
    PostQuitMessage(0);
}

void Session::RunProgram(const std::function<void()>& steps) {
    static bool classRegistered = false;
    App() = Application();
    // A second run in one process finds the window class there, as a second instance of old did.
    const HINSTANCE previous = classRegistered ? reinterpret_cast<HINSTANCE>(this) : nullptr;
    classRegistered = true;
    WCHAR nothing[] = u"";
    stylus.Beside([&] { EXPECT_EQ(WinMain(nullptr, previous, nothing, SW_SHOWNORMAL), 0); },
                  [&] {
                      try {
                          InMainWindow();
                          steps();
                          InMainWindow();
                          Do([&](HWND) { stylus.CloseDisplay(); });
                      } catch (const WaitedInVain&) {
                          CloseEverything();
                      }
                  });
}

int Session::SelectedRow(HWND list) {
    return ListView_GetNextItem(list, -1, LVNI_SELECTED);
}

std::u16string Session::SelectedText(int listId) {
    const HWND list = Control(listId);
    return CellText(list, SelectedRow(list), 0);
}

void Session::CatchHelp() {
    const std::filesystem::path viewer = device.folder + "/help";
    std::ofstream(viewer) << "#!/bin/sh\necho \"$1\" >\"$0.new\"\nmv \"$0.new\" \"$0.shown\"\n";
    std::filesystem::permissions(viewer, std::filesystem::perms::owner_all);
    // Its name is relative to the program's folder.
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    helpViewer = viewer.lexically_relative(program.parent_path()).u16string();
    App().helpViewer = helpViewer.c_str();
}

std::string Session::HelpShown() {
    const std::string shown = device.folder + "/help.shown";
    WaitFor([&] { return std::filesystem::exists(shown); }, "the help to be shown");
    std::string text;
    std::getline(std::ifstream(shown), text);
    std::filesystem::remove(shown);
    return text;
}
