#include "tests/support/stylus.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <gtest/gtest.h>

#include "platform/base/utf8.h"
#include "platform/controls.h"
#include "platform/ui/controls/header.h"
#include "platform/ui/core/messagequeue.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/core/windowsystem.h"
#include "platform/ui/menus/menubarwidget.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/titlebar.h"
#include "platform/ui/screen/windows.h"
#include "tests/support/script.h"

namespace {

constexpr int kPatience = 20'000; // milliseconds

QWidget* HandheldDisplay() {
    return ui::ScreenArea()->window();
}

QPoint OnDisplay(HWND window, const QPoint& clientPoint) {
    return window->widget->mapTo(HandheldDisplay(), clientPoint);
}

// The column with that title, in the header's coordinates; invalid, and a failed test, for none.
QRect HeaderSection(HWND list, const std::u16string& title) {
    const auto* header = dynamic_cast<ui::HeaderView*>(ListView_GetHeader(list)->widget.data());
    for (int section = 0; header && section < header->count(); ++section)
        if (header->model()->headerData(section, Qt::Horizontal).toString().toStdU16String() == title)
            return {header->sectionViewportPosition(section), 0, header->sectionSize(section),
                    header->height()};
    ADD_FAILURE() << "no column " << ToUtf8(title);
    return {};
}

} // namespace

HeaderArrow ArrowBeside(HWND list, const std::u16string& title) {
    constexpr int kArrowWidth = 12; // with its margin; the title begins behind
    const QRect section = HeaderSection(list, title);
    const QImage shown = ListView_GetHeader(list)->widget->grab(section).toImage();
    // An arrow's rows of pixels, from the first on.
    std::vector<int> widths;
    for (int y = 1; y < shown.height() - 2; ++y) {
        int width = 0;
        for (int x = 1; x < kArrowWidth; ++x)
            width += shown.pixel(x, y) != shown.pixel(1, 1);
        if (width > 0)
            widths.push_back(width);
    }
    if (widths.size() < 2 || widths.front() == widths.back())
        return HeaderArrow::None;
    return widths.front() < widths.back() ? HeaderArrow::Up : HeaderArrow::Down;
}

std::u16string TextOf(HWND window) {
    std::u16string text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, u'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

std::u16string TextOf(HWND dialog, int controlId) {
    return TextOf(GetDlgItem(dialog, controlId));
}

std::u16string CellText(HWND list, int row, int column) {
    WCHAR text[1024];
    ListView_GetItemText(list, row, column, text);
    return text;
}

std::vector<std::u16string> ColumnTexts(HWND list, int column) {
    std::vector<std::u16string> texts;
    for (int row = 0; row < ListView_GetItemCount(list); ++row)
        texts.push_back(CellText(list, row, column));
    return texts;
}

Stylus::Stylus() {
    ui::EnsureWindowSystem();
    ui::TestHooks().messageBox = [this](const ui::MessageBoxSeen& box) { BoxOpened(box); };
    ui::TestHooks().dialog = [](const ui::DialogSeen& dialog) {
        ADD_FAILURE() << "unexpected dialog: " << ToUtf8(TextOf(dialog.window));
        PostMessageW(dialog.window, WM_COMMAND, IDCANCEL, 0);
    };
    ui::TestHooks().menu = [this](QMenu* menu) { MenuOpened(menu); };
    ui::TestHooks().picker = [this](const ui::PickerSeen& picker) { PickerOpened(picker); };
}

Stylus::~Stylus() {
    EXPECT_TRUE(expected.empty()) << "never opened: " << Waiting();
    ui::TestHooks() = {};
}

// ---- doing ----

void Stylus::Tap(HWND window, QPoint clientPoint) {
    ASSERT_TRUE(ui::LiveWindow(window) && window->widget && window->widget->isVisible());
    ui::AgreeOnFocus();
    QTest::mouseClick(HandheldDisplay()->windowHandle(), Qt::LeftButton, {}, OnDisplay(window, clientPoint));
    Settle();
}

void Stylus::Tap(HWND dialog, int controlId) {
    const HWND control = GetDlgItem(dialog, controlId);
    ASSERT_TRUE(control) << "no control " << controlId;
    const int nearEdge = control->widget->height() / 2; // where a check box has its box
    Tap(control, QPoint(nearEdge, nearEdge));
}

void Stylus::TapTwice(HWND window, QPoint clientPoint) {
    ASSERT_TRUE(ui::LiveWindow(window) && window->widget);
    QTest::mouseDClick(HandheldDisplay()->windowHandle(), Qt::LeftButton, {}, OnDisplay(window, clientPoint));
    Settle();
}

void Stylus::TapAndHold(HWND window, QPoint clientPoint) {
    ASSERT_TRUE(ui::LiveWindow(window) && window->widget);
    constexpr int kLongEnough = 700;
    const int before = opened;
    const QPoint place = OnDisplay(window, clientPoint);
    QTest::mousePress(HandheldDisplay()->windowHandle(), Qt::LeftButton, {}, place);
    QElapsedTimer held;
    held.start();
    WaitFor([&] { return opened > before || held.elapsed() > kLongEnough; }, "tap and hold");
    QTest::mouseRelease(HandheldDisplay()->windowHandle(), Qt::LeftButton, {}, place);
    Settle();
}

void Stylus::TapRight(HWND window, QPoint clientPoint) {
    ASSERT_TRUE(ui::LiveWindow(window) && window->widget);
    QTest::mouseClick(HandheldDisplay()->windowHandle(), Qt::RightButton, {}, OnDisplay(window, clientPoint));
    Settle();
}

void Stylus::TapTitleButton() {
    auto* button = HandheldDisplay()->findChild<ui::TitleBarButton*>();
    ASSERT_TRUE(button && button->isVisible());
    QTest::mouseClick(HandheldDisplay()->windowHandle(), Qt::LeftButton, {},
                      button->mapTo(HandheldDisplay(), button->rect().center()));
    Settle();
}

void Stylus::Key(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    ui::PumpHost(false); // the focus is where it belongs
    QTest::keyClick(HandheldDisplay()->windowHandle(), key, modifiers);
    Settle();
}

void Stylus::Type(const std::u16string& text) {
    ui::PumpHost(false);
    for (const QChar& character : QString::fromStdU16String(text)) {
        QWidget* focus = QApplication::focusWidget() ? QApplication::focusWidget() : HandheldDisplay();
        QTest::sendKeyEvent(QTest::Click, focus, Qt::Key_unknown, QString(character), Qt::NoModifier);
        Settle();
    }
}

// On the row's label, in the list's coordinates, once it is in sight.
QPoint Stylus::RowPoint(HWND list, const std::u16string& text) {
    const std::vector<std::u16string> rows = ColumnTexts(list, 0);
    const auto found = std::find(rows.begin(), rows.end(), text);
    auto* widget = dynamic_cast<ui::ListWidget*>(list->widget.data());
    if (found == rows.end() || !widget) {
        ADD_FAILURE() << "no row " << ToUtf8(text);
        return {};
    }
    const int row = static_cast<int>(found - rows.begin());
    ListView_EnsureVisible(list, row);
    Settle();
    return ui::LayOutCell(*widget, widget->CellRect(row), row, 0).label.center();
}

void Stylus::TapRow(HWND list, const std::u16string& text) {
    Tap(list, RowPoint(list, text));
}

void Stylus::TapRowTwice(HWND list, const std::u16string& text) {
    TapTwice(list, RowPoint(list, text));
}

void Stylus::DragRow(HWND list, const std::u16string& text, QPoint distance) {
    const QPoint from = OnDisplay(list, RowPoint(list, text));
    QWindow* display = HandheldDisplay()->windowHandle();
    QTest::mousePress(display, Qt::LeftButton, {}, from);
    QTest::mouseMove(display, from + distance);
    Settle();
    QTest::mouseRelease(display, Qt::LeftButton, {}, from + distance);
    Settle();
}

void Stylus::TapHeader(HWND list, const std::u16string& title) {
    const QRect section = HeaderSection(list, title);
    if (section.isValid())
        Tap(ListView_GetHeader(list), section.center());
}

void Stylus::ChooseFromBar(HWND window, const std::u16string& path) {
    const HWND bar = GetDlgItem(window, ui::kMenuBarId);
    auto* widget = bar ? qobject_cast<ui::MenuBarWidget*>(bar->widget) : nullptr;
    ASSERT_TRUE(widget) << "no menu bar";
    const std::size_t slash = path.find(u'/');
    const std::u16string name = path.substr(0, slash);
    for (ui::BarButton* button : widget->Buttons()) {
        if (button->accessibleName().toStdU16String() != name)
            continue;
        if (slash != std::u16string::npos)
            ExpectMenuFirst(path.substr(slash + 1));
        return Tap(bar, button->geometry().center());
    }
    ADD_FAILURE() << "not in the menu bar: " << ToUtf8(name);
}

void Stylus::ChooseFromPopup(HWND list, const std::u16string& rowText, const std::u16string& item) {
    const QPoint point = RowPoint(list, rowText);
    ExpectMenuFirst(item);
    TapAndHold(list, point);
}

void Stylus::ChooseByRightButton(HWND list, const std::u16string& rowText, const std::u16string& item) {
    const QPoint point = RowPoint(list, rowText);
    ExpectMenuFirst(item);
    TapRight(list, point);
}

void Stylus::Resize(int width, int height) {
    HandheldDisplay()->resize(width, height);
    Settle();
}

void Stylus::CloseDisplay() {
    HandheldDisplay()->close();
    Settle();
}

void Stylus::Beside(const std::function<void()>& program, std::function<void()> steps) {
    const int before = RunningScripts();
    bool ended = false;
    StartScript([this, &ended, steps = std::move(steps)] {
        steps();
        if (WaitFor([&ended] { return ended; }, "the end of the program after the last step"))
            return;
        for (const HWND window : std::vector<HWND>(ui::TopLevelWindows())) // which ends every loop
            DestroyWindow(window);
    });
    program();
    ended = true;
    WaitFor([before] { return RunningScripts() == before; }, "the end of the steps beside the program");
}

// ---- waiting ----

bool Stylus::WaitFor(const std::function<bool()>& condition, const char* what) {
    QElapsedTimer waited;
    waited.start();
    while (!condition()) {
        if (waited.elapsed() > kPatience) {
            ADD_FAILURE() << "waited in vain for: " << what;
            return false;
        }
        if (InScript()) {
            YieldScript(5);
            continue;
        }
        QTimer wakeUp; // waiting ends without any event, too
        wakeUp.start(5);
        ui::PumpHost(true);
        Settle();
    }
    return true;
}

void Stylus::Settle() {
    if (InScript())
        return YieldScript();
    MSG message;
    for (int idle = 0; idle < 2; ++idle) {
        ui::PumpHost(false);
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            idle = 0;
            if (message.message == WM_QUIT) {
                PostQuitMessage(static_cast<int>(message.wParam)); // for the program's own loop
                return;
            }
            const HWND top = ui::TopLevelOf(message.hwnd);
            if (!top || !top->dialog || !IsDialogMessageW(top, &message))
                DispatchMessageW(&message);
        }
    }
}
