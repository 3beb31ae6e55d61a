// What a test expects to open, and how it is answered.
#include <QAbstractButton>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <gtest/gtest.h>

#include "platform/base/utf8.h"
#include "platform/ui/core/windowcore.h"
#include "tests/support/script.h"
#include "tests/support/stylus.h"

namespace {

QAction* FindAction(const QMenu* menu, const QString& text) {
    for (QAction* action : menu->actions()) {
        QString shown = action->text().section(QLatin1Char('\t'), 0, 0);
        if (shown.remove(QLatin1Char('&')) == text)
            return action;
    }
    return nullptr;
}

} // namespace

void Stylus::ExpectBox(const std::u16string& text, int answer) {
    expected.push_back({Kind::Box, text, answer});
}

void Stylus::ExpectMenuFirst(const std::u16string& item) {
    expected.push_front({Kind::Menu, item});
}

void Stylus::ExpectPicker(bool save, const std::u16string& name) {
    expected.push_back({Kind::Picker, name, save});
}

std::optional<Stylus::Expected> Stylus::Take(Kind kind, const std::string& what,
                                             const std::function<bool(const Expected&)>& fits) {
    ++opened;
    if (expected.empty() || expected.front().kind != kind || !fits(expected.front())) {
        ADD_FAILURE() << "unexpected " << what << "; expected was " << Waiting();
        return std::nullopt;
    }
    Expected taken = std::move(expected.front());
    expected.pop_front();
    return taken;
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
    static const char* const kKinds[] = {"box", "menu", "picker"};
    const Expected& next = expected.front();
    return std::string(kKinds[static_cast<int>(next.kind)]) + " \"" + ToUtf8(next.text) + "\" " +
           std::to_string(next.number);
}

void Stylus::BoxOpened(const ui::MessageBoxSeen& box) {
    const auto taken = Take(Kind::Box, "message box: " + ToUtf8(box.text),
                            [&](const Expected& next) { return next.text == box.text; });
    if (!taken)
        return StartScript([] { ui::AnswerMessageBox(IDCANCEL); });
    const HWND window = box.window;
    EXPECT_TRUE(GetDlgItem(window, taken->number)) << "no such answer: " << taken->number;
    Answer([this, window, answer = taken->number] {
        if (ui::LiveWindow(window))
            Tap(window, answer);
    });
}

void Stylus::MenuOpened(QMenu* menu) {
    const auto taken = Take(
        Kind::Menu, "menu", [](const Expected&) { return true; });
    Answer([this, taken, shown = QPointer<QMenu>(menu)] {
        if (shown && taken)
            ChooseItem(shown, taken->text);
        else if (shown)
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
        ADD_FAILURE() << (action ? "greyed in the menu: " : "not in the menu: ") << ToUtf8(item);
        menu->close();
        return;
    }
    QTest::mouseClick(shown, Qt::LeftButton, {}, shown->actionGeometry(action).center());
}

void Stylus::PickerOpened(const ui::PickerSeen& picker) {
    const auto taken = Take(
        Kind::Picker, "picker", [&](const Expected& next) { return (next.number != 0) == picker.save; });
    Answer([this, taken, shown = QPointer<QWidget>(picker.widget)] {
        if (shown)
            FinishPicker(shown, taken ? taken->text : u"");
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
