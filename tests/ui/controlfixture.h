// A window with controls in it, whose procedure writes down what they tell it; taps and keys reach them as a
// user's do.
#pragma once

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/controls.h"
#include "platform/ui/messagequeue.h"
#include "platform/ui/windowobject.h"

struct Command {
    UINT id;
    UINT code;
    bool operator==(const Command&) const = default;
};

class ControlTest : public testing::Test {
protected:
    void SetUp() override {
        current = this;
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = Procedure;
        windowClass.lpszClassName = u"ControlTest";
        RegisterClassW(&windowClass); // taken already after the first test
        parent = CreateWindowExW(0, u"ControlTest", u"Controls", WS_VISIBLE, 0, 0, 0, 0, nullptr, nullptr,
                                 nullptr, nullptr);
        ASSERT_NE(parent, nullptr);
        SetForegroundWindow(parent);
        ASSERT_TRUE(WaitFor([] { return ScreenArea()->window()->isActiveWindow(); }));
    }

    void TearDown() override {
        DestroyWindow(parent);
        Settle();
        current = nullptr;
    }

    HWND Add(const WCHAR* className, const WCHAR* text, DWORD style, UINT id,
             RECT place = {10, 10, 210, 40}) {
        return CreateWindowExW(0, className, text, WS_CHILD | WS_VISIBLE | WS_TABSTOP | style, place.left,
                               place.top, place.right - place.left, place.bottom - place.top, parent,
                               ChildId(id), nullptr, nullptr);
    }

    // Everything that is due has happened.
    static void Settle() {
        MSG message;
        for (int idle = 0; idle < 2; ++idle) {
            PumpHost(false);
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
                DispatchMessageW(&message);
                idle = 0;
            }
        }
    }

    static bool WaitFor(const std::function<bool()>& condition) {
        return QTest::qWaitFor([&condition] {
            Settle();
            return condition();
        });
    }

    static QWidget* PartAt(HWND window, QPoint& point) {
        QWidget* part = window->widget->childAt(point);
        if (!part)
            return window->widget;
        point = part->mapFrom(window->widget, point);
        return part;
    }

    static void Tap(HWND window, QPoint point, Qt::KeyboardModifiers modifiers = {}) {
        QWidget* part = PartAt(window, point);
        QTest::mouseClick(part, Qt::LeftButton, modifiers, point);
        Settle();
    }

    static void Type(HWND window, const char* text) {
        SetFocus(window);
        Settle();
        QTest::keyClicks(window->widget->window()->focusWidget(), QString::fromLatin1(text));
        Settle();
    }

    static void Press(int key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), modifiers);
        Settle();
    }

    static std::u16string TextIn(HWND window) {
        std::u16string text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, u'?');
        text.resize(
            static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
        return text;
    }

    static LRESULT Send(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
        return SendMessageW(window, message, wParam, lParam);
    }

    HWND parent = nullptr;
    std::vector<Command> commands;
    std::function<LRESULT(NMHDR*)> onNotify = [](NMHDR*) { return 0; };
    std::function<void(const DRAWITEMSTRUCT&)> onDrawItem = [](const DRAWITEMSTRUCT&) {};

private:
    static LRESULT Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (!current)
            return DefWindowProcW(window, message, wParam, lParam);
        if (message == WM_COMMAND)
            current->commands.push_back({LOWORD(wParam), HIWORD(wParam)});
        if (message == WM_NOTIFY)
            return current->onNotify(reinterpret_cast<NMHDR*>(lParam));
        if (message == WM_DRAWITEM)
            current->onDrawItem(*reinterpret_cast<DRAWITEMSTRUCT*>(lParam));
        return DefWindowProcW(window, message, wParam, lParam);
    }

    static inline ControlTest* current = nullptr;
};
