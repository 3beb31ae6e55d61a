#include "tests/support/stylus.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <gtest/gtest.h>

#include "platform/base/utf8.h"
#include "platform/controls.h"
#include "platform/resources.h"
#include "platform/ui/controls/header.h"
#include "platform/ui/core/messagequeue.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/menus/menubarwidget.h"
#include "platform/ui/screen/titlebar.h"
#include "tests/support/script.h"

namespace {

constexpr int kPatience = 20'000; // milliseconds

QWidget* HandheldDisplay() {
    return ScreenArea()->window();
}

bool IsTemplate(const DLGTEMPLATE* dialogTemplate, int id) {
    const HRSRC resource = FindResourceW(nullptr, MAKEINTRESOURCEW(static_cast<WORD>(id)), RT_DIALOG);
    return resource && LoadResource(nullptr, resource) == dialogTemplate;
}

std::string Utf8(const std::u16string& text) {
    return ToUtf8(text);
}

QAction* FindAction(const QMenu* menu, const QString& text) {
    for (QAction* action : menu->actions()) {
        QString shown = action->text().section(QLatin1Char('\t'), 0, 0);
        if (shown.remove(QLatin1Char('&')) == text)
            return action;
    }
    return nullptr;
}

QPoint OnDisplay(HWND window, const QPoint& clientPoint) {
    return window->widget->mapTo(HandheldDisplay(), clientPoint);
}

// The column with that title, in the header's coordinates; invalid, and a failed test, for none.
QRect HeaderSection(HWND list, const std::u16string& title) {
    const auto* header = dynamic_cast<HeaderView*>(ListView_GetHeader(list)->widget.data());
    for (int section = 0; header && section < header->count(); ++section)
        if (header->model()->headerData(section, Qt::Horizontal).toString().toStdU16String() == title)
            return {header->sectionViewportPosition(section), 0, header->sectionSize(section),
                    header->height()};
    ADD_FAILURE() << "no column " << Utf8(title);
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
    EnsureWindowSystem();
    TestHooks().messageBox = [this](const MessageBoxSeen& box) { BoxOpened(box); };
    TestHooks().dialog = [this](const DialogSeen& dialog) { DialogOpened(dialog); };
    TestHooks().menu = [this](QMenu* menu) { MenuOpened(menu); };
    TestHooks().picker = [this](const PickerSeen& picker) { PickerOpened(picker); };
}

Stylus::~Stylus() {
    EXPECT_TRUE(expected.empty()) << "never opened: " << Waiting();
    TestHooks() = {};
}

// ---- doing ----

void Stylus::Tap(HWND window, QPoint clientPoint) {
    ASSERT_TRUE(LiveWindow(window) && window->widget && window->widget->isVisible());
    AgreeOnFocus();
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
    ASSERT_TRUE(LiveWindow(window) && window->widget);
    QTest::mouseDClick(HandheldDisplay()->windowHandle(), Qt::LeftButton, {}, OnDisplay(window, clientPoint));
    Settle();
}

void Stylus::TapAndHold(HWND window, QPoint clientPoint) {
    ASSERT_TRUE(LiveWindow(window) && window->widget);
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
    ASSERT_TRUE(LiveWindow(window) && window->widget);
    QTest::mouseClick(HandheldDisplay()->windowHandle(), Qt::RightButton, {}, OnDisplay(window, clientPoint));
    Settle();
}

void Stylus::TapTitleButton() {
    auto* button = HandheldDisplay()->findChild<TitleBarButton*>();
    ASSERT_TRUE(button && button->isVisible());
    QTest::mouseClick(HandheldDisplay()->windowHandle(), Qt::LeftButton, {},
                      button->mapTo(HandheldDisplay(), button->rect().center()));
    Settle();
}

void Stylus::Key(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    PumpHost(false); // the focus is where it belongs
    QTest::keyClick(HandheldDisplay()->windowHandle(), key, modifiers);
    Settle();
}

void Stylus::Type(const std::u16string& text) {
    PumpHost(false);
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
    auto* widget = dynamic_cast<ListWidget*>(list->widget.data());
    if (found == rows.end() || !widget) {
        ADD_FAILURE() << "no row " << Utf8(text);
        return {};
    }
    const int row = static_cast<int>(found - rows.begin());
    ListView_EnsureVisible(list, row);
    Settle();
    return LayOutCell(*widget, widget->CellRect(row), row, 0).label.center();
}

void Stylus::TapRow(HWND list, const std::u16string& text) {
    Tap(list, RowPoint(list, text));
}

void Stylus::TapRowTwice(HWND list, const std::u16string& text) {
    TapTwice(list, RowPoint(list, text));
}

void Stylus::TapHeader(HWND list, const std::u16string& title) {
    const QRect section = HeaderSection(list, title);
    if (section.isValid())
        Tap(ListView_GetHeader(list), section.center());
}

void Stylus::ChooseFromBar(HWND window, const std::u16string& path) {
    const HWND bar = GetDlgItem(window, kMenuBarId);
    auto* widget = bar ? qobject_cast<MenuBarWidget*>(bar->widget) : nullptr;
    ASSERT_TRUE(widget) << "no menu bar";
    const std::size_t slash = path.find(u'/');
    const std::u16string name = path.substr(0, slash);
    for (BarButton* button : widget->Buttons()) {
        if (button->accessibleName().toStdU16String() != name)
            continue;
        if (slash != std::u16string::npos)
            ExpectMenuFirst(path.substr(slash + 1));
        return Tap(bar, button->geometry().center());
    }
    ADD_FAILURE() << "not in the menu bar: " << Utf8(name);
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

void Stylus::ChooseFromBar(char16_t mnemonic, const std::u16string& item) {
    ExpectMenuFirst(item);
    Key(static_cast<Qt::Key>(mnemonic), Qt::AltModifier);
}

void Stylus::Resize(int width, int height) {
    HandheldDisplay()->resize(width, height);
    Settle();
}

void Stylus::CloseDisplay() {
    HandheldDisplay()->close();
    Settle();
}

// ---- expecting ----

void Stylus::ExpectBox(const std::u16string& text, int answer) {
    expected.push_back({Kind::Box, text, answer, nullptr});
}

void Stylus::ExpectDialog(int templateId, std::function<void(HWND)> act) {
    expected.push_back({Kind::Dialog, {}, templateId, std::move(act)});
}

void Stylus::AllowDialog(int templateId) {
    allowed.insert(templateId);
}

void Stylus::ExpectMenu(const std::u16string& item) {
    expected.push_back({Kind::Menu, item, 0, nullptr});
}

// For what opens a menu itself: what the item is to open is expected already.
void Stylus::ExpectMenuFirst(const std::u16string& item) {
    expected.push_front({Kind::Menu, item, 0, nullptr});
}

void Stylus::ExpectPicker(bool save, const std::u16string& name) {
    expected.push_back({Kind::Picker, name, save, nullptr});
}

bool Stylus::Take(Kind kind, const std::function<bool(const Expected&)>& fits, Expected& taken) {
    ++opened;
    if (expected.empty() || expected.front().kind != kind || !fits(expected.front()))
        return false;
    taken = std::move(expected.front());
    expected.pop_front();
    return true;
}

// Beside the loop of what has opened.
void Stylus::Answer(std::function<void()> act) {
    ++answering;
    StartScript([this, act = std::move(act)] {
        act();
        --answering;
    });
}

std::string Stylus::Waiting() const {
    if (expected.empty())
        return "nothing";
    static const char* const kKinds[] = {"box", "dialog", "menu", "picker"};
    const Expected& next = expected.front();
    return std::string(kKinds[static_cast<int>(next.kind)]) + " \"" + Utf8(next.text) + "\" " +
           std::to_string(next.number);
}

void Stylus::BoxOpened(const MessageBoxSeen& box) {
    Expected taken;
    const HWND window = box.window;
    if (Take(
            Kind::Box, [&](const Expected& next) { return next.text == box.text; }, taken)) {
        EXPECT_TRUE(GetDlgItem(window, taken.number)) << "no such answer: " << taken.number;
        Answer([this, window, answer = taken.number] {
            if (LiveWindow(window))
                Tap(window, answer);
        });
        return;
    }
    ADD_FAILURE() << "unexpected message box: " << Utf8(box.text) << "; expected was " << Waiting();
    StartScript([] { AnswerMessageBox(IDCANCEL); });
}

void Stylus::DialogOpened(const DialogSeen& dialog) {
    Expected taken;
    const HWND window = dialog.window;
    if (Take(
            Kind::Dialog,
            [&](const Expected& next) { return IsTemplate(dialog.dialogTemplate, next.number); }, taken)) {
        Answer([window, act = taken.act] {
            if (LiveWindow(window) && act)
                act(window);
            else
                PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
        });
        return;
    }
    for (const int id : allowed)
        if (IsTemplate(dialog.dialogTemplate, id))
            return;
    ADD_FAILURE() << "unexpected dialog: " << Utf8(TextOf(window)) << "; expected was " << Waiting();
    PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
}

void Stylus::MenuOpened(QMenu* menu) {
    Expected taken;
    const QPointer<QMenu> shown(menu);
    if (Take(
            Kind::Menu, [](const Expected&) { return true; }, taken)) {
        Answer([this, shown, item = taken.text] {
            if (shown)
                ChooseItem(shown, item);
        });
        return;
    }
    ADD_FAILURE() << "unexpected menu; expected was " << Waiting();
    StartScript([shown] {
        if (shown)
            shown->close();
    });
}

void Stylus::ChooseItem(QMenu* menu, const std::u16string& item) {
    const QStringList path = QString::fromStdU16String(item).split(QLatin1Char('/'));
    QPointer<QMenu> shown(menu);
    // An item may have a slash of its own, as may the way to it: the whole text comes first.
    QAction* action = FindAction(menu, QString::fromStdU16String(item));
    for (qsizetype i = 0; !action && i < path.size() && shown; ++i) {
        QAction* step = FindAction(shown, path[i]);
        if (!step || !step->menu()) {
            action = step;
            break;
        }
        const QPointer<QMenu> submenu(step->menu());
        QTest::mouseClick(shown, Qt::LeftButton, {}, shown->actionGeometry(step).center());
        if (!QTest::qWaitFor([&submenu] { return submenu && submenu->isVisible(); }))
            break;
        shown = submenu;
    }
    if (!action || !action->isEnabled()) {
        ADD_FAILURE() << (action ? "greyed in the menu: " : "not in the menu: ") << Utf8(item);
        menu->close();
        return;
    }
    QTest::mouseClick(shown, Qt::LeftButton, {}, shown->actionGeometry(action).center());
}

void Stylus::PickerOpened(const PickerSeen& picker) {
    Expected taken;
    const QPointer<QWidget> shown(picker.widget);
    if (Take(
            Kind::Picker, [&](const Expected& next) { return (next.number != 0) == picker.save; }, taken)) {
        Answer([this, shown, name = taken.text] {
            if (shown)
                FinishPicker(shown, name);
        });
        return;
    }
    ADD_FAILURE() << "unexpected picker; expected was " << Waiting();
    StartScript([this, shown] {
        if (shown)
            FinishPicker(shown, u"");
    });
}

void Stylus::FinishPicker(QWidget* picker, const std::u16string& name) {
    const char* buttonName = name.empty() ? "pickerCancel" : "pickerAccept";
    auto* edit = picker->findChild<QLineEdit*>(QStringLiteral("pickerName"));
    auto* button = picker->findChild<QAbstractButton*>(QLatin1String(buttonName));
    ASSERT_TRUE(edit && button);
    edit->selectAll();
    QTest::keyClicks(edit, QString::fromStdU16String(name));
    QTest::mouseClick(button, Qt::LeftButton);
}

void Stylus::Beside(const std::function<void()>& program, std::function<void()> steps) {
    const int before = RunningScripts();
    StartScript(std::move(steps));
    program();
    // Their last step has ended the program, so there is little left of them.
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
        PumpHost(true);
        Settle();
    }
    return true;
}

void Stylus::Settle() {
    if (InScript())
        return YieldScript();
    MSG message;
    for (int idle = 0; idle < 2; ++idle) {
        PumpHost(false);
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            idle = 0;
            if (message.message == WM_QUIT) {
                PostQuitMessage(static_cast<int>(message.wParam)); // for the program's own loop
                return;
            }
            const HWND top = TopLevelOf(message.hwnd);
            if (!top || !top->dialog || !IsDialogMessageW(top, &message))
                DispatchMessageW(&message);
        }
    }
}
