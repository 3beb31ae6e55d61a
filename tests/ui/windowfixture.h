// A main window whose procedure writes down what it is told, and the stylus that works on it and on its
// controls as a user does.
#pragma once

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "platform/controls.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/screen/screen.h"
#include "tests/support/stylus.h"

struct Command {
    UINT id;
    UINT code;
    bool operator==(const Command&) const = default;
};

class WindowTest : public testing::Test {
protected:
    static constexpr const WCHAR* kClass = u"WindowTest";

    void SetUp() override {
        current = this;
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = Procedure;
        windowClass.cbWndExtra = sizeof(LONG_PTR);
        windowClass.lpszClassName = kClass;
        RegisterClassW(&windowClass); // taken already after the first test
        stylus.Resize(480, 640);
        main = Top(u"Main");
        ASSERT_NE(main, nullptr);
        SetForegroundWindow(main); // another test may have left a window of the host's own there
        stylus.WaitFor([] { return ui::ScreenArea()->window()->isActiveWindow(); }, "the active display");
    }

    void TearDown() override {
        for (const HWND window : std::vector<HWND>(ui::TopLevelWindows()))
            DestroyWindow(window);
        stylus.Settle();
        current = nullptr;
    }

    // What the fixture itself answers; nothing for the default.
    virtual std::optional<LRESULT> Handle(HWND, UINT, WPARAM, LPARAM) { return std::nullopt; }

    HWND Top(const WCHAR* title, HWND owner = nullptr) {
        const HWND window =
            CreateWindowExW(0, kClass, title, WS_VISIBLE, 0, 0, 0, 0, owner, nullptr, nullptr, nullptr);
        stylus.Settle();
        return window;
    }

    HWND Add(const WCHAR* className, const WCHAR* text, DWORD style, UINT id, RECT place = {10, 10, 210, 40},
             HWND parent = nullptr) {
        return CreateWindowExW(0, className, text, WS_CHILD | WS_VISIBLE | WS_TABSTOP | style, place.left,
                               place.top, place.right - place.left, place.bottom - place.top,
                               parent ? parent : main, ChildId(id), nullptr, nullptr);
    }

    void Focus(HWND window) {
        SetFocus(window);
        stylus.Settle();
    }

    void Type(HWND window, const std::u16string& text) {
        Focus(window);
        stylus.Type(text);
    }

    static LRESULT Send(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
        return SendMessageW(window, message, wParam, lParam);
    }
    template <typename T>
    static LRESULT Send(HWND window, UINT message, WPARAM wParam, T* data) {
        return SendMessageW(window, message, wParam, reinterpret_cast<LPARAM>(data));
    }

    Stylus stylus;
    HWND main = nullptr;
    std::vector<Command> commands;

private:
    static LRESULT Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (!current)
            return DefWindowProcW(window, message, wParam, lParam);
        if (message == WM_COMMAND)
            current->commands.push_back({LOWORD(wParam), HIWORD(wParam)});
        const std::optional<LRESULT> result = current->Handle(window, message, wParam, lParam);
        return result ? *result : DefWindowProcW(window, message, wParam, lParam);
    }

    static inline WindowTest* current = nullptr;
};
